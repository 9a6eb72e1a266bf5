#include "kit/formparts.h"

#include <QAction>
#include <QPushButton>
#include <QTextBlock>
#include <QVBoxLayout>

#include "base/bytes.h"
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

void MarkUnmappable(QPlainTextEdit& edit) {
    QList<QTextEdit::ExtraSelection> marks;
    QTextCharFormat format;
    format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    format.setUnderlineColor(InkOf(Ink::Alarm, edit.palette()));
    int unit = 0;  // place in UTF-16 units, as the cursor counts
    std::size_t character = 0;
    const QString text = PlainText(edit);
    for (const Unmappable& found : FindUnmappable(text.toStdString())) {
        for (; character < found.position; ++character)
            unit += text[unit].isHighSurrogate() ? 2 : 1;
        QTextCursor cursor(edit.document());
        cursor.setPosition(unit);
        cursor.setPosition(unit + (text[unit].isHighSurrogate() ? 2 : 1), QTextCursor::KeepAnchor);
        marks.append({cursor, format});
    }
    edit.setExtraSelections(marks);
}

}  // namespace bmr::kit
