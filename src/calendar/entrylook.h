#pragma once

#include <QColor>
#include <QFrame>
#include <QLineEdit>
#include <QPalette>
#include <QString>
#include <QTimer>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "calendar/calendar.h"
#include "kit/words.h"

class QInputMethodEvent;
class QKeyEvent;
class QPainter;

/// What the views paint of an entry, and what they share in painting it.
namespace bmr::calendar {

/// How an occurrence is drawn. Its texts are overwritten when it goes.
struct EntryLook {
    Minutes start;
    Minutes end;  ///< may lie on a later day; one before the start is drawn with the least height
    bool allDay = false;
    bool alarm = false;
    bool repeats = false;
    bool isPrivate = false;

    kit::WipedLetters from;     ///< "09:00"
    kit::WipedLetters time;     ///< "09:00-10:00"
    kit::WipedLetters subject;  ///< in one line
    kit::WipedLetters tip;      ///< the whole of it, as plain text
};

/// What the hands did with an entry: the whole of it moved, its end alone, or a second one made.
enum class DropKind : std::uint8_t { Move, Resize, Copy };

/// An entry in words for a screen reader: "Tue 5, 09:00-10:00 Dentist, repeats, reminder".
QString SpokenWords(const EntryLook& look, const QString& day);

/// The ground of an entry of a tint (`kit::CategoryTint`).
QColor EntryGround(int tint, bool chosen, const QPalette& palette);

/// The colours of a table of days on a palette.
struct TableInks {
    explicit TableInks(const QPalette& palette);
    QColor base, text, quiet, accent;
    QColor line;      ///< of hours and days, translucent
    QColor half;      ///< of half hours, too
    QColor off;       ///< ground of what is not worked in, or of another month
    QColor today;     ///< ground
    QColor todayOff;  ///< ground of both
};

/// Paints entries into boxes on one device; made for one painting.
class EntryPainter {
  public:
    EntryPainter(QPainter& painter, const QPalette& palette, const QFont& font);

    /// A box with time, subject and signs, cut at the rectangle.
    void Box(const QRect& rect, const EntryLook& look, bool chosen);
    /// One line: a whole day as a bar, another with a dot and its time.
    void Line(const QRect& rect, const EntryLook& look, bool chosen);
    /// "+3 more", or "+3" where there is not so much room, as a button.
    void More(const QRect& rect, std::size_t hidden);

  private:
    void Ground(const QRect& rect, const EntryLook& look, bool chosen);
    /// The signs at the right top, as far as `least` pixels are left of them, behind `left`, or `whole` for
    /// what goes before the words are cut; gives where they begin.
    int Signs(const QRect& rect, int left, int height, int least, int whole, const EntryLook& look);
    /// Its words up to the signs, which stay whether the words are cut or not; else those go first.
    void OneLine(const QRect& rect, int left, int height, bool signsFirst, const EntryLook& look);

    QPainter& painter_;
    const QPalette& palette_;
    QFont font_;
    QFont small_;
};

/// A list of entries over the window, for those that find no room in a view. It goes by itself, and takes
/// its texts with it.
class EntryPopup final : public QFrame {
    Q_OBJECT

  public:
    /// `looks` stay where they are until `Forget`; `entries` are places in them, all of the day of the
    /// heading.
    EntryPopup(const std::vector<EntryLook>& looks, std::vector<std::size_t> entries, const QString& heading,
               QWidget* view);
    /// Beside a place of the screen, and within it.
    void ShowAt(const QPoint& at);
    /// Lets go of the looks and goes.
    void Forget();

  signals:
    void Chosen(std::size_t entry);
    void OpenWanted(std::size_t entry);
};

/// A line over what is marked in a view, which takes the typing until a pause: what is typed while an editor
/// opens is lost, for its window blocks the one that has the keys. Emptied as it goes.
class QuickLine final : public QLineEdit {
    Q_OBJECT

  public:
    /// Lies in `over`, a part of the view that has the keys otherwise.
    QuickLine(QWidget* view, QWidget* over);
    /// Opens with the letters; where it is open already they are added.
    void Begin(const QString& letters);
    /// Over that place, and within what it lies in below `top`.
    void Place(const QRect& at, int top);
    /// Goes without a word.
    void GiveUp();

  signals:
    /// All that was typed, after a pause, by Return or Tab, or as the focus went elsewhere. The line has
    /// gone.
    void Typed(const QString& words);

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void Tell();

    QWidget& view_;
    QTimer pause_;
};

/// What a key typed, where it may begin a subject; else nothing. The same of an input method.
QString BegunBy(const QKeyEvent& event);
QString BegunBy(const QInputMethodEvent& event);
/// The whole of an entry beside the pointer, as it was written and in lines of a readable length.
void ShowTip(const QPoint& at, const EntryLook& look, QWidget* view);
/// Takes the tooltip of a view away at once, with its text.
void DropTip();

}  // namespace bmr::calendar
