// The hands on the six weeks of a month.
#include "calendar/monthview.h"

#include <QLineEdit>

#include "views_fixture.h"

namespace bmr::calendar {
namespace {

using Drop = std::tuple<std::size_t, int, DropKind>;

class MonthTableView : public testing::Test {
  protected:
    MonthTableView() {
        QObject::connect(&view, &MonthView::Dropped, [this](std::size_t entry, int cell, DropKind kind) {
            drops.emplace_back(entry, cell, kind);
        });
        view.resize(1000, 700);
        view.SetFrame(FrameFrom(kMonday));
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
        view.setFocus();
    }
    static MonthView::Frame FrameFrom(Day first) {
        MonthView::Frame frame;
        frame.first = first;
        for (int cell = 0; cell < MonthView::kCells; ++cell)
            frame.spoken[static_cast<std::size_t>(cell)] = QString("cell %1").arg(cell);
        return frame;
    }
    template <class... Look>
    void Give(Look... look) {
        std::vector<EntryLook> looks;
        (looks.push_back(std::move(look)), ...);
        view.SetEntries(std::move(looks));
    }
    QPoint Cell(int cell) const { return view.CellRect(cell).center(); }
    QPoint Line(std::size_t entry) const { return view.LineOf(entry).center(); }

    MonthView view;
    Hand hand{view};
    std::vector<Drop> drops;
};

TEST_F(MonthTableView, DragsGoToOtherDaysOnly) {
    Give(Entry(8, 0, 1440, "whole", true), Entry(8, 600, 660, "timed"));
    hand.Drag(Line(1), Cell(41));
    hand.keys = Qt::ControlModifier;
    hand.Drag(Line(0), Cell(0));
    EXPECT_EQ(drops, (std::vector<Drop>{{1, 41, DropKind::Move}, {0, 0, DropKind::Copy}}));
    drops.clear();
    hand.keys = {};
    hand.Drag(Line(1), Cell(8));
    hand.Drag(Line(1), {-50, 4000});
    hand.Drag(Cell(3), Cell(4));  // nothing is there to be dragged
    hand.Press(Line(1));
    hand.Move(Cell(20));
    EXPECT_EQ(view.cursor().shape(), Qt::DragMoveCursor);
    QTest::keyPress(&view, Qt::Key_Control, Qt::ControlModifier);
    EXPECT_EQ(view.cursor().shape(), Qt::DragCopyCursor);
    QTest::keyClick(&view, Qt::Key_Escape);
    hand.Release(Cell(20));
    EXPECT_TRUE(drops.empty());
}

TEST_F(MonthTableView, EveryEntryIsOfferedHoweverLittleRoom) {
    std::vector<EntryLook> looks;
    for (int i = 0; i < 1000; ++i)
        looks.push_back(Entry(9, 600, 660, "at once"));
    view.SetEntries(std::move(looks));
    std::size_t shown = 0;
    while (!view.LineOf(shown).isEmpty()) {
        EXPECT_TRUE(view.CellRect(9).contains(view.LineOf(shown)));
        ++shown;
    }
    ASSERT_GT(shown, 1U);
    const QPoint more = Line(shown - 1) + QPoint(0, view.LineOf(shown - 1).height() + 1);
    QTest::mouseClick(&view, Qt::LeftButton, {}, more);
    ASSERT_TRUE(OpenedList(view));
    EXPECT_EQ(OpenedList(view)->model()->rowCount(), 1000);
    view.hide();
    EXPECT_FALSE(OpenedList(view));
    // The lowest window that it may have still offers them.
    view.resize(view.minimumSize());
    view.show();
    const QRect cell = view.CellRect(9);
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(cell.center().x(), cell.bottom() - 2));
    EXPECT_TRUE(OpenedList(view));
    view.hide();
}

TEST_F(MonthTableView, ClicksAndKeysTellWhatIsMeant) {
    Give(Entry(8, 0, 1440, "whole", true), Entry(8, 600, 660, "timed"), Entry(30, 600, 660, "later"));
    std::vector<int> steps;
    QStringList said;
    QObject::connect(&view, &MonthView::StepWanted, [&](int way) {
        steps.push_back(way);
        if (way < 0) view.SetFrame(FrameFrom(Day{kMonday.serial - 28}));
    });
    QObject::connect(&view, &MonthView::NewWanted, [&](const QString& letters) { said << "new " + letters; });
    QObject::connect(&view, &MonthView::OpenWanted,
                     [&](std::size_t e) { said << QString("open %1").arg(e); });
    QObject::connect(&view, &MonthView::DayWanted, [&](int cell) { said << QString("day %1").arg(cell); });
    QObject::connect(&view, &MonthView::DeleteWanted,
                     [&](std::size_t e) { said << QString("del %1").arg(e); });
    QTest::mouseDClick(&view, Qt::LeftButton, {}, Line(1));
    QTest::mouseClick(&view, Qt::LeftButton, {}, Cell(17));
    EXPECT_EQ(view.MarkedCell(), 17);
    QTest::mouseDClick(&view, Qt::LeftButton, {}, Cell(17));
    QTest::mouseDClick(&view, Qt::LeftButton, {}, view.CellRect(17).topRight() + QPoint(-8, 8));
    QTest::keyClicks(QApplication::focusWidget(), "x");
    const auto& line = test::Named<QLineEdit>(view, "txtQuick");
    EXPECT_TRUE(view.CellRect(17).contains(line.geometry().topLeft()));
    QTest::keyClicks(QApplication::focusWidget(), "yz");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    hand.Press(Line(0), Qt::RightButton);
    EXPECT_EQ(view.Chosen(), 0U);
    QTest::keyClick(&view, Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(view.accessibleDescription(), "cell 8, 10:00-11:00 timed");
    QTest::keyClick(&view, Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(drops, (std::vector<Drop>{{1, 9, DropKind::Move}}));
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(said, (QStringList{"open 1", "new ", "day 17", "new xyz", "del 1"}));
    // Up from the second week lands two weeks higher, in the month before.
    QTest::keyClick(&view, Qt::Key_Up);
    QTest::keyClick(&view, Qt::Key_Up);
    EXPECT_EQ(steps, std::vector<int>{-1});
    EXPECT_EQ(view.MarkedCell(), 8 - 14 + 28);
}

}  // namespace
}  // namespace bmr::calendar
