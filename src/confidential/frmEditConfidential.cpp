#include "confidential/frmEditConfidential.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>

#include "base/languageus.h"
#include "confidential/frmGenerate.h"
#include "confidential/kinds.h"
#include "kit/drafttext.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/icons.h"
#include "kit/theme.h"
#include "kit/words.h"
#include "store/record_put.h"

namespace bmr::confidential {

using kit::Space;

namespace {

/// Numbers of the texts in a draft. Never renumber: files in the field carry these. The five values have the
/// numbers from kValue on.
enum DraftField : std::uint8_t { kNotes = 1, kPrivate = 2, kValue = 10 };

/// A text of many lines as a field shows it.
QString Shown(const Bytes& text) {
    return kit::ToQString(text).replace("\r\n", "\n").replace('\r', '\n');
}

}  // namespace

frmEditConfidential::frmEditConfidential(store::Session& session, const Record& record, QWidget* parent)
    : QDialog(parent), session_(session), record_(record) {
    setObjectName("frmEditConfidential");
    const Kind& kind = *ConfidentialKindFields(record.kind);
    setWindowTitle(QString::fromStdString(std::string(kind.caption)));
    singleLineField1 = kind.height == 1;
    BuildFields();
    Lay();
    filling_ = true;
    for (std::size_t i = 0; i < txtCtl.size(); ++i)
        txtCtl[i]->setText(kit::ToQString(record.n[i]));
    tmpTxt->setPlainText(Shown(record.n[1]));
    txtNotes->setPlainText(Shown(record.notes));
    ctlPrivate->setChecked(record.isPrivate);
    filling_ = false;
    kit::GuardDialog(*this);
    txtCtl[0]->setFocus();
}

frmEditConfidential::~frmEditConfidential() {
    WipeRecord(record_);
}

void frmEditConfidential::BuildFields() {
    const Kind& kind = *ConfidentialKindFields(record_.kind);
    for (std::size_t i = 0; i < txtCtl.size(); ++i) {
        const QString caption = QString::fromStdString(std::string(kind.captions[i]));
        txtCtl[i] = new QLineEdit(this);
        txtCtl[i]->setObjectName(QString("txtCtl%1").arg(i));
        txtCtl[i]->setAccessibleName(caption);
        txtCtl[i]->setMaxLength(static_cast<int>(store::kLongestText));
        txtCtl[i]->installEventFilter(this);
        if (IsMaskedCaption(kind.captions[i]))
            kit::GiveFieldMenu(*txtCtl[i]);
        else
            kit::GiveFieldMenu(*txtCtl[i], session_, [caption = kind.captions[i]] {
                return kit::FieldUse{.web = IsUrlCaption(caption),
                                     .mail = IsMailCaption(caption),
                                     .dial = IsPhoneCaption(caption)};
            });
        connect(txtCtl[i], &QLineEdit::textChanged, this, &frmEditConfidential::Changed);
        if (!IsMaskedCaption(kind.captions[i])) continue;
        dice_[i] = kit::MakeIconButton(QString("dice%1").arg(i), "password-generate", tr("Make a password"));
        dice_[i]->installEventFilter(this);
        connect(dice_[i], &QToolButton::clicked, this, [this, i] { Generate(i); });
    }
    const auto block = [this](const char* name, const QString& caption) {
        auto* edit = kit::MakeTextField(name, caption);
        edit->setParent(this);
        kit::GiveFieldMenu(*edit, session_);
        connect(edit, &QPlainTextEdit::textChanged, this, &frmEditConfidential::Changed);
        return edit;
    };
    tmpTxt = block("tmpTxt", QString::fromStdString(std::string(kind.captions[1])));
    tmpTxt->setFixedHeight(kit::HeightOfLines(*tmpTxt, kind.height));
    tmpTxt->installEventFilter(this);
    txtNotes = block("txtNotes", tr("Notes"));
    ctlPrivate = kit::MakePrivateBox();
    connect(ctlPrivate, &QCheckBox::toggled, this, &frmEditConfidential::Changed);
    lblError = kit::MakeErrorLine("lblError");
}

void frmEditConfidential::Lay() {
    const Kind& kind = *ConfidentialKindFields(record_.kind);
    auto* heading = kit::MakeHeading("lblCategory");
    heading->setText("Category:  " + QString::fromStdString(std::string(kind.caption)).toUpper());
    auto* form = new QFormLayout;
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->setHorizontalSpacing(Space::Row);
    form->setVerticalSpacing(Space::Row);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    for (std::size_t i = 0; i < txtCtl.size(); ++i) {
        const bool used = i < kind.FieldCount();
        const bool tall = i == 1 && !singleLineField1;
        txtCtl[i]->setVisible(used && !tall);
        if (!used) continue;
        auto* field = new QWidget;
        auto* line = new QHBoxLayout(field);
        line->setContentsMargins(0, 0, 0, 0);
        line->setSpacing(Space::Tight);
        line->addWidget(tall ? static_cast<QWidget*>(tmpTxt) : txtCtl[i], 1);
        if (dice_[i]) line->addWidget(dice_[i]);
        auto* label = kit::MakeLabel(QString::fromStdString(std::string(kind.captions[i])), Field(i));
        label->setObjectName(QString("lblTxt%1").arg(i));
        form->addRow(label, field);
    }
    tmpTxt->setVisible(!singleLineField1);
    const kit::SaveCancel buttons = kit::MakeSaveCancel(*this, [this] { cmdOK_Click(); });
    cmdOK = buttons.cmdOK;
    cmdEsc = buttons.cmdEsc;
    cmdOK->setAutoDefault(false);
    cmdEsc->setAutoDefault(false);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Group, Space::Margin, Space::Group, Space::Margin);
    column->setSpacing(Space::Row);
    column->addWidget(heading);
    column->addLayout(form);
    column->addWidget(lblError);
    column->addWidget(kit::MakeLabel("&Notes:", txtNotes));
    column->addWidget(txtNotes, 1);
    column->addWidget(ctlPrivate);
    column->addWidget(buttons.box);
    OrderByEye();
    resize(qMax(560, fontMetrics().averageCharWidth() * 80), fontMetrics().lineSpacing() * 30);
}

void frmEditConfidential::OrderByEye() {
    QWidget* last = nullptr;
    const auto next = [&last](QWidget* widget) {
        if (last && widget) setTabOrder(last, widget);
        if (widget) last = widget;
    };
    for (std::size_t i = 0; i < txtCtl.size(); ++i) {
        next(Field(i));
        next(dice_[i]);
    }
    for (QWidget* widget : std::initializer_list<QWidget*>{txtNotes, ctlPrivate, cmdOK, cmdEsc})
        next(widget);
}

void frmEditConfidential::Cover(const QWidget& pad) {
    const QRect screen = pad.screen()->availableGeometry();
    const QRect covered(pad.mapToGlobal(QPoint(0, 0)), pad.size());
    const QSize needed(fontMetrics().averageCharWidth() * 68, fontMetrics().lineSpacing() * 24);
    QRect place(covered.topLeft(), covered.size().expandedTo(minimumSizeHint()).expandedTo(needed));
    // Where a small pad leaves no room to write in, the dialog reaches over the list, not over the screen's
    // edge.
    place.moveRight(qMin(covered.right(), screen.right()));
    place.moveBottom(qMin(place.bottom(), screen.bottom()));
    setGeometry(place);
}

QWidget* frmEditConfidential::Field(std::size_t i) const {
    return i == 1 && !singleLineField1 ? static_cast<QWidget*>(tmpTxt) : txtCtl[i];
}

Record frmEditConfidential::Value() const {
    Record record = record_;
    const Kind& kind = *ConfidentialKindFields(record.kind);
    // What nobody has changed stays to the byte, whatever ends its lines.
    const auto take = [](const QString& text, Bytes& into) {
        if (text != Shown(into)) into = kit::FromQString(QString(text).replace("\n", "\r\n"));
    };
    for (std::size_t i = 0; i < kind.FieldCount(); ++i)
        if (Field(i) == tmpTxt)
            take(kit::PlainText(*tmpTxt), record.n[i]);
        else if (txtCtl[i]->text() != kit::ToQString(record.n[i]))
            record.n[i] = kit::FromQString(txtCtl[i]->text());
    take(kit::PlainText(*txtNotes), record.notes);
    record.isPrivate = ctlPrivate->isChecked();
    return record;
}

std::optional<custody::Draft> frmEditConfidential::HalfWritten() const {
    if (!changed) return std::nullopt;
    std::optional<custody::Draft> draft(std::in_place);
    draft->section = store::Section::Confidential;
    draft->key = record_.key;
    draft->category = record_.kind;
    draft->isPrivate = record_.isPrivate || ctlPrivate->isChecked();
    kit::SetTitle(*draft, txtCtl[0]->text());
    for (std::size_t i = 0; i < txtCtl.size(); ++i) {
        kit::PutText(*draft, static_cast<std::uint8_t>(kValue + i),
                     Field(i) == tmpTxt ? kit::PlainText(*tmpTxt) : txtCtl[i]->text());
    }
    kit::PutText(*draft, kNotes, kit::PlainText(*txtNotes));
    kit::PutFlag(*draft, kPrivate, ctlPrivate->isChecked());
    return draft;
}

void frmEditConfidential::Fill(const custody::Draft& draft) {
    for (std::size_t i = 0; i < txtCtl.size(); ++i) {
        const QString text = kit::TextOf(draft, static_cast<std::uint8_t>(kValue + i));
        if (Field(i) == tmpTxt)
            tmpTxt->setPlainText(text);
        else
            txtCtl[i]->setText(text);
    }
    kit::ContinueAtEnd(*txtCtl[0]);
    txtNotes->setPlainText(kit::TextOf(draft, kNotes));
    txtNotes->moveCursor(QTextCursor::End);
    ctlPrivate->setChecked(kit::FlagOf(draft, kPrivate));
    changed = true;
}

void frmEditConfidential::Changed() {
    if (filling_) return;
    changed = true;
    kit::MarkUnmappable(*txtNotes);
    kit::MarkUnmappable(*tmpTxt);
    if (lblError->isVisible()) Unstorable();
}

QWidget* frmEditConfidential::Unstorable() {
    const Kind& kind = *ConfidentialKindFields(record_.kind);
    QString why;
    const auto judge = [&why](QString text, const QString& caption) {
        why = kit::RefusalOf(text);
        const auto length = static_cast<std::size_t>(text.replace("\n", "\r\n").size());
        if (why.isEmpty() && length > store::kLongestText)
            why = tr("There are %1 characters; %2 can be stored.")
                      .arg(QLocale().toString(static_cast<qulonglong>(length)),
                           QLocale().toString(static_cast<qulonglong>(store::kLongestText)));
        if (!why.isEmpty()) why = caption.trimmed() + ": " + why;
        return !why.isEmpty();
    };
    QWidget* found = nullptr;
    for (std::size_t i = 0; i < kind.FieldCount() && !found; ++i) {
        const QString text = Field(i) == tmpTxt ? kit::PlainText(*tmpTxt) : txtCtl[i]->text();
        if (judge(text, Field(i)->accessibleName())) found = Field(i);
    }
    if (!found && judge(kit::PlainText(*txtNotes), txtNotes->accessibleName())) found = txtNotes;
    kit::Tell(*lblError, why);
    return found;
}

void frmEditConfidential::cmdOK_Click() {
    QWidget* wrong = Unstorable();
    if (wrong)
        wrong->setFocus(Qt::OtherFocusReason);
    else
        accept();
}

void frmEditConfidential::reject() {
    if (changed && !session_.ending) {
        Box box = MessageBox(20, BoxIcon::Question);
        box.buttons = Buttons::YesNo;
        box.standard = Answer::No;  // No stays: nothing is lost
        box.words = {tr("Discard changes").toStdString(), tr("Keep editing").toStdString()};
        if (session_.ports.prompter.Ask(box) != Answer::Yes && !session_.ending) return;
    }
    changed = false;
    QDialog::reject();
}

void frmEditConfidential::MoveOn(std::size_t from) {
    QWidget* next = txtNotes;
    if (from == 0 && !singleLineField1)
        next = tmpTxt;
    else if (from + 1 < txtCtl.size() && txtCtl[from + 1]->isVisible())
        next = txtCtl[from + 1];
    next->setFocus(Qt::TabFocusReason);
}

bool frmEditConfidential::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool tab = key->key() == Qt::Key_Tab && key->modifiers() == Qt::NoModifier;
        const bool enter = (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
                           (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
        if (watched == tmpTxt && tab) {
            MoveOn(1);
            return true;
        }
        for (std::size_t i = 0; i < txtCtl.size(); ++i) {
            if (enter && watched == dice_[i]) {
                Generate(i);
                return true;
            }
            if (watched != txtCtl[i] || !(tab || enter)) continue;
            // Tab stops at the dice on its way, or nobody without a mouse could reach them.
            if (tab && dice_[i])
                dice_[i]->setFocus(Qt::TabFocusReason);
            else
                MoveOn(i);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmEditConfidential::Generate(std::size_t i) {
    frmGenerate form(session_.ports.random, this);
    if (form.exec() != QDialog::Accepted || session_.ending) return;
    txtCtl[i]->setText(form.Password());
    txtCtl[i]->setFocus();
}

}  // namespace bmr::confidential
