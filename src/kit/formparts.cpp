#include "kit/formparts.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QShortcut>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>

#include "kit/icons.h"
#include "kit/theme.h"

namespace bmr::kit {

QLabel* MakeErrorLine(const char* name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setWordWrap(true);
    QPalette red = label->palette();
    red.setColor(QPalette::WindowText, InkOf(Ink::Alarm, red));
    label->setPalette(red);
    label->hide();
    return label;
}

QWidget* WithError(QWidget* field, QLabel* error) {
    auto* both = new QWidget;
    auto* column = new QVBoxLayout(both);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Space::Tight);
    column->addWidget(field);
    column->addWidget(error);
    return both;
}

QLabel* MakeLabel(const QString& text, QWidget* buddy) {
    auto* label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

QLabel* MakeHeading(const char* name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * kHeadingText);
    font.setBold(true);
    label->setFont(font);
    return label;
}

QPushButton* MakeButton(const char* name, QAction* action) {
    auto* button = new QPushButton(action->icon(), action->iconText());
    button->setObjectName(name);
    button->setToolTip(action->toolTip());
    button->setEnabled(action->isEnabled());
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    QObject::connect(action, &QAction::changed, button,
                     [button, action] { button->setEnabled(action->isEnabled()); });
    return button;
}

QString PlainText(const QPlainTextEdit& edit) {
    QString text = edit.document()->toRawText();
    for (const QChar separator : {QChar(QChar::ParagraphSeparator), QChar(QChar::LineSeparator)})
        text.replace(separator, QChar('\n'));
    return text;
}

QAction* MakeAction(QWidget& form, const Command& command) {
    auto* action = new QAction(command.text, &form);
    action->setObjectName(command.name);
    if (command.icon) action->setIcon(Icon(command.icon));
    if (!command.brief.isEmpty()) action->setIconText(command.brief);
    if (command.shortcut.isEmpty()) return action;
    action->setShortcut(command.shortcut);
    action->setShortcutContext(Qt::WindowShortcut);
    form.addAction(action);
    return action;
}

QToolButton* MakeIconButton(const QString& name, const char* icon, const QString& tip) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setIcon(Icon(icon));
    button->setAutoRaise(true);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QLineEdit* MakeLineField(const char* name, const QString& accessibleName) {
    auto* field = new QLineEdit;
    field->setObjectName(name);
    field->setAccessibleName(accessibleName);
    return field;
}

namespace {

class UndoLeaver final : public QObject {
  public:
    explicit UndoLeaver(QLineEdit& field) : QObject(&field), field_(field) { field.installEventFilter(this); }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::ShortcutOverride) return QObject::eventFilter(watched, event);
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool step = key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo);
        // Who has just taken back what they typed and presses once too often means the field still.
        if (!step || field_.isUndoAvailable() || field_.isRedoAvailable()) return false;
        event->ignore();
        return true;
    }

  private:
    QLineEdit& field_;
};

}  // namespace

void LeaveUndoToWindow(QLineEdit& field) {
    new UndoLeaver(field);
}

QPlainTextEdit* MakeTextField(const char* name, const QString& accessibleName) {
    auto* field = new QPlainTextEdit;
    field->setObjectName(name);
    field->setAccessibleName(accessibleName);
    field->setTabChangesFocus(true);
    return field;
}

QCheckBox* MakePrivateBox() {
    auto* box = new QCheckBox(QCoreApplication::translate("formparts", "&Private"));
    box->setObjectName("ctlPrivate");
    box->setToolTip(QCoreApplication::translate("formparts", "Hidden unless private records are shown"));
    return box;
}

void SetMonospaced(QWidget& field, bool on) {
    if (!on) return field.setFont({});
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(field.font().pointSizeF());
    field.setFont(font);
}

SaveCancel MakeSaveCancel(QDialog& editor, std::function<void()> save) {
    auto* box = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    QPushButton* cmdOK = box->button(QDialogButtonBox::Save);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setToolTip(QCoreApplication::translate("formparts", "Ctrl+Return"));
    QPushButton* cmdEsc = box->button(QDialogButtonBox::Cancel);
    cmdEsc->setObjectName("cmdEsc");
    QObject::connect(cmdEsc, &QPushButton::clicked, &editor, &QDialog::reject);
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), &editor);
        QObject::connect(shortcut, &QShortcut::activated, &editor, save);
    }
    QObject::connect(cmdOK, &QPushButton::clicked, &editor, std::move(save));
    return {box, cmdOK, cmdEsc};
}

namespace {

QChar LetterOf(const QString& text) {
    const QKeySequence keys = QKeySequence::mnemonic(text);
    return keys.isEmpty() ? QChar() : QChar(keys[0].key()).toLower();
}

QString LettersIn(const QWidget& window) {
    QString taken;
    const auto take = [&taken](const QString& text) {
        if (const QChar letter = LetterOf(text); !letter.isNull()) taken += letter;
    };
    for (const auto* label : window.findChildren<QLabel*>())
        if (label->buddy()) take(label->text());
    for (const auto* button : window.findChildren<QAbstractButton*>())
        take(button->text());
    for (const auto* group : window.findChildren<QGroupBox*>())
        take(group->title());
    for (const auto* tabs : window.findChildren<QTabBar*>())
        for (int tab = 0; tab < tabs->count(); ++tab)
            take(tabs->tabText(tab));
    return taken;
}

}  // namespace

void GiveLetters(QDialog& dialog) {
    QString taken = LettersIn(dialog);
    for (QAbstractButton* button : dialog.findChild<QDialogButtonBox*>()->buttons()) {
        const QString text = button->text();
        if (!LetterOf(text).isNull()) continue;
        for (qsizetype at = 0; at < text.size(); ++at) {
            const QChar letter = text[at].toLower();
            if (!letter.isLetter() || taken.contains(letter)) continue;
            button->setText(QString(text).insert(at, '&'));
            taken += letter;
            break;
        }
    }
}

void FinishBox(QMessageBox& box) {
    GiveLetters(box);
    box.layout()->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    grid->setVerticalSpacing(Space::Margin);
    grid->setHorizontalSpacing(Space::Tight);  // a spacer of its own stands behind the icon
    const auto* icon = box.findChild<QLabel*>("qt_msgboxex_icon_label");
    if (auto* text = box.findChild<QLabel*>("qt_msgbox_label")) {
        text->setAlignment(Qt::AlignVCenter | Qt::AlignLeading);
        // One line stands at the middle of the icon, not at its top. A height that is set takes the place of
        // the text's own, so it must not be less than that.
        if (icon && !icon->pixmap().isNull())
            text->setMinimumHeight(qMax(qRound(icon->pixmap().deviceIndependentSize().height()),
                                        text->minimumSizeHint().height()));
    }
}

bool Tell(QLabel& line, const QString& why) {
    line.setText(why);
    line.setVisible(!why.isEmpty());
    return why.isEmpty();
}

int HeightOfLines(const QPlainTextEdit& edit, int lines) {
    const auto margins = 2 * (edit.frameWidth() + static_cast<int>(edit.document()->documentMargin()));
    return edit.fontMetrics().lineSpacing() * lines + margins;
}

}  // namespace bmr::kit
