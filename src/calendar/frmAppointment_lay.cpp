#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QStackedWidget>

#include "calendar/frmAppointment.h"
#include "kit/dateedit.h"
#include "kit/formparts.h"
#include "kit/theme.h"

/// Where the controls of the appointment editor stand.
namespace bmr::calendar {

using kit::MakeLabel;
using kit::Space;

namespace {

/// Parts side by side, with the room that is left behind them.
QWidget* Beside(const char* name, std::initializer_list<QWidget*> parts) {
    auto* row = new QWidget;
    row->setObjectName(name);
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(Space::Row);
    for (QWidget* part : parts)
        line->addWidget(part);
    line->addStretch(1);
    return row;
}

QFormLayout* MakeForm(QWidget* holder = nullptr) {
    auto* form = new QFormLayout(holder);
    form->setContentsMargins(0, 0, 0, 0);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->setHorizontalSpacing(Space::Row);
    form->setVerticalSpacing(Space::Row);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    return form;
}

/// A place of some lines, so that the window keeps its size whatever they say.
QLabel* MakeWords(const char* name, int lines) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignTop | Qt::AlignLeading);
    label->setFixedHeight(label->fontMetrics().lineSpacing() * lines);
    return label;
}

/// Words that a click takes for the option beside them.
QLabel* MakeOptionLabel(const char* name, const QString& text, QRadioButton* option, QObject* filter) {
    auto* label = new QLabel(text);
    label->setObjectName(name);
    label->setProperty("option", QVariant::fromValue(static_cast<QAbstractButton*>(option)));
    label->installEventFilter(filter);
    return label;
}

/// What parts take side by side. Qt's own hint leaves out what is hidden, and the window would grow when
/// another row comes.
int WidthOf(std::initializer_list<QWidget*> parts) {
    int width = 0;
    for (const QWidget* part : parts)
        width += part->sizeHint().boundedTo(part->maximumSize()).expandedTo(part->minimumSize()).width() +
                 Space::Row;
    return width;
}

/// Forms above each other, whose fields are to begin at the same place.
void AlignFields(std::initializer_list<QFormLayout*> forms) {
    std::vector<QLabel*> labels;
    for (const QFormLayout* form : forms)
        for (int row = 0; row < form->rowCount(); ++row)
            if (const auto* item = form->itemAt(row, QFormLayout::LabelRole))
                if (auto* label = qobject_cast<QLabel*>(item->widget())) labels.push_back(label);
    int width = 0;
    for (const QLabel* label : labels)
        width = qMax(width, label->sizeHint().width());
    for (QLabel* label : labels) {
        label->setMinimumWidth(width);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
}

void KeepRoom(QWidget& widget) {
    QSizePolicy policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget.setSizePolicy(policy);
}

}  // namespace

QWidget* frmAppointment::LayTimes() {
    auto* frame = new QWidget;
    frame->setObjectName("TimeFrame");
    QFormLayout* form = MakeForm(frame);
    date_.row = kit::WithError(Beside("", {date_.edit, lblWeekday_}), date_.error);
    form->addRow(MakeLabel(tr("&Date"), date_.edit), date_.row);
    // Where it lies elsewhere, the end's day stands here: the rows below are the widest of the window as it
    // is.
    form->addRow(QString(), Beside("", {ctlAllday, ctlDateEnd}));
    const int width = quickTimes_[0]->fontMetrics().horizontalAdvance("00") + 44;
    const auto time = [&](std::size_t which, std::initializer_list<QWidget*> behind) {
        auto* row = new QWidget;
        auto* line = new QHBoxLayout(row);
        line->setContentsMargins(0, 0, 0, 0);
        line->setSpacing(Space::Tight);
        QWidget* hour = which == 0 ? static_cast<QWidget*>(quickTimes_[0]) : ctlHH.at(which);
        QWidget* minute = which == 0 ? static_cast<QWidget*>(quickTimes_[1]) : ctlNN.at(which);
        for (QWidget* box : {hour, minute})
            box->setFixedWidth(width);
        line->addWidget(hour);
        line->addWidget(new QLabel(":"));
        line->addWidget(minute);
        line->addSpacing(Space::Tight);
        for (QWidget* part : behind)
            line->addWidget(part, part == behind.begin()[0] ? 2 : 1);
        return row;
    };
    form->addRow(MakeLabel(tr("S&tart"), quickTimes_[0]), time(0, {SliderHH[0], SliderNN[0]}));
    form->addRow(MakeLabel(tr("&End"), ctlHH[1]), time(1, {SliderHH[1], SliderNN[1]}));
    form->addRow(MakeLabel(tr("D&uration"), ctlHH[2]),
                 kit::WithError(time(2, {Beside("", {cmdDuration})}), lblTimesError_));
    QWidget* alarm = Beside("AlarmFrame", {ctlAlarmYN, ctlAlarmAnticipate});
    form->addRow(QString(), alarm);
    form->addRow(QString(), ctlPrivate);
    return frame;
}

QWidget* frmAppointment::LayFrequency() {
    QWidget* row = Beside("", {Redo[0], Redo[2], Redo[1], Redo[3], Redo[4]});
    row->layout()->setSpacing(Space::Margin);
    return row;
}

QWidget* frmAppointment::LayAlternatives() {
    RedoFrD[0] = Beside("RedoFrD0", {MakeOptionLabel("lblRedoD0", tr("Every"), RedoAlt[0], this), QQ[1],
                                     new QLabel(tr("day(s)"))});
    RedoFrD[1] = Beside(
        "RedoFrD1", {MakeOptionLabel("lblRedoD1", tr("Every workday, Monday to Friday"), RedoAlt[1], this)});
    lblRedoM0 = MakeOptionLabel("lblRedoM0", {}, RedoAlt[0], this);
    RedoFrM[0] = Beside("RedoFrM0", {lblRedoM0, QQ[2], new QLabel(tr("month(s)"))});
    auto* every = new QLabel(tr("every"));
    auto* months = new QLabel(tr("month(s)"));
    RedoFrM[1] = Beside("RedoFrM1", {every, QQ[3], months});
    lblRedoY0 = MakeOptionLabel("lblRedoY0", {}, RedoAlt[0], this);
    RedoFrY[0] = Beside("RedoFrY0", {lblRedoY0});
    auto* of = new QLabel(tr("of"));
    RedoFrY[1] = Beside("RedoFrY1", {of, cboRedoMonth});
    QLabel* the = MakeOptionLabel("lblRedoNth", tr("The"), RedoAlt[1], this);
    nth_ = Beside("", {the, cboRedoWhen, cboRedoWeekday});
    delete nth_->layout()->takeAt(nth_->layout()->count() - 1);  // what follows stands close behind

    RedoAltFrame = new QWidget;
    RedoAltFrame->setObjectName("RedoAltFrame");
    auto* grid = new QGridLayout(RedoAltFrame);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(Space::Row);
    for (int row = 0; row < 2; ++row) {
        const auto at = static_cast<std::size_t>(row);
        auto* line = new QHBoxLayout;
        line->setSpacing(Space::Row);
        line->addWidget(RedoAlt.at(at));
        if (row == 1) line->addWidget(nth_);
        for (QWidget* frame : {RedoFrD.at(at), RedoFrM.at(at), RedoFrY.at(at)})
            line->addWidget(frame, 1);
        grid->addLayout(line, row, 0);
        grid->setRowMinimumHeight(row, cboRedoWhen->sizeHint().height());
    }
    grid->setRowStretch(2, 1);
    RedoAltFrame->setMinimumWidth(WidthOf({RedoAlt[1], the, cboRedoWhen, cboRedoWeekday}) +
                                  qMax(WidthOf({every, QQ[3], months}), WidthOf({of, cboRedoMonth})));
    return RedoAltFrame;
}

QWidget* frmAppointment::LayRedoEnd() {
    RedoEndFrame = new QWidget;
    RedoEndFrame->setObjectName("RedoEndFrame");
    QFormLayout* form = MakeForm(RedoEndFrame);
    startRedo_.row = kit::WithError(startRedo_.edit, startRedo_.error);
    endRedo_.row = kit::WithError(Beside("", {RedoEnd[2], endRedo_.edit}), endRedo_.error);
    form->addRow(MakeLabel(tr("Be&gins"), startRedo_.edit), startRedo_.row);
    form->addRow(new QLabel(tr("Ends")), RedoEnd[0]);
    form->addRow(QString(), Beside("", {RedoEnd[1], occ, new QLabel(tr("occurrences"))}));
    form->addRow(QString(), endRedo_.row);
    KeepRoom(*RedoEndFrame);
    return RedoEndFrame;
}

QWidget* frmAppointment::LayRedo() {
    RedoFrW = new QWidget;
    RedoFrW->setObjectName("RedoFrW");
    auto* weekly = new QVBoxLayout(RedoFrW);
    weekly->setContentsMargins(0, 0, 0, 0);
    weekly->setSpacing(Space::Row);
    weekly->addWidget(Beside("", {new QLabel(tr("Every")), QQ[0], new QLabel(tr("week(s) on"))}));
    QWidget* days = Beside("", {RedoWD[0], RedoWD[1], RedoWD[2], RedoWD[3], RedoWD[4], RedoWD[5], RedoWD[6]});
    weekly->addWidget(days);
    weekly->addStretch(1);
    redoPages_ = new QStackedWidget;
    redoPages_->addWidget(new QWidget);
    redoPages_->addWidget(RedoFrW);
    redoPages_->addWidget(LayAlternatives());
    redoPages_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    sentence_ = MakeWords("lblSentence", 2);
    next_ = MakeWords("lblNext", 5);
    lblNextHead_ = MakeWords("lblNextHead", 1);
    grid_ = MakeWords("lblGrid", 2);
    for (QLabel* words : {lblNextHead_, next_, grid_})
        words->setForegroundRole(QPalette::PlaceholderText);

    auto* frame = new QWidget;
    frame->setObjectName("RedoFrame");
    auto* column = new QVBoxLayout(frame);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Space::Row);
    column->addWidget(new QLabel(tr("Repeats")));
    column->addWidget(LayFrequency());
    column->addWidget(redoPages_);
    // Below the rest they would not leave the window room on a small screen.
    auto* next = new QVBoxLayout;
    next->setSpacing(Space::Tight);
    next->addWidget(lblNextHead_);
    next->addWidget(next_);
    next->addStretch(1);
    auto* end = new QHBoxLayout;
    end->setSpacing(Space::Group);
    end->addWidget(LayRedoEnd());
    end->addLayout(next, 1);
    column->addLayout(end);
    column->addSpacing(Space::Tight);
    column->addWidget(sentence_);
    column->addWidget(grid_);
    column->addStretch(1);
    return frame;
}

void frmAppointment::Lay() {
    QFormLayout* texts = MakeForm();
    texts->addRow(MakeLabel(tr("&Subject"), ctlSubject), fields_.Row(ctlSubject));
    texts->addRow(MakeLabel(tr("&Location"), ctlLocation), fields_.Row(ctlLocation));
    auto* left = new QVBoxLayout;
    left->setSpacing(Space::Tight);
    QWidget* times = LayTimes();
    AlignFields({texts, qobject_cast<QFormLayout*>(times->layout())});
    left->addWidget(times);
    left->addSpacing(Space::Row);
    left->addWidget(MakeLabel(tr("&Notes"), ctlNotes));
    left->addWidget(fields_.Row(ctlNotes), 1);
    auto* rule = new QFrame;
    rule->setFrameShape(QFrame::VLine);
    rule->setFrameShadow(QFrame::Plain);
    rule->setForegroundRole(QPalette::Mid);
    auto* halves = new QHBoxLayout;
    halves->setSpacing(Space::Group);
    halves->addLayout(left, 1);
    halves->addWidget(rule);
    halves->addWidget(LayRedo(), 1);
    const kit::SaveCancel foot = kit::MakeSaveCancel(*this, [this] { cmdOK_Click(); });
    cmdOK = foot.cmdOK;
    cmdEsc = foot.cmdEsc;

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Group);
    column->addLayout(texts);
    column->addLayout(halves, 1);
    column->addWidget(foot.box);
    kit::GiveLetters(*this);
    cmdOK->setDefault(true);  // earlier it has no dialog yet, whose own default it is to be
    resize(qMax(840, fontMetrics().averageCharWidth() * 118), fontMetrics().lineSpacing() * 38);
}

}  // namespace bmr::calendar
