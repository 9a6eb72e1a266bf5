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

#include "confidential/frmGenerate.h"
#include "confidential/kinds.h"
#include "kit/failure.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/icons.h"
#include "kit/theme.h"

namespace bmr::confidential {

using kit::Space;

namespace {

/// Numbers of the texts in a draft. Never renumber: files in the field carry these. The five values have the
/// numbers from kValue on.
enum DraftField : std::uint8_t { kNotes = 1, kPrivate = 2, kValue = 10 };

}  // namespace

frmEditConfidential::frmEditConfidential(store::Session& session, const Record& record, QWidget* parent)
    : QDialog(parent), session_(session), record_(record) {
    setObjectName("frmEditConfidential");
    const Kind& kind = *ConfidentialKindFields(record.kind);
    setWindowTitle(QString::fromStdString(std::string(kind.caption)));
    singleLineField1 = kind.height == 1;
    BuildFields();
    Lay();
    fields_.Show();
    connect(&fields_, &kit::EditorFields::Changed, this, [this] { recordChanged = true; });
    kit::GuardDialog(*this);
    txtCtl[0]->setFocus();
}

frmEditConfidential::~frmEditConfidential() = default;

void frmEditConfidential::BuildFields() {
    const Kind& kind = *ConfidentialKindFields(record_.kind);
    for (std::size_t i = 0; i < txtCtl.size(); ++i) {
        const QString caption = QString::fromStdString(std::string(kind.captions[i]));
        txtCtl[i] = new QLineEdit(this);
        txtCtl[i]->setObjectName(QString("txtCtl%1").arg(i));
        txtCtl[i]->setAccessibleName(caption);
        txtCtl[i]->installEventFilter(this);
        if (IsMaskedCaption(kind.captions[i]))
            kit::GiveFieldMenu(*txtCtl[i]);
        else
            kit::GiveFieldMenu(*txtCtl[i], session_, [caption = kind.captions[i]] {
                return kit::FieldUse{.web = IsUrlCaption(caption),
                                     .mail = IsMailCaption(caption),
                                     .dial = IsPhoneCaption(caption)};
            });
        if (!IsMaskedCaption(kind.captions[i])) continue;
        kit::SetMonospaced(*txtCtl[i]);
        dice_[i] = kit::MakeIconButton(QString("dice%1").arg(i), "password-generate", tr("Make a password"));
        dice_[i]->installEventFilter(this);
        connect(dice_[i], &QToolButton::clicked, this, [this, i] { Generate(i); });
    }
    const auto block = [this](const char* name, const QString& caption) {
        auto* edit = kit::MakeTextField(name, caption);
        edit->setParent(this);
        kit::GiveFieldMenu(*edit, session_);
        return edit;
    };
    tmpTxt = block("tmpTxt", QString::fromStdString(std::string(kind.captions[1])));
    tmpTxt->setFixedHeight(kit::HeightOfLines(*tmpTxt, kind.height));
    tmpTxt->installEventFilter(this);
    txtNotes = block("txtNotes", tr("Notes"));
    ctlPrivate = kit::MakePrivateBox();
    for (std::size_t i = 0; i < txtCtl.size(); ++i) {
        const auto number = static_cast<std::uint8_t>(kValue + i);
        if (Field(i) == tmpTxt)
            fields_.Tie(number, *tmpTxt, record_.n[i]);
        else
            fields_.Tie(number, *txtCtl[i], record_.n[i]);
    }
    fields_.Tie(kNotes, *txtNotes, record_.notes);
    fields_.Tie(kPrivate, *ctlPrivate, record_.isPrivate);
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
        txtCtl[i]->setVisible(used && Field(i) == txtCtl[i]);
        if (!used) continue;
        auto* field = new QWidget;
        auto* line = new QHBoxLayout(field);
        line->setContentsMargins(0, 0, 0, 0);
        line->setSpacing(Space::Tight);
        line->addWidget(Field(i), 1);
        if (dice_[i]) line->addWidget(dice_[i]);
        auto* label = kit::MakeLabel(QString::fromStdString(std::string(kind.captions[i])), Field(i));
        label->setObjectName(QString("lblTxt%1").arg(i));
        form->addRow(label, fields_.Row(*Field(i), field));
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
    column->addWidget(kit::MakeLabel("&Notes:", txtNotes));
    column->addWidget(fields_.Row(txtNotes), 1);
    column->addWidget(ctlPrivate);
    column->addWidget(buttons.box);
    kit::GiveLetters(*this);
    resize(qMax(560, fontMetrics().averageCharWidth() * 80), fontMetrics().lineSpacing() * 30);
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

Record frmEditConfidential::Value() {
    fields_.Take();
    return record_;
}

std::optional<custody::Draft> frmEditConfidential::HalfWritten() const {
    if (!recordChanged) return std::nullopt;
    std::optional<custody::Draft> draft = fields_.HalfWritten(store::Section::Confidential, record_.key);
    draft->category = record_.kind;
    return draft;
}

void frmEditConfidential::Fill(const custody::Draft& draft) {
    fields_.Fill(draft);
    recordChanged = true;
}

void frmEditConfidential::cmdOK_Click() {
    if (fields_.Judge()) accept();
}

void frmEditConfidential::reject() {
    if (recordChanged && !session_.ending && !kit::AskDiscardOrStay(session_) && !session_.ending) return;
    recordChanged = false;
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
