#include "calendar/entrylook.h"

#include <QAbstractListModel>
#include <QApplication>
#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QListView>
#include <QLocale>
#include <QPainter>
#include <QScreen>
#include <QStyledItemDelegate>
#include <QTextLayout>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <utility>

#include "kit/icons.h"
#include "kit/theme.h"

namespace bmr::calendar {

namespace {

constexpr int kStripe = 4;
constexpr int kPadding = 4;
constexpr int kRadius = 4;
constexpr int kSymbol = 12;
constexpr int kDot = 8;
constexpr int kLeastLetters = 6;  ///< that signs leave to the words
constexpr int kOneLine = 22;      ///< a box that is lower has time and subject in one line
constexpr int kPause = 700;       ///< ms without a key, after which what was typed is taken

/// Colours of entries, as numbers of `kit::CategoryTint`.
constexpr int kSingleTint = 1;
constexpr int kSeriesTint = 2;
constexpr int kPrivateTint = 4;
constexpr int kAllDayTint = 5;

int TintOf(const EntryLook& look) {
    return look.isPrivate ? kPrivateTint
           : look.allDay  ? kAllDayTint
           : look.repeats ? kSeriesTint
                          : kSingleTint;
}

/// As many letters as fit: where even an ellipsis has hardly room they say more. Told by single letters,
/// which costs little where many boxes are narrow.
QString Letters(const QString& text, const QFontMetrics& metrics, int width) {
    qsizetype letters = 0;
    for (int taken = 0; letters < text.size(); ++letters) {
        taken += metrics.horizontalAdvance(text.at(letters));
        if (taken > width && letters > 0 && !text.at(letters).isLowSurrogate()) break;
    }
    return text.left(letters);
}

/// As many whole words as fit in front of an ellipsis, but for those of the first `kept` characters; a first
/// word that is too long is cut.
QString Elided(const QString& text, const QFontMetrics& metrics, int width, qsizetype kept = 0) {
    static const QString more = QStringLiteral("…");
    if (width < 3 * metrics.horizontalAdvance(more.front())) return Letters(text, metrics, width);
    if (metrics.horizontalAdvance(text) <= width) return text;
    const QString cut = metrics.elidedText(text, Qt::ElideRight, width);
    const qsizetype whole = std::max<qsizetype>(0, cut.size() - more.size());
    if (whole == 0) return Letters(text, metrics, width);
    const bool between = whole < text.size() && text.at(whole).isSpace();
    const qsizetype end = between ? whole : text.lastIndexOf(QChar(u' '), std::max<qsizetype>(0, whole - 1));
    return end > kept ? text.left(end).trimmed() + more : cut;
}

/// Words in a rectangle. A word that is longer than a line of its own goes on in the next one; what finds no
/// line ends in an ellipsis.
void DrawWords(QPainter& painter, const QRect& rect, const QString& text) {
    const QFontMetrics metrics(painter.font());
    QTextLayout layout(text, painter.font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    int whole = 0;  // lines that stand as they are
    QString rest;
    int y = 0;
    for (;; y += metrics.lineSpacing(), ++whole) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) break;
        line.setLineWidth(rect.width());
        line.setPosition(QPointF(0, y + (metrics.lineSpacing() - metrics.height()) / 2));
        if (y + 2 * metrics.lineSpacing() <= rect.height()) continue;
        rest = text.mid(line.textStart()).trimmed();
        break;
    }
    layout.endLayout();
    for (int i = 0; i < whole; ++i)
        layout.lineAt(i).draw(&painter, rect.topLeft());
    if (!rest.isEmpty())
        painter.drawText(QRect(rect.left(), rect.top() + y, rect.width(), metrics.lineSpacing()),
                         Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine,
                         Elided(rest, metrics, rect.width()));
}

/// The entries of a list, read where the view has them.
class EntryModel final : public QAbstractListModel {
  public:
    EntryModel(const std::vector<EntryLook>& looks, std::vector<std::size_t> entries, QObject* parent)
        : QAbstractListModel(parent), looks_(looks), entries_(std::move(entries)) {}
    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(entries_.size());
    }
    std::size_t EntryAt(int row) const { return entries_[static_cast<std::size_t>(row)]; }
    const EntryLook& LookAt(int row) const { return looks_[EntryAt(row)]; }
    void Forget() {
        beginResetModel();
        entries_.clear();
        endResetModel();
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (static_cast<std::size_t>(index.row()) >= entries_.size()) return {};
        const EntryLook& look = LookAt(index.row());
        if (role == Qt::DisplayRole) return QString(look.subject);
        if (role == Qt::AccessibleTextRole) return SpokenWords(look, {});
        return {};
    }

  private:
    const std::vector<EntryLook>& looks_;
    std::vector<std::size_t> entries_;
};

class EntryDelegate final : public QStyledItemDelegate {
  public:
    EntryDelegate(const EntryModel& model, QObject* parent) : QStyledItemDelegate(parent), model_(model) {}
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        EntryPainter entries(*painter, option.palette, option.font);
        entries.Line(option.rect.adjusted(2, 2, -2, -2), model_.LookAt(index.row()),
                     option.state & QStyle::State_Selected);
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {200, std::max(28, option.fontMetrics.height() + 2 * kit::Space::Tight)};
    }

  private:
    const EntryModel& model_;
};

}  // namespace

QString SpokenWords(const EntryLook& look, const QString& day) {
    const auto say = [](const char* words) { return QCoreApplication::translate("calendar", words); };
    QString words = day.isEmpty() ? QString() : day + ", ";
    words += (look.allDay ? say("all day") : QString(look.time)) + " " + look.subject;
    if (look.repeats) words += ", " + say("repeats");
    if (look.alarm) words += ", " + say("reminder");
    if (look.isPrivate) words += ", " + say("private");
    return words;
}

QColor EntryGround(int tint, bool chosen, const QPalette& palette) {
    const kit::Tint colours = kit::CategoryTint(tint, palette);
    return chosen ? kit::Blend(colours.ground, colours.stripe, 0.16) : colours.ground;
}

TableInks::TableInks(const QPalette& palette)
    : base(palette.color(QPalette::Active, QPalette::Base)),
      text(palette.color(QPalette::Active, QPalette::Text)),
      quiet(kit::Blend(base, text, 0.72)),
      accent(kit::InkOf(kit::Ink::Accent, palette)),
      line(text),
      half(text),
      off(kit::Blend(base, text, kit::IsContrast(palette) ? 0.14 : 0.045)),
      today(kit::Blend(base, accent, kit::IsContrast(palette) ? 0.16 : 0.08)),
      todayOff(kit::Blend(today, text, kit::IsContrast(palette) ? 0.14 : 0.045)) {
    // Through these the ground is seen: they cross several.
    line.setAlphaF(kit::IsContrast(palette) ? 0.6F : 0.16F);
    half.setAlphaF(kit::IsContrast(palette) ? 0.25F : 0.07F);
}

EntryPainter::EntryPainter(QPainter& painter, const QPalette& palette, const QFont& font)
    : painter_(painter), palette_(palette), font_(font), small_(font) {
    // A desktop may give its font in pixels.
    if (font.pointSizeF() > 0)
        small_.setPointSizeF(font.pointSizeF() * kit::kSmallText);
    else
        small_.setPixelSize(std::max(1, static_cast<int>(font.pixelSize() * kit::kSmallText)));
}

void EntryPainter::Ground(const QRect& rect, const EntryLook& look, bool chosen) {
    const kit::Tint tint = kit::CategoryTint(TintOf(look), palette_);
    painter_.setRenderHint(QPainter::Antialiasing);
    const double line = chosen ? 2 : 1;
    const bool edged = chosen || kit::IsContrast(palette_);
    painter_.setPen(QPen(edged ? tint.stripe : palette_.color(QPalette::Active, QPalette::Base), line));
    painter_.setBrush(EntryGround(TintOf(look), chosen, palette_));
    const double inset = line / 2;
    painter_.drawRoundedRect(QRectF(rect).adjusted(inset, inset, -inset, -inset), kRadius, kRadius);
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(tint.stripe);
    painter_.drawRoundedRect(QRectF(rect.left(), rect.top() + inset, kStripe, rect.height() - 2 * inset), 2,
                             2);
    painter_.setPen(palette_.color(QPalette::Active, QPalette::Text));
}

int EntryPainter::Signs(const QRect& rect, int left, int height, int least, int whole,
                        const EntryLook& look) {
    int right = rect.right() - 2;
    const auto sign = [&](bool wanted, const char* name, int room) {
        if (!wanted || right - kSymbol - 3 - left < room) return;
        right -= kSymbol;
        const QPixmap pixmap =
            kit::Icon(name).pixmap(QSize(kSymbol, kSymbol), painter_.device()->devicePixelRatioF());
        painter_.drawPixmap(QPoint(right, rect.top() + (height - kSymbol) / 2), pixmap);
        right -= 3;
    };
    // What matters most comes first: a series is told by its colour, too.
    sign(look.isPrivate, "object-locked", least);
    sign(look.alarm, "alarm", std::max(least, whole));
    sign(look.repeats, "appointment-recurring", std::max(least, whole));
    return right;
}

void EntryPainter::OneLine(const QRect& rect, int left, int height, bool signsFirst, const EntryLook& look) {
    const QFontMetrics metrics = painter_.fontMetrics();
    const int letter = metrics.averageCharWidth();
    // Where a box stands tells when it begins: its subject goes before that where both have no room. The
    // signs have no say in it, so that boxes of one width are alike.
    const QString time = look.from.isEmpty() ? QString() : look.from + " ";
    const int ahead = metrics.horizontalAdvance(time);
    const bool bare = look.allDay || rect.right() - left < ahead + 4 * letter;
    const QString text = bare ? QString(look.subject) : time + look.subject;
    const int least = (bare ? 0 : ahead) + kLeastLetters * letter;
    const int whole = signsFirst ? 0 : metrics.horizontalAdvance(text);
    const int right = Signs(rect, left, height, least, whole, look);
    painter_.drawText(QRect(QPoint(left, rect.top()), QPoint(right, rect.bottom())),
                      Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine,
                      Elided(text, metrics, right - left + 1, bare ? 0 : time.size()));
}

void EntryPainter::Box(const QRect& rect, const EntryLook& look, bool chosen) {
    painter_.save();
    painter_.setFont(font_);
    Ground(rect, look, chosen);
    painter_.setClipRect(rect.adjusted(kStripe, 1, -1, -1), Qt::IntersectClip);
    QRect words(rect.left() + kStripe + kPadding, rect.top() + 1, 0, rect.height() - 2);
    words.setRight(rect.right() - kPadding);
    const QFontMetrics small(small_);
    const int first = small.lineSpacing();
    const int two = first + painter_.fontMetrics().lineSpacing() + 2;
    if (words.width() < kDot) return painter_.restore();
    if (look.allDay || rect.height() < std::max(kOneLine, two)) {
        OneLine(rect.adjusted(0, 0, 2 - kPadding, 0), words.left(), std::min(rect.height(), kOneLine), true,
                look);
        return painter_.restore();
    }
    words.adjust(0, 1, 0, 0);
    // Beside the start stands what finds room there; the subject has the lines below for itself.
    const int start = small.horizontalAdvance(look.from);
    const int room = Signs(rect, words.left(), first + 4, start, 0, look) - words.left();
    const QString& time = small.horizontalAdvance(look.time) <= room ? look.time : look.from;
    if (!time.isEmpty() && small.horizontalAdvance(time) <= room) {
        painter_.setFont(small_);
        painter_.drawText(QRect(words.left(), words.top(), room, first),
                          Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine, time);
        painter_.setFont(font_);
        words.adjust(0, first, 0, 0);
    }
    DrawWords(painter_, words, look.subject);
    painter_.restore();
}

void EntryPainter::Line(const QRect& rect, const EntryLook& look, bool chosen) {
    painter_.save();
    painter_.setFont(font_);
    painter_.setPen(palette_.color(QPalette::Active, QPalette::Text));
    if (look.allDay || chosen) Ground(rect, look, chosen);
    if (!look.allDay && !chosen) {
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.save();
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(kit::CategoryTint(TintOf(look), palette_).stripe);
        painter_.drawEllipse(
            QRectF(rect.left() + kPadding - 1, rect.top() + (rect.height() - kDot) / 2.0, kDot, kDot));
        painter_.restore();
    }
    const int left = rect.left() + kPadding + (look.allDay ? kPadding : kDot + 3);
    OneLine(rect, left, rect.height(), false, look);
    painter_.restore();
}

void EntryPainter::More(const QRect& rect, std::size_t hidden) {
    const TableInks inks(palette_);
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(QPen(inks.accent, 1));
    painter_.setBrush(kit::SelectionTint(palette_));
    painter_.drawRoundedRect(QRectF(rect).adjusted(.5, .5, -.5, -.5), kRadius, kRadius);
    painter_.setFont(small_);
    const QString number = QLocale().toString(static_cast<qulonglong>(hidden));
    QString words = QCoreApplication::translate("calendar", "+%1 more").arg(number);
    const QRect within = rect.adjusted(kPadding, 0, -2, 0);
    if (painter_.fontMetrics().horizontalAdvance(words) > within.width()) words = "+" + number;
    const int top = std::max(0, (std::min(rect.height(), kOneLine) - painter_.fontMetrics().height()) / 2);
    painter_.drawText(within.adjusted(0, top, 0, 0), Qt::AlignTop | Qt::AlignLeading | Qt::TextSingleLine,
                      words);
    painter_.restore();
}

EntryPopup::EntryPopup(const std::vector<EntryLook>& looks, std::vector<std::size_t> entries,
                       const QString& heading, QWidget* view)
    : QFrame(view, Qt::Popup) {
    setObjectName("entryList");
    setAccessibleName(tr("Appointments"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameShape(QFrame::StyledPanel);
    auto* model = new EntryModel(looks, std::move(entries), this);
    auto* list = new QListView(this);
    list->setFrameShape(QFrame::NoFrame);
    list->setUniformItemSizes(true);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setItemDelegate(new EntryDelegate(*model, list));
    list->setModel(model);
    auto* within = new QVBoxLayout(this);
    within->setContentsMargins(kit::Space::Tight, kit::Space::Tight, kit::Space::Tight, kit::Space::Tight);
    auto* lblDay = new QLabel(this);
    lblDay->setObjectName("lblDay");
    lblDay->setTextFormat(Qt::PlainText);
    lblDay->setText(heading);
    QFont bold = lblDay->font();
    bold.setBold(true);
    lblDay->setFont(bold);
    lblDay->setContentsMargins(kit::Space::Tight, kit::Space::Tight, kit::Space::Tight, kit::Space::Tight);
    within->setSpacing(0);
    within->addWidget(lblDay);
    within->addWidget(list);
    setFocusProxy(list);
    connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this, model](const QModelIndex& now) {
                if (now.isValid()) emit Chosen(model->EntryAt(now.row()));
            });
    connect(list, &QListView::activated, this, [this, model](const QModelIndex& now) {
        const std::size_t entry = model->EntryAt(now.row());
        close();
        emit OpenWanted(entry);
    });
}

void EntryPopup::Forget() {
    // Not at once: it may be in the middle of telling what was chosen.
    disconnect();
    static_cast<EntryModel*>(findChild<QListView*>()->model())->Forget();
    hide();
    deleteLater();
}

void EntryPopup::ShowAt(const QPoint& at) {
    auto* list = findChild<QListView*>();
    constexpr int kRows = 12;
    constexpr int kWide = 320;
    const int row = list->sizeHintForRow(0);
    const int rows = std::min(kRows, list->model()->rowCount());
    const int heading = findChild<QLabel*>("lblDay")->sizeHint().height();
    resize(kWide, heading + rows * row + 2 * kit::Space::Tight + 2 * frameWidth());
    QRect place(at, size());
    if (const QScreen* screen = QApplication::screenAt(at)) {
        const QRect room = screen->availableGeometry();
        place.moveRight(std::min(place.right(), room.right()));
        place.moveBottom(std::min(place.bottom(), room.bottom()));
        place.moveTopLeft(QPoint(std::max(place.left(), room.left()), std::max(place.top(), room.top())));
    }
    move(place.topLeft());
    show();
    list->setFocus(Qt::PopupFocusReason);
    list->setCurrentIndex(list->model()->index(0, 0));
}

QuickLine::QuickLine(QWidget* view, QWidget* over) : QLineEdit(over), view_(*view) {
    setObjectName("txtQuick");
    setAccessibleName(tr("Subject of a new appointment"));
    setContextMenuPolicy(Qt::PreventContextMenu);
    setDragEnabled(false);
    pause_.setSingleShot(true);
    connect(&pause_, &QTimer::timeout, this, &QuickLine::Tell);
    connect(this, &QLineEdit::textChanged, this, [this] { pause_.start(kPause); });
    hide();
}

void QuickLine::Begin(const QString& letters) {
    show();
    setFocus(Qt::OtherFocusReason);
    deselect();
    insert(letters);
}

void QuickLine::Place(const QRect& at, int top) {
    constexpr int kLeastWidth = 120;
    const QRect room = parentWidget()->rect().adjusted(0, top, 0, 0);
    const QSize wanted(std::max(at.width(), kLeastWidth), sizeHint().height());
    QRect place(at.topLeft(), wanted.boundedTo(room.size()));
    place.moveRight(std::min(place.right(), room.right()));
    place.moveBottom(std::min(place.bottom(), room.bottom()));
    place.moveTop(std::max(place.top(), room.top()));
    setGeometry(place);
}

void QuickLine::GiveUp() {
    QString old = text();
    setText(QString(old.size(), QChar(u' ')));
    setText({});  // with what could be undone
    kit::WipeQString(old);
    pause_.stop();
    if (hasFocus()) view_.setFocus(Qt::OtherFocusReason);
    pause_.stop();
    hide();
}

void QuickLine::Tell() {
    // Another window has the word.
    if (QApplication::activeModalWidget() || QApplication::activePopupWidget()) return pause_.start(kPause);
    const kit::WipedLetters words = text();
    GiveUp();
    if (!words.trimmed().isEmpty()) emit Typed(words);
}

bool QuickLine::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool ends = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab ||
                          key == Qt::Key_Backtab || key == Qt::Key_Escape;
        // Whatever else these do in the window; left to itself the toolkit takes Tab before it is a key here.
        if (ends) {
            event->accept();
            if (event->type() == QEvent::KeyPress) key == Qt::Key_Escape ? GiveUp() : Tell();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void QuickLine::keyPressEvent(QKeyEvent* event) {
    pause_.start(kPause);
    QLineEdit::keyPressEvent(event);
    event->accept();  // else the view below would move its mark
}

void QuickLine::inputMethodEvent(QInputMethodEvent* event) {
    QLineEdit::inputMethodEvent(event);
    if (event->preeditString().isEmpty())
        pause_.start(kPause);
    else
        pause_.stop();
}

void QuickLine::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    // Not in the middle of the click that took it.
    if (isVisible() && event->reason() != Qt::PopupFocusReason) pause_.start(0);
}

namespace {

QString Begun(const QString& text) {
    if (text.isEmpty() || text.front().isSpace()) return {};
    return text.front().isPrint() || text.front().isSurrogate() ? text : QString();
}

}  // namespace

QString BegunBy(const QKeyEvent& event) {
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return {};
    return Begun(event.text());
}

QString BegunBy(const QInputMethodEvent& event) {
    return Begun(event.commitString());
}

void ShowTip(const QPoint& at, const EntryLook& look, QWidget* view) {
    // Left to itself the toolkit takes what looks like a tag for one, and does not break the lines of the
    // rest.
    QToolTip::showText(at, Qt::convertFromPlainText(look.tip, Qt::WhiteSpaceNormal), view);
}

void DropTip() {
    if (!QToolTip::isVisible()) return;
    // The toolkit lets it fade first, and keeps its words meanwhile.
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* tip = qobject_cast<QLabel*>(window); tip && tip->objectName() == "qtooltip_label") {
            tip->clear();
            tip->close();
        }
    QToolTip::hideText();
}

}  // namespace bmr::calendar
