#include "kit/strip.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include "kit/icons.h"
#include "kit/theme.h"

namespace bmr::kit {

Strip::Strip(QWidget* parent)
    : QFrame(parent), icon_(new QLabel), text_(new QLabel), action_(new QPushButton) {
    setObjectName("strip");
    setFrameShape(QFrame::NoFrame);
    setAutoFillBackground(true);
    text_->setObjectName("stripText");
    text_->setWordWrap(true);
    text_->setTextFormat(Qt::PlainText);
    action_->setObjectName("stripAction");
    auto* close = new QToolButton;
    close->setObjectName("stripClose");
    close->setIcon(Icon("window-close"));
    close->setAutoRaise(true);
    close->setToolTip(tr("Close this line"));
    close->setAccessibleName(tr("Close"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Space::Margin, Space::Tight, Space::Tight, Space::Tight);
    row->setSpacing(Space::Row);
    row->addWidget(icon_);
    row->addWidget(text_, 1);
    row->addWidget(action_);
    row->addWidget(close);
    action_->setAutoDefault(true);  // Return presses it as Space does
    connect(close, &QToolButton::clicked, this, [this] {
        Clear();
        emit Closed();
    });
    connect(action_, &QAbstractButton::clicked, this, &Strip::Acted);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* before, const QWidget* now) {
        if (now && isAncestorOf(now) && before && !isAncestorOf(before)) from_ = before;
    });
    hide();
}

void Strip::Say(const QString& text, Kind kind) {
    Say(text, kind, QString());
}

void Strip::Say(const QString& text, Kind kind, const QString& action) {
    kind_ = kind;
    text_->setText(text);
    action_->setText(action);
    // As wide as its word: beside a narrow list every pixel of a usual button is taken from the words.
    action_->setFixedWidth(action_->fontMetrics().horizontalAdvance(action) + 2 * Space::Margin);
    action_->setVisible(!action.isEmpty());
    setAccessibleName(text);
    Colour();
    show();
}

void Strip::Clear() {
    text_->clear();
    // Hidden with it, the focus would go wherever the next widget happens to be.
    if (isAncestorOf(QApplication::focusWidget()) && from_ && from_->isVisible() && from_->isEnabled())
        from_->setFocus(Qt::OtherFocusReason);
    hide();
}

bool Strip::InHand() const {
    return isVisible() && (underMouse() || isAncestorOf(QApplication::focusWidget()));
}

void Strip::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange) Colour();
}

void Strip::Colour() {
    static constexpr const char* kIcons[] = {"task-complete", "dialog-information", "dialog-warning",
                                             "dialog-error"};
    static constexpr Ink kInks[] = {Ink::Good, Ink::Accent, Ink::Warning, Ink::Alarm};
    const auto at = static_cast<std::size_t>(kind_);
    // The ground is a breath of the ink over the list's own colour, in light and dark alike.
    QPalette palette;
    const QColor ink = InkOf(kInks[at], palette);
    palette.setColor(QPalette::Window, Blend(palette.color(QPalette::Base), ink, 0.14));
    setPalette(palette);
    icon_->setPixmap(Icon(kIcons[at], kInks[at]).pixmap(QSize(20, 20), devicePixelRatioF()));
}

}  // namespace bmr::kit
