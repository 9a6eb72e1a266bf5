#include "app/choicebutton.h"

#include <QStyleOptionButton>
#include <QStylePainter>
#include <algorithm>

#include "kit/theme.h"

namespace bmr::app {

namespace {

constexpr int kIcon = 32;
constexpr int kEdge = kit::Space::Margin;
constexpr int kLead = 2;  ///< between title and sentence

}  // namespace

ChoiceButton::ChoiceButton(const QIcon& icon, const QString& title, const QString& sentence, QWidget* parent)
    : QPushButton(icon, title, parent), sentence_(sentence) {
    setAutoDefault(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleDescription(sentence);
}

QFont ChoiceButton::TitleFont() const {
    QFont font = this->font();
    font.setBold(true);
    return font;
}

QSize ChoiceButton::sizeHint() const {
    const QFontMetrics title(TitleFont());
    const int words = std::max(title.size(Qt::TextShowMnemonic, text()).width(),
                               fontMetrics().horizontalAdvance(sentence_));
    const int lines = title.height() + kLead + fontMetrics().height();
    return {kEdge + kIcon + kEdge + words + kEdge, std::max(kIcon, lines) + 2 * kEdge};
}

void ChoiceButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.clear();
    option.icon = QIcon();
    painter.drawControl(QStyle::CE_PushButton, option);

    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const auto mirrored = [this](const QRect& r) { return QStyle::visualRect(layoutDirection(), rect(), r); };
    icon().paint(&painter, mirrored({kEdge, (height() - kIcon) / 2, kIcon, kIcon}), Qt::AlignCenter,
                 isEnabled() ? QIcon::Normal : QIcon::Disabled);

    const QFontMetrics title(TitleFont());
    const int left = kEdge + kIcon + kEdge;
    const int top = (height() - title.height() - kLead - fontMetrics().height()) / 2;
    const QRect first(left, top, width() - left - kEdge, title.height());
    const QRect second(left, first.bottom() + 1 + kLead, first.width(), fontMetrics().height());
    painter.setFont(TitleFont());
    painter.setPen(palette().color(group, QPalette::ButtonText));
    painter.drawText(mirrored(first), Qt::AlignLeading | Qt::AlignVCenter | Qt::TextShowMnemonic, text());
    painter.setFont(font());
    painter.setPen(palette().color(group, isEnabled() ? QPalette::PlaceholderText : QPalette::ButtonText));
    painter.drawText(mirrored(second), Qt::AlignLeading | Qt::AlignVCenter, sentence_);
}

void MakeHeading(QWidget* widget) {
    QFont font = widget->font();
    font.setPointSizeF(font.pointSizeF() * kit::kHeadingText);
    font.setBold(true);
    widget->setFont(font);
}

}  // namespace bmr::app
