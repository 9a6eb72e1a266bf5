#include "app/sectioncolumn.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "kit/icons.h"
#include "kit/theme.h"
#include "store/sections.h"

namespace bmr::app {

namespace {

constexpr int kLockSize = 16;
constexpr int kWidth = 200;

}  // namespace

QString SectionName(std::uint8_t code) {
    const auto* facts = store::FactsOf(code);
    return facts ? QString::fromUtf8(facts->name.data(), static_cast<qsizetype>(facts->name.size()))
                 : QString();
}

SectionButton::SectionButton(std::uint8_t code, const QString& name, QWidget* parent)
    : QAbstractButton(parent), code_(code) {
    setObjectName(QString("optSection%1").arg(code));
    setText(name);
    setAccessibleName(name);
    setIcon(kit::SectionIcon(code));
    setFocusPolicy(Qt::StrongFocus);
    setCheckable(true);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    setAttribute(Qt::WA_Hover);
}

void SectionButton::SetLocked(bool locked) {
    if (locked == locked_) return;
    locked_ = locked;
    setAccessibleDescription(locked ? tr("Asks for the PIN") : QString());
    update();
}

void SectionButton::SetFolded(bool folded) {
    folded_ = folded;
    updateGeometry();
    update();
}

QSize SectionButton::sizeHint() const {
    const int height = std::max(36, fontMetrics().height() + 16);
    if (folded_) return {kIcon + 2 * kEdge, height};
    QFont pressed = font();
    pressed.setBold(true);
    const int words = QFontMetrics(pressed).horizontalAdvance(text());
    return {kEdge + kIcon + kEdge + words + kEdge + kLockSize + kEdge, height};
}

void SectionButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colours = palette();
    const QColor ground = colours.color(QPalette::Window);
    const QColor accent = kit::InkOf(kit::Ink::Accent, colours);
    const QColor ink =
        colours.color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText);
    const QRectF row = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);

    if (isChecked() || (isEnabled() && (underMouse() || isDown()))) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(kit::Blend(ground, isChecked() ? accent : ink, isChecked() ? 0.18 : 0.07));
        painter.drawRoundedRect(row, 6, 6);
    }
    if (isChecked()) {
        painter.setBrush(accent);
        painter.drawRoundedRect(QRectF(0, row.top() + 8, 3, row.height() - 16), 1.5, 1.5);
    }
    if (hasFocus()) {
        painter.setPen(QPen(accent, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(row.adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    }

    const QIcon::Mode mode = isEnabled() ? QIcon::Normal : QIcon::Disabled;
    const auto mirrored = [this](const QRect& r) { return QStyle::visualRect(layoutDirection(), rect(), r); };
    const QRect icon(kEdge, (height() - kIcon) / 2, kIcon, kIcon);
    this->icon().paint(&painter, mirrored(icon), Qt::AlignCenter, mode);
    const QRect lock =
        folded_ ? QRect(width() - kLockSize, height() - kLockSize, kLockSize, kLockSize)
                : QRect(width() - kEdge - kLockSize, (height() - kLockSize) / 2, kLockSize, kLockSize);
    if (locked_) kit::Icon("object-locked").paint(&painter, mirrored(lock), Qt::AlignCenter, mode);
    if (folded_) return;

    QFont font = this->font();
    font.setBold(isChecked());
    painter.setFont(font);
    painter.setPen(ink);
    const int left = icon.right() + 1 + kEdge;
    const QRect words(left, 0, (locked_ ? lock.left() : width()) - kEdge - left, height());
    painter.drawText(mirrored(words), Qt::AlignVCenter | Qt::AlignLeading,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, words.width()));
}

SectionColumn::SectionColumn(QWidget* parent) : QWidget(parent) {
    setObjectName("optSection");
    setAccessibleName(tr("Sections"));
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(kit::Space::Tight, kit::Space::Row, kit::Space::Tight + 1, kit::Space::Tight);
    rows->setSpacing(2);
    for (const store::SectionFacts* facts : store::Sections()) {
        const std::uint8_t code = facts->code;
        auto* button = new SectionButton(code, SectionName(code), this);
        button->installEventFilter(this);
        connect(button, &QAbstractButton::clicked, this, [this, code] {
            SetCurrent(current_);  // the press alone decides nothing: a PIN may be refused
            emit Chosen(code);
        });
        rows->addWidget(button);
        buttons_.push_back(button);
        available_.push_back(false);
    }
    rows->addStretch();
    fold_ = new QToolButton(this);
    fold_->setObjectName("cmdFold");
    fold_->setAutoRaise(true);
    fold_->setIconSize({16, 16});
    connect(fold_, &QToolButton::clicked, this, [this] { SetFolded(!folded_); });
    rows->addWidget(fold_, 0, Qt::AlignLeading);
    SetFolded(false);
    Reenable();
}

void SectionColumn::SetAvailable(std::uint8_t code, bool available) {
    const auto place = std::ranges::find(buttons_, code, &SectionButton::Code);
    available_.at(static_cast<std::size_t>(place - buttons_.begin())) = available;
    Reenable();
}

void SectionColumn::SetOpenable(bool openable) {
    openable_ = openable;
    Reenable();
}

void SectionColumn::Reenable() {
    for (std::size_t at = 0; at < buttons_.size(); ++at) {
        SectionButton& button = *buttons_[at];
        button.setEnabled(openable_ && available_[at]);
        const QString shortcut = QString("Ctrl+%1").arg(at + 1);
        button.setToolTip(available_[at] ? QString("%1 (%2)").arg(button.text(), shortcut)
                                         : tr("%1: Not in this version yet").arg(button.text()));
        if (!available_[at]) button.setAccessibleDescription(tr("Not in this version yet"));
    }
    ChangeTabStop();
}

void SectionColumn::SetCurrent(std::uint8_t code) {
    current_ = code;
    for (SectionButton* button : buttons_)
        button->setChecked(button->Code() == code);
    ChangeTabStop();
}

void SectionColumn::ChangeTabStop() {
    // The column is one stop for Tab; inside it the arrows go. Nine stops would lie before every list else.
    const auto stop = std::ranges::find_if(buttons_, [this](const SectionButton* button) {
        return button->isEnabled() && (current_ == 0 || button->Code() == current_);
    });
    for (auto at = buttons_.begin(); at != buttons_.end(); ++at)
        (*at)->setFocusPolicy(at == stop ? Qt::StrongFocus : Qt::ClickFocus);
}

void SectionColumn::SetLocked(const std::function<bool(std::uint8_t)>& locked) {
    for (SectionButton* button : buttons_)
        if (button->isEnabled() || button->Locked()) button->SetLocked(locked(button->Code()));
}

void SectionColumn::SetFolded(bool folded) {
    folded_ = folded;
    for (SectionButton* button : buttons_)
        button->SetFolded(folded);
    fold_->setIcon(kit::Icon(folded ? "go-next" : "go-previous"));
    fold_->setToolTip(folded ? tr("Show the names of the sections (F9)") : tr("Fold the column (F9)"));
    fold_->setAccessibleName(fold_->toolTip());
    UpdateWidth();
    emit FoldChanged(folded);
}

void SectionColumn::SetNarrow(bool narrow) {
    if (narrow == narrow_) return;
    narrow_ = narrow;
    const bool before = std::exchange(otherwise_, folded_);
    SetFolded(before);
}

void SectionColumn::UpdateWidth() {
    const QMargins edges = layout()->contentsMargins();
    int widest = 0;
    for (const SectionButton* button : buttons_)
        widest = std::max(widest, button->sizeHint().width());
    widest += edges.left() + edges.right();
    setFixedWidth(folded_ ? widest : std::max(widest, kWidth));
}

bool SectionColumn::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FontChange) UpdateWidth();
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    auto* button = static_cast<SectionButton*>(watched);
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        button->click();
        return true;
    }
    const bool forward = key == Qt::Key_Down || key == Qt::Key_Home;
    if (!forward && key != Qt::Key_Up && key != Qt::Key_End) return QWidget::eventFilter(watched, event);
    std::vector<SectionButton*> order = buttons_;
    if (!forward) std::ranges::reverse(order);
    auto from = order.begin();
    if (key == Qt::Key_Down || key == Qt::Key_Up) from = std::ranges::find(order, button) + 1;
    const auto next = std::find_if(from, order.end(), [](const SectionButton* b) { return b->isEnabled(); });
    if (next != order.end()) (*next)->setFocus(Qt::TabFocusReason);
    return true;
}

void SectionColumn::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int x = layoutDirection() == Qt::RightToLeft ? 0 : width() - 1;
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.drawLine(x, 0, x, height());
}

}  // namespace bmr::app
