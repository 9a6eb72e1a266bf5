// The hands on the grid of hours: what a drag, a click or a key asks for, and where boxes stand.
#include "calendar/weekview.h"

#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>
#include <cmath>
#include <limits>
#include <set>

#include "kit/theme.h"
#include "views_fixture.h"

namespace bmr::calendar {

static void PrintTo(const DaySpan& span, std::ostream* out) {
    *out << "day " << span.day << " " << span.start << "-" << span.end << (span.allDay ? " whole" : "");
}

namespace {

using Drop = std::tuple<std::size_t, DaySpan, DropKind>;

class WeekGrid : public testing::Test {
  protected:
    WeekGrid() {
        QObject::connect(&view, &WeekView::Dropped,
                         [this](std::size_t entry, const DaySpan& span, DropKind kind) {
                             drops.emplace_back(entry, span, kind);
                         });
        QObject::connect(&view, &WeekView::NewWanted, [this](const QString& letters) { begun << letters; });
        QObject::connect(&view, &WeekView::OpenWanted,
                         [this](std::size_t entry) { opened.push_back(entry); });
        view.resize(1000, 700);
        view.SetFrame(FrameFrom(kMonday));
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
        view.setFocus();
        view.ScrollTo(480);
    }
    static WeekView::Frame FrameFrom(Day first, int days = 7) {
        WeekView::Frame frame;
        frame.first = first;
        for (int day = 0; day < days; ++day)
            frame.DLabel.push_back(QString("day %1").arg(day));
        frame.hours.assign(24, "00:00");
        return frame;
    }
    void Give(std::vector<EntryLook> looks) { view.SetEntries(std::move(looks)); }
    template <class... Look>
    void Give(Look... look) {
        std::vector<EntryLook> looks;
        (looks.push_back(std::move(look)), ...);
        Give(std::move(looks));
    }
    QPoint Middle(std::size_t entry) const { return view.BoxOf(entry).center(); }
    QPoint Middle(const DaySpan& span) const { return view.AreaOf(span).center(); }
    QPoint Row(int day, int minutes) const { return Middle({day, minutes, minutes + 30, false}); }
    QPoint Strip(int day) const { return Middle({day, 0, 1440, true}); }
    QPoint LowerEdge(std::size_t entry) const {
        const QRect box = view.BoxOf(entry);
        return {box.center().x(), box.bottom() - 1};
    }
    Drop Last() {
        EXPECT_EQ(drops.size(), 1U);
        Drop last = drops.empty() ? Drop{} : drops.back();
        drops.clear();
        return last;
    }

    WeekView view;
    Hand hand{*view.viewport()};
    std::vector<Drop> drops;
    QStringList begun;
    std::vector<std::size_t> opened;
};

TEST_F(WeekGrid, MovesByRowsAtEveryZoomWhereverItIsScrolled) {
    for (const int zoom : {WeekView::kLeastHour, WeekView::kFirstHour, WeekView::kMostHour})
        for (const int top : {400, 530}) {
            Give(Entry(1, 550, 610, "beside a line"));
            view.SetPixelsOfHour(zoom);
            view.ScrollTo(top);
            const QPoint from = Middle(0);
            const QPoint rows(0, zoom * 3 / 2);
            hand.Drag(from, QPoint(Row(3, 0).x(), 0) + QPoint(0, from.y()) + rows);
            EXPECT_EQ(Last(), Drop(0, {3, 640, 700, false}, DropKind::Move)) << zoom << " from " << top;
        }
}

TEST_F(WeekGrid, WhatGoesNowhereChangesNothing) {
    Give(Entry(1, 540, 590, "here"));
    const QPoint from = Row(1, 540);
    hand.Drag(from, from);
    hand.Drag(from, from + QPoint(0, 4));
    hand.keys = Qt::ControlModifier;
    hand.Drag(from, from);
    hand.keys = {};
    // Its end stays where it is while the hand is within the last row.
    hand.Drag(LowerEdge(0), LowerEdge(0) - QPoint(0, 8));
    const auto taken = [&](const std::function<void()>& back) {
        hand.Press(from);
        hand.Move(from + QPoint(150, 80));
        back();
        hand.Move(from + QPoint(150, 90));
        hand.Release(from + QPoint(150, 90));
    };
    taken([&] { QTest::keyClick(&view, Qt::Key_Escape); });
    taken([&] { hand.Press(from, Qt::RightButton); });
    taken([&] { view.clearFocus(); });
    taken([&] { Give(Entry(1, 540, 600, "anew")); });
    EXPECT_TRUE(drops.empty());
    // What was marked comes back, too.
    view.Mark({2, 600, 630, false});
    hand.Press(Row(4, 600));
    hand.Move(Row(4, 720));
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(view.Marked(), (DaySpan{4, 600, 630, false}));
}

TEST_F(WeekGrid, NothingLeavesTheDaysOfTheView) {
    Give(Entry(0, 550, 700, "first"), Entry(6, 1380, 1500, "over midnight"));
    hand.Drag(Middle(0), {-300, 5000});
    EXPECT_EQ(std::get<1>(Last()).day, 0);
    hand.Drag(Middle(0), {5000, view.viewport()->height() - 20});
    EXPECT_EQ(std::get<1>(Last()).day, 6);
    view.ScrollTo(1440);
    hand.Drag(Row(6, 1380), Row(6, 1380) + QPoint(0, 3000));
    const auto [entry, span, kind] = Last();
    EXPECT_EQ(span, (DaySpan{6, 1410, 1530, false}));
}

TEST_F(WeekGrid, CrossesTheBorderOfTheStripBothWays) {
    Give(Entry(1, 0, 1440, "whole", true), Entry(1, 600, 660, "timed"));
    hand.Drag(Middle(1), Strip(2));
    EXPECT_EQ(Last(), Drop(1, {2, 0, 1440, true}, DropKind::Move));
    hand.Drag(Middle(0), Row(4, 690));
    EXPECT_EQ(Last(), Drop(0, {4, 690, 750, false}, DropKind::Move));
    hand.Drag(Middle(0), Strip(5));
    EXPECT_EQ(Last(), Drop(0, {5, 0, 1440, true}, DropKind::Move));
}

TEST_F(WeekGrid, WhatIsPaintedSaysNoMoreThanIsTrue) {
    view.verticalScrollBar()->setValue(0);
    view.Mark({5, 1200, 1230, false});
    const auto painted = [&](const QRect& part) { return view.viewport()->grab(part).toImage(); };
    const QRect rest = view.AreaOf({2, 0, 90, false});
    // The rest of a night tells until when it lasts, not when it began.
    Give(Entry(1, 1290, 1440 + 90, "night"));
    const QImage from2130 = painted(rest);
    Give(Entry(1, 1200, 1440 + 90, "night"));
    EXPECT_EQ(painted(rest), from2130);
    // A mark below a box leaves the box as it is.
    Give(Entry(1, 60, 120, "box"));
    const QRect box = view.BoxOf(0).adjusted(-1, -1, 1, 1);
    const QImage before = painted(box);
    view.Mark({1, 60, 120, false});
    EXPECT_EQ(painted(box), before);
    // The whole of today has a ground of its own beside other days, not alone.
    const auto ground = [&](int days) {
        WeekView::Frame frame = FrameFrom(kMonday, days);
        frame.today = 0;
        frame.now = 1430;
        view.SetFrame(frame);
        return QColor(painted(view.AreaOf({0, 600, 630, false})).pixel(6, 8));
    };
    EXPECT_NE(ground(7), view.palette().color(QPalette::Base));
    EXPECT_EQ(ground(1), view.palette().color(QPalette::Base));
}

TEST_F(WeekGrid, ControlCopiesFromTheMomentItIsHeld) {
    Give(Entry(1, 600, 660, "one"));
    hand.keys = Qt::ControlModifier;
    hand.Drag(Middle(0), Row(2, 600));
    EXPECT_EQ(std::get<2>(Last()), DropKind::Copy);
    hand.keys = {};
    hand.Press(Middle(0));
    hand.Move(Row(2, 690));
    EXPECT_EQ(view.viewport()->cursor().shape(), Qt::DragMoveCursor);
    QTest::keyPress(&view, Qt::Key_Control, Qt::ControlModifier);
    EXPECT_EQ(view.viewport()->cursor().shape(), Qt::DragCopyCursor);
    QTest::keyRelease(&view, Qt::Key_Control);
    EXPECT_EQ(view.viewport()->cursor().shape(), Qt::DragMoveCursor);
    hand.Release(Row(2, 690));
    EXPECT_EQ(std::get<2>(Last()), DropKind::Move);
}

TEST_F(WeekGrid, TheLowerEdgeChangesTheEndAlone) {
    Give(Entry(1, 550, 610, "short"), Entry(2, 1320, 1440 + 540, "through the night"));
    hand.Drag(LowerEdge(0), Row(1, 720));
    EXPECT_EQ(Last(), Drop(0, {1, 550, 750, false}, DropKind::Resize));
    // Not above its start, and not on the day under the hand.
    hand.Drag(LowerEdge(0), Row(4, 480));
    EXPECT_EQ(Last(), Drop(0, {1, 550, 570, false}, DropKind::Resize));
    // Where it is cut at midnight is no end of it; the next morning is.
    const QPoint end(Row(3, 510).x(), view.AreaOf({3, 510, 540, false}).bottom() - 3);
    hand.Drag(end, Row(3, 600));
    EXPECT_EQ(Last(), Drop(1, {2, 1320, 1440 + 630, false}, DropKind::Resize));
    view.ScrollTo(1440);
    hand.Drag(LowerEdge(1), LowerEdge(1) - QPoint(0, 44));
    EXPECT_EQ(Last(), Drop(1, {2, 1260, 1440 + 480, false}, DropKind::Move));
}

TEST_F(WeekGrid, ScrollsWhileTheHandStaysAtTheEdge) {
    Give(Entry(1, 540, 600, "far"));
    const int before = view.verticalScrollBar()->value();
    const QPoint edge(Middle(0).x(), view.viewport()->height() - 1);
    hand.Press(Row(1, 540));
    hand.Move(edge);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.verticalScrollBar()->value() > before + 30; }));
    hand.Release(edge);
    const DaySpan span = std::get<1>(Last());
    EXPECT_TRUE(view.AreaOf({span.day, span.start, span.start + 30, false}).contains(edge));
    EXPECT_GT(span.start, 540);
    EXPECT_FALSE(view.findChild<QTimer*>("tmrScrolldelay")->isActive());
}

TEST_F(WeekGrid, MarksASpanForSomethingNew) {
    hand.Drag(Row(2, 600), Row(2, 690));
    EXPECT_EQ(view.Marked(), (DaySpan{2, 600, 720, false}));
    hand.Drag(Row(2, 600), Row(5, 540));
    EXPECT_EQ(view.Marked(), (DaySpan{2, 540, 630, false}));
    QTest::keyClick(&view, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&view, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&view, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(view.Marked(), (DaySpan{2, 600, 660, false})) << "the row where it began stays";
    // A menu inside what is marked leaves it.
    hand.Press(Row(2, 630), Qt::RightButton);
    EXPECT_EQ(view.Marked(), (DaySpan{2, 600, 660, false}));
    QTest::keyClick(&view, 'k', Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_Space);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_EQ(begun, QStringList{""});
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, Strip(3));
    EXPECT_EQ(view.Marked(), (DaySpan{3, 0, 1440, true}));
    EXPECT_EQ(begun.size(), 2);
}

TEST_F(WeekGrid, NoLetterIsLostWhileOneTypes) {
    auto& line = test::Named<QLineEdit>(view, "txtQuick");
    const auto type = [](const char* letters) { QTest::keyClicks(QApplication::focusWidget(), letters); };
    const auto press = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    for (const DaySpan& span : {DaySpan{2, 600, 630, false}, DaySpan{6, 0, 1440, true}}) {
        view.Mark(span);
        type("F");
        ASSERT_TRUE(line.hasFocus());
        EXPECT_TRUE(line.geometry().intersects(view.AreaOf(span)));
        type("ast typing");
        EXPECT_TRUE(begun.isEmpty());
        press(Qt::Key_Tab);
        EXPECT_EQ(begun.takeFirst(), "Fast typing");
        EXPECT_EQ(line.text(), "");
        EXPECT_TRUE(view.hasFocus());
    }
    // After a pause, however long the words are.
    type("Pause");
    QTest::qWait(500);
    type("d");
    QTest::qWait(500);
    EXPECT_TRUE(begun.isEmpty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !begun.isEmpty(); }, 2000));
    EXPECT_EQ(begun.takeFirst(), "Paused");
    // What a dead key gave begins it, too; Esc and nothing typed give up.
    QInputMethodEvent dead;
    dead.setCommitString(QString::fromUtf8("é"));
    QApplication::sendEvent(&view, &dead);
    EXPECT_EQ(line.text(), QString::fromUtf8("é"));
    press(Qt::Key_Escape);
    type("x");
    press(Qt::Key_Backspace);
    press(Qt::Key_Return);
    EXPECT_TRUE(line.isHidden());
    EXPECT_TRUE(begun.isEmpty());
    // A click elsewhere takes it as it stands, for the place over which it stood.
    view.Mark({2, 600, 630, false});
    type("Here");
    view.setFocus();
    hand.Press(Row(4, 720));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !begun.isEmpty(); }));
    EXPECT_EQ(begun.takeFirst(), "Here");
    EXPECT_EQ(view.Marked(), (DaySpan{2, 600, 630, false}));
    // What goes from sight tells nothing and keeps nothing.
    type("gone");
    view.hide();
    EXPECT_EQ(line.text(), "");
    QTest::qWait(50);
    EXPECT_TRUE(begun.isEmpty());
}

TEST_F(WeekGrid, HitsWhatIsOnTop) {
    Give(Entry(0, 1320, 1440 + 720, "behind"), Entry(1, 540, 600, "left"), Entry(1, 570, 630, "right"));
    const QRect left = view.BoxOf(1);
    EXPECT_FALSE(left.intersects(view.BoxOf(2)));
    const auto chosenAt = [&](QPoint at) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at);
        return view.Chosen();
    };
    EXPECT_EQ(chosenAt(left.topLeft()), 1U);
    EXPECT_EQ(chosenAt(left.bottomRight()), 1U);
    EXPECT_EQ(chosenAt(left.topLeft() - QPoint(0, 2)), 0U) << "the night's rest shows beside it";
    EXPECT_EQ(chosenAt(Row(1, 780)), std::nullopt);
    EXPECT_EQ(chosenAt(view.BoxOf(2).center()), 2U);
    hand.Press(Row(1, 480), Qt::RightButton);
    EXPECT_EQ(view.Chosen(), 0U);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, left.center());
    EXPECT_EQ(opened, std::vector<std::size_t>{1});
}

TEST_F(WeekGrid, AnEndAtTheEndOfTheRangeGoesOnThroughTheView) {
    const Day first{kEpoch.serial - 14000};
    view.SetFrame(FrameFrom(first));
    EntryLook endless = Entry(0, 600, 660, "endless");
    endless.start = Minutes{MidnightOf(first).count + 600};
    endless.end = Minutes{std::numeric_limits<std::int32_t>::max()};
    Give(endless);
    view.Choose(0);
    EXPECT_GT(view.Marked().end, 7 * kMinutesOfDay);
}

TEST_F(WeekGrid, WhatHasNoRoomIsListedWhole) {
    std::vector<EntryLook> looks;
    for (int i = 0; i < 1000; ++i)
        looks.push_back(Entry(1, 0, 1440, "whole", true));
    for (int i = 0; i < 1000; ++i)
        looks.push_back(Entry(1, 600, 660, "at once"));
    Give(std::move(looks));
    const auto listed = [&](QPoint at) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at);
        auto* list = OpenedList(view);
        EXPECT_TRUE(list);
        std::set<std::size_t> chosen;
        for (int row = 0; list && row < list->model()->rowCount(); ++row) {
            list->setCurrentIndex(list->model()->index(row, 0));
            chosen.insert(view.Chosen().value());
        }
        return std::pair(chosen.size(), *chosen.begin());
    };
    const QRect area = view.AreaOf({1, 600, 660, false});
    EXPECT_EQ(listed(QPoint(area.right() - 14, area.center().y())),
              std::pair(std::size_t{1000}, std::size_t{1000}));
    // Return opens the one that it stands on, behind the list, whatever that does with the entries.
    QObject::connect(&view, &WeekView::OpenWanted, [&] { Give(Entry(0, 600, 660, "new")); });
    QTest::keyClick(OpenedList(view), Qt::Key_Return);
    EXPECT_EQ(opened, std::vector<std::size_t>{1999});
    EXPECT_FALSE(OpenedList(view));
}

TEST_F(WeekGrid, TheStripListsWhatItCannotShow) {
    std::vector<EntryLook> looks;
    for (int i = 0; i < 5; ++i)
        looks.push_back(Entry(1, 0, 1440, "whole", true));
    Give(std::move(looks));
    const QRect strip = view.AreaOf({1, 0, 1440, true});
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, QPoint(strip.center().x(), strip.bottom() - 10));
    ASSERT_TRUE(OpenedList(view));
    EXPECT_EQ(OpenedList(view)->model()->rowCount(), 5);
    EXPECT_EQ(test::Named<QLabel>(*OpenedList(view)->parentWidget(), "lblDay").text(), "day 1");
    // Another period takes the list along.
    view.SetFrame(FrameFrom(Day{kMonday.serial + 7}));
    EXPECT_FALSE(OpenedList(view));
}

TEST_F(WeekGrid, WidthDecidesHowManyStandSideBySide) {
    std::vector<EntryLook> looks;
    for (int i = 0; i < 6; ++i)
        looks.push_back(Entry(1, 600, 660, "at once"));
    Give(std::move(looks));
    const auto drawn = [&] {
        int count = 0;
        for (std::size_t entry = 0; entry < 6; ++entry)
            count += view.BoxOf(entry).isEmpty() ? 0 : 1;
        return count;
    };
    const int few = drawn();
    EXPECT_LT(few, 6);
    view.resize(3000, 700);
    EXPECT_EQ(drawn(), 6);
    view.resize(400, 700);
    EXPECT_LT(drawn(), few);
    EXPECT_EQ(drawn(), 1);
    // Two are always drawn side by side.
    Give(Entry(1, 600, 660, "one"), Entry(1, 630, 690, "other"));
    EXPECT_FALSE(view.BoxOf(0).isEmpty());
    EXPECT_FALSE(view.BoxOf(1).isEmpty());
    EXPECT_FALSE(view.BoxOf(0).intersects(view.BoxOf(1)));
}

TEST_F(WeekGrid, TheLeastHeightIsKeptWithinTheDay) {
    Give(Entry(0, 600, 540, "ends before it begins"), Entry(1, 600, 605, "short"), Entry(1, 605, 610, "next"),
         Entry(2, 1435, 1440, "late"));
    constexpr int kLeast = 18;
    for (std::size_t entry = 0; entry < 4; ++entry)
        EXPECT_GE(view.BoxOf(entry).height(), kLeast) << entry;
    EXPECT_FALSE(view.BoxOf(1).intersects(view.BoxOf(2))) << "what is drawn higher hides nothing";
    EXPECT_LE(view.BoxOf(3).bottom(), view.AreaOf({2, 1410, 1440, false}).bottom());
    // It can still be dragged, and keeps what it is.
    hand.Drag(Middle(0), Middle(0) + QPoint(0, 44));
    EXPECT_EQ(Last(), Drop(0, {0, 660, 600, false}, DropKind::Move));
}

TEST_F(WeekGrid, ZoomKeepsTheTimeUnderThePointer) {
    const auto turn = [&](QPoint at, int angle) {
        QWheelEvent event(at, view.viewport()->mapToGlobal(at), {}, {0, angle}, {}, Qt::ControlModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(view.viewport(), &event);
    };
    const QPoint noon(400, view.AreaOf({0, 720, 750, false}).top());
    turn(noon, 240);
    EXPECT_EQ(view.PixelsOfHour(), WeekView::kFirstHour + 12);
    EXPECT_NEAR(view.AreaOf({0, 720, 750, false}).top(), noon.y(), 1);
    // Small steps of a touch pad add up, and there is an end.
    for (int i = 0; i < 8; ++i)
        turn(noon, -15);
    EXPECT_EQ(view.PixelsOfHour(), WeekView::kFirstHour + 6);
    EXPECT_NEAR(view.AreaOf({0, 720, 750, false}).top(), noon.y(), 1);
    for (int i = 0; i < 30; ++i)
        turn(noon, 120);
    EXPECT_EQ(view.PixelsOfHour(), WeekView::kMostHour);
}

TEST_F(WeekGrid, KeysGoThroughRowsEntriesAndPeriods) {
    Give(Entry(-1, 600, 660, "before the view"), Entry(1, 0, 1440, "whole", true),
         Entry(1, 550, 610, "first"), Entry(2, 540, 600, "second"));
    std::vector<int> steps;
    QObject::connect(&view, &WeekView::StepWanted, [&](int way) {
        steps.push_back(way);
        if (way != 0) view.SetFrame(FrameFrom(Day{kMonday.serial + 7 * way}));
    });
    view.Mark({1, 0, 30, false});
    QTest::keyClick(&view, Qt::Key_Up);
    EXPECT_EQ(view.Marked(), (DaySpan{1, 0, 1440, true}));
    for (const std::size_t expected : {1U, 2U, 3U, 3U}) {
        QTest::keyClick(&view, Qt::Key_Down, Qt::ControlModifier);
        EXPECT_EQ(view.Chosen(), expected);
    }
    QTest::keyClick(&view, Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(view.accessibleDescription(), "day 1, 09:10-10:10 first");
    QTest::keyClick(&view, Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(Last(), Drop(2, {2, 550, 610, false}, DropKind::Move));
    QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(Last(), Drop(2, {1, 550, 640, false}, DropKind::Resize));
    // Between the strip and the hours, as a drag does it.
    view.Mark({4, 690, 720, false});
    view.Choose(1);
    QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(Last(), Drop(1, {1, 690, 750, false}, DropKind::Move)) << "at the row that was marked last";
    view.SetPixelsOfHour(WeekView::kMostHour);
    view.ScrollTo(1440);
    QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier);
    const DaySpan seen = std::get<1>(Last());
    EXPECT_TRUE(view.viewport()->rect().contains(view.AreaOf({1, seen.start, seen.start + 30, false})));
    EXPECT_EQ(seen.start % 60, 0) << "else at the first hour in sight";
    view.Choose(2);
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(view.Marked(), (DaySpan{1, 630, 660, false})) << "below the entry";
    EXPECT_EQ(view.Chosen(), std::nullopt);
    QTest::keyClick(&view, Qt::Key_Left);
    QTest::keyClick(&view, Qt::Key_Left);
    EXPECT_EQ(view.Marked(), (DaySpan{6, 630, 660, false})) << "on the Sunday before";
    QTest::keyClick(&view, Qt::Key_PageDown);
    QTest::keyClick(&view, Qt::Key_Home);
    EXPECT_EQ(steps, (std::vector<int>{-1, 1, 0}));
    Give(Entry(8, 0, 60, "at midnight"));
    view.Choose(0);
    QTest::keyClick(&view, Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(Last(), Drop(0, {1, 0, 1440, true}, DropKind::Move));
    view.Mark({1, 1410, 1440, false});
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(view.Marked(), (DaySpan{1, 1410, 1440, false}));
}

TEST_F(WeekGrid, NoTextOutlivesTheEntries) {
    Give(Entry(1, 600, 660, "<i>harbour</i>"));
    view.Choose(0);
    QHelpEvent help(QEvent::ToolTip, Middle(0), view.viewport()->mapToGlobal(Middle(0)));
    QApplication::sendEvent(view.viewport(), &help);
    ASSERT_TRUE(QToolTip::text().contains("&lt;i&gt;harbour")) << "as it was written";
    EXPECT_TRUE(view.accessibleDescription().contains("harbour"));
    Give();
    EXPECT_FALSE(view.accessibleDescription().contains("harbour"));
    for (const QWidget* window : QApplication::topLevelWidgets())
        if (const auto* label = qobject_cast<const QLabel*>(window)) EXPECT_EQ(label->text(), "");
}

TEST(EntryPainter, SignsStandWhereTheWordsLeaveThemRoom) {
    const QPalette palette = kit::LightPalette();
    const auto painted = [&](const char* subject, bool line, bool alarm, bool repeats) {
        EntryLook look = Entry(1, 600, 660, subject);
        look.alarm = alarm;
        look.repeats = repeats;
        const int start = QFontMetrics(QFont()).horizontalAdvance("10:00 ");
        QImage image(line ? start + 110 : start + 40, line ? 20 : 60, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        EntryPainter entries(painter, palette, QFont());
        line ? entries.Line(image.rect(), look, false) : entries.Box(image.rect(), look, false);
        return image;
    };
    EXPECT_NE(painted("Choir", false, true, true), painted("Choir", false, false, true)) << "in a narrow day";
    // In a line neither cuts the words, and the bell stays longer.
    EXPECT_NE(painted("Choir", true, true, false), painted("Choir", true, false, false));
    const char* longer = "Standing together for an hour";
    EXPECT_EQ(painted(longer, true, true, true), painted(longer, true, false, true));
}

TEST(TableInks, AreReadableOnTheirGrounds) {
    const auto bright = [](const QColor& colour) {
        const auto part = [](double of) {
            return of <= 0.04045 ? of / 12.92 : std::pow((of + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    };
    const auto contrast = [&](const QColor& a, const QColor& b) {
        const auto [low, high] = std::minmax({bright(a), bright(b)});
        return (high + 0.05) / (low + 0.05);
    };
    for (const QPalette& palette : {kit::LightPalette(), kit::DarkPalette(), kit::HighContrastPalette()}) {
        const TableInks inks(palette);
        for (const QColor& ground :
             {inks.base, inks.off, inks.today, inks.todayOff, kit::SelectionTint(palette)}) {
            EXPECT_GE(contrast(inks.text, ground), 4.5) << ground.name().toStdString();
            EXPECT_GE(contrast(inks.quiet, ground), 4.5) << ground.name().toStdString();
            EXPECT_GE(contrast(inks.accent, ground), 4.5) << ground.name().toStdString();
        }
        for (int tint = 0; tint < 8; ++tint)
            for (const bool chosen : {false, true})
                EXPECT_GE(contrast(inks.text, EntryGround(tint, chosen, palette)), 4.5) << tint;
    }
}

}  // namespace
}  // namespace bmr::calendar
