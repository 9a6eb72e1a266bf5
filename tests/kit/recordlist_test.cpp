#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <algorithm>
#include <numeric>

#include "kit/emptystate.h"
#include "kit/recordlistmodel.h"
#include "kit/recordlistview.h"
#include "kit/strip.h"
#include "support/forms.h"

namespace bmr::kit {
namespace {

/// Rows with the keys 1000, 1001, ... whose text is the key backwards.
class CountingModel final : public RecordListModel {
  public:
    explicit CountingModel(int rows) { Fill(rows); }
    void Fill(int rows) {
        std::vector<std::int32_t> keys(static_cast<std::size_t>(rows));
        std::iota(keys.begin(), keys.end(), 1000);
        beginResetModel();
        SetKeys(std::move(keys));
        endResetModel();
    }
    void Turn() {
        std::vector<int> order(static_cast<std::size_t>(rowCount()));
        std::iota(order.rbegin(), order.rend(), 0);
        Reorder(order);
    }
    void Drop(int row) {
        beginRemoveRows({}, row, row);
        DropKey(row);
        endRemoveRows();
    }
    int columnCount(const QModelIndex& = {}) const override { return 3; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole) return {};
        return TextsOf(index.row()).texts[static_cast<std::size_t>(index.column())];
    }
    QVariant headerData(int section, Qt::Orientation, int role) const override {
        return role == Qt::DisplayRole ? QVariant(QString("Column %1").arg(section)) : QVariant();
    }
    void sort(int, Qt::SortOrder) override { Turn(); }

  protected:
    CellTexts ReadTexts(int row) const override {
        QString text = QString::number(KeyAt(row));
        std::reverse(text.begin(), text.end());
        return CellTexts({text, "b", "c"});
    }
};

struct RecordList : testing::Test {
    RecordList() {
        view.resize(600, 400);
        view.SetModel(&model);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }
    int Visible() { return view.viewport()->height() / view.visualRect(model.index(0, 0)).height() + 1; }
    int Deciphered(const std::function<void()>& step) {
        model.deciphered = 0;
        step();
        QCoreApplication::processEvents();
        return model.deciphered;
    }
    CountingModel model{20000};
    RecordListView view;
};

TEST_F(RecordList, DeciphersWhatIsSeenAndNoMore) {
    const int most = 2 * Visible();
    EXPECT_LE(Deciphered([&] { model.Fill(20000); }), most);
    EXPECT_LE(Deciphered([&] { model.Turn(); }), most);
    EXPECT_LE(Deciphered([&] { view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum()); }),
              most);
    EXPECT_LE(Deciphered([&] { view.SelectKey(9000); }), most);
    EXPECT_LE(Deciphered([&] { view.Rebuild([&] { model.Fill(20000); }); }), most);
    EXPECT_EQ(Deciphered([&] { view.viewport()->update(); }), 0) << "what was just seen is kept";
    EXPECT_LE(Deciphered([&] { QTest::keyClicks(&view, "x"); }), 1100) << "type-ahead gives up in time";
}

TEST_F(RecordList, SelectionAndScrollHangOnTheKey) {
    QSignalSpy told(&view, &RecordListView::KeySelected);
    view.SelectKey(5000);
    EXPECT_EQ(view.SelectedRow(), 4000);
    model.Turn();
    EXPECT_EQ(view.SelectedKey(), 5000);
    EXPECT_EQ(view.SelectedRow(), 15999);
    model.Turn();
    model.Drop(10);
    EXPECT_EQ(view.SelectedKey(), 5000);
    view.verticalScrollBar()->setValue(2000);
    const int top = view.indexAt(QPoint(5, 5)).row();
    view.Rebuild([&] { model.Fill(20000); });
    EXPECT_EQ(model.KeyAt(view.indexAt(QPoint(5, 5)).row()), 1000 + top + 1) << "row 10 is back";
    EXPECT_EQ(view.SelectedKey(), RecordListView::kNoKey);
    view.SelectKey(5000);
    view.SelectKey(77);
    EXPECT_EQ(view.SelectedKey(), RecordListView::kNoKey);
    EXPECT_EQ(told.constLast()[0].toInt(), RecordListView::kNoKey);
    view.SelectFirst();
    EXPECT_EQ(view.SelectedKey(), 1000);
}

TEST_F(RecordList, KeysAndMenusSayWhatIsWanted) {
    QSignalSpy edit(&view, &RecordListView::EditWanted), tick(&view, &RecordListView::TickWanted),
        del(&view, &RecordListView::DeleteWanted), menu(&view, &RecordListView::MenuWanted);
    view.SelectKey(1003);
    QTest::keyClick(&view, Qt::Key_Return);
    QTest::keyClick(&view, Qt::Key_Space);
    QTest::keyClick(&view, Qt::Key_Delete);
    QTest::keyClick(&view, Qt::Key_Delete, Qt::ControlModifier);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(model.index(2, 0)).center());
    EXPECT_EQ(edit.size(), 2);
    EXPECT_EQ(tick.size(), 1);
    EXPECT_EQ(del.size(), 1);
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(view.viewport(), &key);
    ASSERT_EQ(menu.size(), 1);
    const QPoint at = view.viewport()->mapFromGlobal(menu[0][0].toPoint());
    EXPECT_LE(std::abs(at.y() - view.visualRect(view.currentIndex()).bottom()), 1);
    view.SelectFirst();
    QTest::keyClicks(&view, "41");  // the key 1014 backwards
    EXPECT_EQ(view.SelectedKey(), 1014);
}

TEST_F(RecordList, HiddenColumnsStayHiddenWhenTheSectionIsOpenedAgain) {
    view.KeepColumns("test");
    QTimer::singleShot(50, [] {
        auto* menu = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu);
        EXPECT_EQ(menu->actions().size(), 2) << "the first column always stays";
        menu->actions()[1]->trigger();
        menu->close();
    });
    emit view.header()->customContextMenuRequested(QPoint(5, 5));
    EXPECT_TRUE(view.isColumnHidden(2));
    RecordListView again;
    again.SetModel(&model);
    again.KeepColumns("test");
    EXPECT_TRUE(again.isColumnHidden(2));
    EXPECT_FALSE(again.isColumnHidden(1));
}

TEST(EmptyStateTest, OffersTheActionsOfTheMoment) {
    QAction first("New task"), second("Show all");
    first.setObjectName("a");
    second.setObjectName("b");
    QSignalSpy pressed(&second, &QAction::triggered);
    EmptyState state;
    state.Set("task-due", "Nothing here.", {&first});
    state.Set("task-due", "Nothing there.", {&second});
    state.show();
    test::Click(state, "empty_b");
    EXPECT_EQ(pressed.size(), 1);
    EXPECT_EQ(state.Sentence(), "Nothing there.");
    EXPECT_FALSE(state.isVisible() && state.findChild<QWidget*>("empty_a") &&
                 state.findChild<QWidget*>("empty_a")->isVisible());
}

TEST(StripTest, ComesGoesAndActs) {
    Strip strip;
    QSignalSpy acted(&strip, &Strip::Acted);
    strip.Say("Three tasks are hidden", Strip::Kind::Warning, "Show");
    EXPECT_TRUE(strip.isVisible());
    test::Click(strip, "stripAction");
    test::Click(strip, "stripClose");
    EXPECT_FALSE(strip.isVisible());
    EXPECT_EQ(acted.size(), 1);
}

}  // namespace
}  // namespace bmr::kit
