#include <QAbstractItemView>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QSlider>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>

#include "calendar/frmAppointment.h"
#include "calendar/redoevents.h"
#include "kit/dateedit.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"

/// The controls of the appointment editor.
namespace bmr::calendar {

namespace {

/// Numbers of the texts in a draft. Never renumber: files in the field carry these. The numbers behind them
/// are those of times and recurrence.
enum DraftField : std::uint8_t { kSubject = 1, kLocation, kNotes, kPrivate };

/// Minutes of the day.
constexpr std::array kQuickTimes = {420, 480, 540, 600, 660, 720, 840, 900, 960, 1080, 1200};
constexpr int kLastHour = 23;
constexpr int kLastFives = 11;

QComboBox* MakeList(const char* name, const QString& caption) {
    auto* list = new QComboBox;
    list->setObjectName(name);
    list->setAccessibleName(caption);
    return list;
}

QWidget* MakeFrame(const char* name) {
    auto* frame = new QWidget;
    frame->setObjectName(name);
    return frame;
}

}  // namespace

void frmAppointment::BuildTexts() {
    ctlSubject = kit::MakeLineField("ctlSubject", tr("Subject"));
    ctlLocation = kit::MakeLineField("ctlLocation", tr("Location"));
    ctlNotes = kit::MakeTextField("ctlNotes", tr("Notes"));
    ctlPrivate = kit::MakePrivateBox();
    kit::GiveFieldMenu(*ctlSubject, session_);
    kit::GiveFieldMenu(*ctlLocation, session_);
    kit::GiveFieldMenu(*ctlNotes, session_);
    fields_.Tie(kSubject, *ctlSubject, record_.subject);
    fields_.Tie(kLocation, *ctlLocation, record_.location);
    fields_.Tie(kNotes, *ctlNotes, record_.notes);
    fields_.Tie(kPrivate, *ctlPrivate, record_.isPrivate);
}

frmAppointment::DateField frmAppointment::MakeDate(const char* name, const QString& caption,
                                                   void (frmAppointment::*changed)(Day)) {
    DateField field;
    field.edit = new kit::DateEdit(session_.ports.clock.Today());
    field.edit->setObjectName(name);
    field.edit->SetRequired();
    field.edit->SetRange(kLowerLimit, kUpperLimit);
    field.edit->SetCaption(caption);
    field.error = kit::MakeErrorLine((QByteArray("lbl") + (name + 3) + "Error").constData());
    connect(field.edit, &kit::DateEdit::Edited, field.error, &QLabel::hide);
    connect(field.edit, &kit::DateEdit::Given, this, &frmAppointment::DateGiven);
    connect(field.edit, &kit::DateEdit::NotUnderstood, this, [this, field](const QString& why) {
        kit::Tell(*field.error, why);
        Changed();
        ShowWeekday();
        ShowRedoWords();
    });
    connect(field.edit, &kit::DateEdit::DateChanged, this, [this, changed](std::optional<Day> date) {
        if (date) (this->*changed)(*date);
    });
    return field;
}

QLineEdit* frmAppointment::MakeTimeLine(const char* name, std::size_t which, bool hours) {
    static const char* const kCaptions[] = {QT_TR_NOOP("Start, hour"),     QT_TR_NOOP("Start, minutes"),
                                            QT_TR_NOOP("End, hour"),       QT_TR_NOOP("End, minutes"),
                                            QT_TR_NOOP("Duration, hours"), QT_TR_NOOP("Duration, minutes")};
    const QString caption = tr(kCaptions[which * 2 + (hours ? 0 : 1)]);
    QLineEdit* line = nullptr;
    if (which == 0) {
        QComboBox* box = MakeQuickTimes(name, hours);
        box->setAccessibleName(caption);
        quickTimes_.at(hours ? 0 : 1) = box;
        line = box->lineEdit();
        line->setAccessibleName(caption);
    } else {
        line = kit::MakeLineField(name, caption);
        line->installEventFilter(this);
    }
    line->setAlignment(Qt::AlignHCenter);
    line->setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]{0,2}"), line));
    kit::GiveFieldMenu(*line);
    connect(line, &QLineEdit::textEdited, this, [this] { lblTimesError_->hide(); });
    connect(line, &QLineEdit::editingFinished, this, [this, which] { TimeTyped(which); });
    return line;
}

QComboBox* frmAppointment::MakeQuickTimes(const char* name, bool hours) {
    QComboBox* box = MakeList(name, {});
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setCompleter(nullptr);  // it would make 10:00 of a 1
    box->setMaxVisibleItems(static_cast<int>(kQuickTimes.size()));
    box->view()->setMinimumWidth(fontMetrics().horizontalAdvance("00:00") + 32);
    for (const int minutes : kQuickTimes)
        box->addItem(QString::fromStdString(TimeText(minutes)), minutes);
    box->setToolTip(hours ? tr("Alt+Down: usual times; Up and Down step by an hour")
                          : tr("Alt+Down: usual times; Up and Down step by five minutes"));
    box->installEventFilter(this);
    connect(box, &QComboBox::activated, this, [this, box](int index) {
        const int minutes = box->itemData(index).toInt();
        ChangeSpan([minutes](TimeSpan& span) { SlideStart(span, minutes); });
    });
    return box;
}

QSlider* frmAppointment::MakeSlider(const char* name, std::size_t which, bool hours) {
    auto* slider = new QSlider(Qt::Horizontal);
    slider->setObjectName(name);
    slider->setAccessibleName((hours ? ctlHH : ctlNN).at(which)->accessibleName());
    // The start has no hour 24, but the same hour stands below the same place.
    slider->setRange(0, hours ? kLastHour + 1 : kLastFives);
    slider->setPageStep(hours ? 1 : 3);      // an hour, a quarter
    slider->setFocusPolicy(Qt::ClickFocus);  // by the keyboard the boxes do the same
    connect(slider, &QSlider::valueChanged, this, [this, which] { SliderMoved(which); });
    return slider;
}

void frmAppointment::BuildTimes() {
    date_ = MakeDate("ctlDate", tr("Date"), &frmAppointment::ctlDate_Change);
    lblWeekday_ = new QLabel;
    lblWeekday_->setObjectName("lblWeekday");
    lblWeekday_->setForegroundRole(QPalette::PlaceholderText);
    ctlAllday = new QCheckBox(tr("&All day"));
    ctlAllday->setObjectName("ctlAllday");
    connect(ctlAllday, &QCheckBox::clicked, this, &frmAppointment::ctlAllday_Click);
    ctlDateEnd = new QLabel;
    ctlDateEnd->setObjectName("ctlDateEnd");
    ctlDateEnd->setMinimumWidth(fontMetrics().horizontalAdvance(EndsOn(session_.ports.clock.Today()) + "  "));
    lblTimesError_ = kit::MakeErrorLine("lblTimesError");
    static const char* const kHours[] = {"ctlHH0", "ctlHH1", "ctlHH2"};
    static const char* const kMinutes[] = {"ctlNN0", "ctlNN1", "ctlNN2"};
    static const char* const kHourSliders[] = {"SliderHH0", "SliderHH1"};
    static const char* const kMinuteSliders[] = {"SliderNN0", "SliderNN1"};
    for (std::size_t which = 0; which < kTimes; ++which) {
        ctlHH.at(which) = MakeTimeLine(kHours[which], which, true);
        ctlNN.at(which) = MakeTimeLine(kMinutes[which], which, false);
        if (which == 2) break;
        SliderHH.at(which) = MakeSlider(kHourSliders[which], which, true);
        SliderNN.at(which) = MakeSlider(kMinuteSliders[which], which, false);
    }
}

void frmAppointment::BuildDuration() {
    cmdDuration = MakeFrame("cmdDuration");
    auto* row = new QHBoxLayout(cmdDuration);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    const auto make = [&](const char* name, const char* icon, const QString& tip, int direction) {
        auto* button = kit::MakeIconButton(name, icon, tip);
        connect(button, &QToolButton::pressed, this, [this, direction] { cmdDuration_Press(direction); });
        connect(button, &QToolButton::released, this, &frmAppointment::cmdDuration_Release);
        row->addWidget(button);
    };
    make("cmdDurationUp", "go-up", tr("Longer"), 1);
    make("cmdDurationDown", "go-down", tr("Shorter"), -1);
    tmrDuration = new QTimer(this);
    tmrDuration->setObjectName("tmrDuration");
    connect(tmrDuration, &QTimer::timeout, this, &frmAppointment::tmrDuration_Tick);
}

void frmAppointment::BuildReminder() {
    ctlAlarmYN = new QCheckBox(tr("Re&minder"));
    ctlAlarmYN->setObjectName("ctlAlarmYN");
    ctlAlarmAnticipate = MakeList("ctlAlarmAnticipate", tr("Reminder, how long before the start"));
    ctlAlarmAnticipate->setToolTip(tr("How long before the start"));
    connect(ctlAlarmYN, &QCheckBox::clicked, this, [this](bool on) {
        ctlAlarmAnticipate->setEnabled(on);
        Changed();
    });
    connect(ctlAlarmAnticipate, &QComboBox::currentIndexChanged, this, [this] {
        if (!filling_) Changed();
    });
}

QLineEdit* frmAppointment::MakeNumber(const char* name, const QString& caption) {
    QLineEdit* box = kit::MakeLineField(name, caption);
    box->setAlignment(Qt::AlignHCenter);
    box->setFixedWidth(fontMetrics().horizontalAdvance("0000") + 20);
    kit::GiveFieldMenu(*box);
    connect(box, &QLineEdit::textEdited, this, [this, box] { NumberEdited(*box); });
    connect(box, &QLineEdit::editingFinished, this, [this] {
        typed_ = nullptr;
        ShowNumbers();
    });
    return box;
}

void frmAppointment::BuildRedo() {
    static const char* const kFrequencies[] = {QT_TR_NOOP("Neve&r"), QT_TR_NOOP("Da&ily"),
                                               QT_TR_NOOP("&Weekly"), QT_TR_NOOP("Mont&hly"),
                                               QT_TR_NOOP("&Yearly")};
    static constexpr std::array kOrder = {0, 2, 1, 3, 4};  // the index of `Redo` for each word
    auto* frequencies = new QButtonGroup(this);
    for (std::size_t at = 0; at < Redo.size(); ++at) {
        const int index = kOrder.at(at);
        auto* option = new QRadioButton(tr(kFrequencies[at]));
        option->setObjectName(QString("Redo%1").arg(index));
        frequencies->addButton(option);
        Redo.at(static_cast<std::size_t>(index)) = option;
        connect(option, &QRadioButton::clicked, this, [this, index] {
            ChangeRedo([index](RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
                ChooseFrequency(state, index, locale, voice);
            });
        });
    }
    auto* alternatives = new QButtonGroup(this);
    for (std::size_t index = 0; index < RedoAlt.size(); ++index) {
        RedoAlt.at(index) = new QRadioButton;
        RedoAlt.at(index)->setObjectName(QString("RedoAlt%1").arg(index));
        alternatives->addButton(RedoAlt.at(index));
        connect(RedoAlt.at(index), &QRadioButton::clicked, this, [this, index] {
            ChangeRedo([index](RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
                ChooseAlternative(state, static_cast<int>(index), locale, voice);
            });
        });
    }
    RedoAlt[0]->setAccessibleName(tr("By days or dates"));
    RedoAlt[1]->setAccessibleName(tr("By weekdays"));
    for (std::size_t index = 0; index < RedoWD.size(); ++index) {
        const auto weekday =
            static_cast<std::size_t>(LocalToSundayWeekday(static_cast<int>(index) + 1, locale_) - 1);
        RedoWD.at(index) = new QCheckBox(QString::fromStdString(names_.shortWeekdays.at(weekday)));
        RedoWD.at(index)->setObjectName(QString("RedoWD%1").arg(index));
        RedoWD.at(index)->setAccessibleName(QString::fromStdString(names_.weekdays.at(weekday)));
        connect(RedoWD.at(index), &QCheckBox::clicked, this,
                [this, index](bool on) { RedoWD_Click(index, on); });
    }
    QQ = {MakeNumber("QQ0", tr("Every so many weeks")), MakeNumber("QQ1", tr("Every so many days")),
          MakeNumber("QQ2", tr("Every so many months")), MakeNumber("QQ3", tr("Every so many months"))};
}

void frmAppointment::BuildNth() {
    cboRedoWhen = MakeList("cboRedoWhen", tr("Which of the month"));
    cboRedoWhen->addItems({tr("first"), tr("second"), tr("third"), tr("forth"), tr("last")});
    cboRedoWeekday = MakeList("cboRedoWeekday", tr("Weekday"));
    for (int weekday = 1; weekday <= 7; ++weekday)
        cboRedoWeekday->addItem(QString::fromStdString(
            names_.weekdays.at(static_cast<std::size_t>(LocalToSundayWeekday(weekday, locale_) - 1))));
    cboRedoMonth = MakeList("cboRedoMonth", tr("Month"));
    for (const std::string& month : names_.months)
        cboRedoMonth->addItem(QString::fromStdString(month));
    const auto tie = [this](QComboBox* list,
                            void (*change)(RedoState&, int, const LocaleFacts&, const SeriesVoice&)) {
        connect(list, &QComboBox::currentIndexChanged, this, [this, change](int index) {
            if (index < 0) return;
            ChangeRedo([=](RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
                change(state, index + 1, locale, voice);
            });
        });
    };
    tie(cboRedoWhen, SetNth);
    tie(cboRedoWeekday, SetNthWeekday);
    tie(cboRedoMonth, SetMonth);
}

void frmAppointment::BuildRedoEnd() {
    startRedo_ = MakeDate("ctlDateStartRedo", tr("First day"), &frmAppointment::ctlDateStartRedo_Change);
    endRedo_ = MakeDate("ctlDateEndRedo", tr("Last day"), &frmAppointment::ctlDateEndRedo_Change);
    occ = MakeNumber("occ", tr("Number of times"));
    occ->setPlaceholderText("–");  // shown where there is no end
    static const char* const kEnds[] = {QT_TR_NOOP("N&o end date"), QT_TR_NOOP("A&fter"), QT_TR_NOOP("&By")};
    auto* group = new QButtonGroup(this);
    for (std::size_t index = 0; index < RedoEnd.size(); ++index) {
        RedoEnd.at(index) = new QRadioButton(tr(kEnds[index]));
        RedoEnd.at(index)->setObjectName(QString("RedoEnd%1").arg(index));
        group->addButton(RedoEnd.at(index));
        RedoEnd.at(index)->installEventFilter(this);
        connect(RedoEnd.at(index), &QRadioButton::clicked, this, [this, index] {
            ChangeRedo([index](RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
                ChooseEndMode(state, static_cast<int>(index), locale, voice);
            });
        });
    }
}

}  // namespace bmr::calendar
