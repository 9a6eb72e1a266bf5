#include <QDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <numeric>
#include <set>

#include "kit/emptystate.h"
#include "kit/icons.h"
#include "kit/programtheme.h"
#include "kit/recordlistmodel.h"
#include "kit/recordlistview.h"
#include "kit/strip.h"
#include "kit/theme.h"
#include "support/forms.h"
#include "support/ports.h"

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
        if (role == Qt::TextAlignmentRole && side != 0) return side;
        return role == Qt::DisplayRole ? QVariant(QString("Column %1").arg(section)) : QVariant();
    }
    void sort(int, Qt::SortOrder) override { Turn(); }
    bool ColumnEmpty(int column) const override { return empty.contains(column); }
    std::set<int> empty;
    int side = 0;  ///< of the captions, as a model may tell it

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

TEST_F(RecordList, TellsOnceWhichOfSeveralRowsTheCursorMeans) {
    const auto click = [&](int row, Qt::KeyboardModifiers held = {},
                           Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(view.viewport(), button, held, view.visualRect(model.index(row, 0)).center());
    };
    using Rows = std::vector<std::int32_t>;
    Rows told;
    QObject::connect(&view, &RecordListView::KeySelected, [&](std::int32_t key) {
        EXPECT_EQ(key, view.SelectedKey());
        told.push_back(key);
    });
    QSignalSpy tick(&view, &RecordListView::TickWanted);
    click(5);
    click(3, Qt::ControlModifier);
    click(5, {}, Qt::RightButton);
    EXPECT_EQ(view.SelectedCount(), 2);
    EXPECT_EQ(std::exchange(told, {}), (Rows{1005, 1003, 1005}));
    QTest::keyClick(&view, Qt::Key_Up, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_Down, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(std::exchange(told, {}), (Rows{1003, 1005, 1003})) << "beside the rows it is the first";
    QTest::keyClick(&view, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(view.SelectedKeys(), (Rows{1003, 1005, 1006}));
    QTest::keyClick(&view, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(view.SelectedKeys(), (Rows{1003, 1005}));
    EXPECT_EQ(std::exchange(told, {}), (Rows{1006, 1003}));
    EXPECT_TRUE(tick.empty());
    click(8);
    EXPECT_EQ(told, Rows{1008});
}

TEST_F(RecordList, TheFirstKeyTakesTheRowOfTheCursor) {
    QSignalSpy edit(&view, &RecordListView::EditWanted), tick(&view, &RecordListView::TickWanted),
        del(&view, &RecordListView::DeleteWanted);
    const auto press = [&](Qt::Key key) {
        view.SelectKey(RecordListView::kNoKey);
        view.PutCursor(3);
        EXPECT_EQ(view.SelectedKey(), RecordListView::kNoKey);
        QTest::keyClick(&view, key);
        EXPECT_EQ(view.SelectedKey(), 1003);
    };
    for (const auto key : {Qt::Key_Down, Qt::Key_Space, Qt::Key_Delete, Qt::Key_Return})
        press(key);
    EXPECT_EQ(edit.size() + tick.size() + del.size(), 3);
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(view.SelectedKey(), 1004);
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

TEST_F(RecordList, ColumnsAreFoundAgainAsThePersonLeftThem) {
    test::MapRegistry registry;
    const auto open = [&](RecordListView& list, const std::string& kept) {
        if (!kept.empty()) registry.values["Window/Columns/test"] = kept;
        list.resize(600, 400);
        list.SetModel(&model);
        list.RememberColumns(registry, "test");
        list.show();
    };
    {
        RecordListView first;
        open(first, "");
        QTimer::singleShot(50, [] {
            auto* menu = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_TRUE(menu);
            EXPECT_EQ(menu->actions().size(), 2) << "the first column always stays";
            menu->actions()[1]->trigger();
            menu->close();
        });
        emit first.header()->customContextMenuRequested(QPoint(5, 5));
        EXPECT_TRUE(first.isColumnHidden(2));
        first.header()->resizeSection(1, 77);
        first.header()->moveSection(1, 0);
    }
    RecordListView again;
    open(again, "");
    EXPECT_TRUE(again.isColumnHidden(2));
    EXPECT_FALSE(again.isColumnHidden(1));
    EXPECT_EQ(again.columnWidth(1), 77);
    EXPECT_EQ(again.header()->visualIndex(1), 0);
    EXPECT_EQ(model.index(0, 1).data().toString(), "b") << "a place on the screen is no other number";

    for (const char* wrong :
         {"0,90,1", "0,90,1,0,90,1,2,90,1", "0,90,1,1,99999,1,2,90,1", "x", "0,90,1,1,,1,2,90,1"}) {
        RecordListView list;
        open(list, wrong);
        EXPECT_FALSE(list.isColumnHidden(1)) << wrong;
        EXPECT_LT(list.columnWidth(1), 600) << wrong;
        EXPECT_EQ(list.header()->visualIndex(1), 1) << wrong;
    }
}

TEST_F(RecordList, EmptyColumnsGiveWayToTheWords) {
    const auto shape = [&](int width) {
        view.resize(width, 400);
        QCoreApplication::processEvents();
        return std::vector<bool>{!view.isColumnHidden(1), !view.isColumnHidden(2)};
    };
    using Shown = std::vector<bool>;
    view.header()->resizeSection(1, 100);
    view.header()->resizeSection(2, 100);
    view.SetTextColumn(0, 200);
    model.empty = {1};
    EXPECT_EQ(shape(600), (Shown{true, true}));
    EXPECT_EQ(view.columnWidth(0), view.viewport()->width() - 200) << "the words take what is left";
    EXPECT_EQ(shape(360), (Shown{false, true}));
    EXPECT_EQ(view.columnWidth(0), view.viewport()->width() - 100);
    EXPECT_EQ(shape(250), (Shown{false, true})) << "a column with something in it stays";
    EXPECT_EQ(view.columnWidth(0), 200);
    EXPECT_GT(view.horizontalScrollBar()->maximum(), 0);
    model.empty = {};
    emit model.dataChanged(model.index(0, 0), model.index(0, 2));
    EXPECT_TRUE(view.isColumnHidden(1)) << "none comes under the pointer";
    model.Fill(50);
    EXPECT_EQ(shape(360), (Shown{true, true})) << "it is not empty any more";
    EXPECT_EQ(shape(600), (Shown{true, true}));
    EXPECT_EQ(view.columnWidth(1), 100) << "and as wide as it was";
}

/// How many points of a picture have about that colour.
int CountNear(const QImage& image, const QColor& colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor at = image.pixelColor(x, y);
            count += std::abs(at.red() - colour.red()) + std::abs(at.green() - colour.green()) +
                         std::abs(at.blue() - colour.blue()) <
                     24;
        }
    return count;
}

/// The program's own style for one test.
struct Themed {
    Themed() : theme(*qApp) { theme.Choose(ThemeChoice::Light); }
    ~Themed() {
        QApplication::setStyle("Fusion");
        QApplication::setPalette(before);
    }
    QPalette before = QApplication::palette();
    Theme theme;
};

TEST_F(RecordList, SlidersAndFocusedMarksAreSeenOnEveryGround) {
    Themed themed;
    for (const auto choice : {ThemeChoice::Light, ThemeChoice::Dark, ThemeChoice::HighContrast}) {
        themed.theme.Choose(choice);
        const QPalette palette = QApplication::palette();
        QWidget window;
        QSlider slider(Qt::Horizontal, &window);
        slider.setGeometry(0, 0, 200, 20);
        QRadioButton mark(&window);
        mark.setGeometry(0, 30, 16, 16);
        mark.setChecked(true);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        window.setFocus();
        const QImage without = mark.grab().toImage();
        EXPECT_GT(CountNear(slider.grab().toImage(), palette.color(QPalette::Highlight)), 60) << "the handle";
        const QColor ground = palette.color(QPalette::Window);
        const QColor groove = slider.grab().toImage().pixelColor(150, 10);
        EXPECT_GT(std::abs(groove.lightness() - ground.lightness()), 60)
            << Theme::NameOf(choice).toStdString();
        mark.setFocus();
        EXPECT_GT(CountNear(mark.grab().toImage(), palette.color(QPalette::WindowText)),
                  CountNear(without, palette.color(QPalette::WindowText)) + 8)
            << Theme::NameOf(choice).toStdString();
    }
}

TEST_F(RecordList, TheSortArrowStandsBehindTheWords) {
    const Themed themed;
    RecordListView list;
    list.resize(600, 400);
    list.SetModel(&model);
    list.header()->setSortIndicator(-1, Qt::AscendingOrder);
    list.SetColumnWidth(1, 10);
    list.show();
    const auto header = [&](int end) {
        QHeaderView& shown = *list.header();
        const int left = shown.sectionViewportPosition(1);
        return shown.viewport()->grab(QRect(left, 0, shown.sectionSize(1) - end, shown.height())).toImage();
    };
    const QImage whole = header(0), words = header(22);
    ASSERT_GT(CountNear(words, QApplication::palette().color(QPalette::Text)), 20);
    list.header()->setSortIndicator(1, Qt::DescendingOrder);
    EXPECT_EQ(header(22), words) << "nothing of the words is covered or left out";
    EXPECT_NE(header(0), whole) << "the arrow is there";
    model.side = Qt::AlignLeft;
    list.header()->headerDataChanged(Qt::Horizontal, 0, 2);
    EXPECT_EQ(header(22), words) << "nor do they stand higher where only their side is told";
}

TEST(ScrollBarLooks, TheThumbIsToldFromItsGround) {
    const Themed themed;
    for (const QPalette& palette : {LightPalette(), DarkPalette(), HighContrastPalette()}) {
        QScrollBar bar(Qt::Vertical);
        bar.setPalette(palette);
        bar.setRange(0, 100);
        bar.setPageStep(100);
        bar.resize(bar.sizeHint().width(), 300);
        bar.show();
        const QImage image = bar.grab().toImage();
        const auto light = [&](int y) { return qGray(image.pixel(image.width() / 2, y)); };
        EXPECT_GT(std::abs(light(80) - light(240)), 60);
    }
}

TEST(Screens, NoWindowIsLargerOrBeyondTheEdge) {
    const Themed themed;
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QWidget large;
    large.resize(screen.size() * 2);
    QDialog aside;
    aside.resize(300, 200);
    aside.move(screen.bottomRight());
    QWidget inside(&large);
    inside.resize(5000, 5000);
    large.show();
    aside.show();
    EXPECT_TRUE(screen.contains(QRect(screen.topLeft(), large.size())));
    EXPECT_TRUE(screen.contains(aside.geometry()));
    EXPECT_EQ(inside.width(), 5000) << "only windows";
}

TEST(MenuLooks, TheEntryUnderThePointerKeepsItsInks) {
    const Themed themed;
    const QPalette palette = QApplication::palette();
    QMenu menu;
    QAction* entry = menu.addAction(Icon("edit-delete"), "Delete");
    menu.popup({50, 50});
    const QImage before = menu.grab(menu.actionGeometry(entry)).toImage();
    menu.setActiveAction(entry);
    const QImage active = menu.grab(menu.actionGeometry(entry)).toImage();
    menu.close();
    const QColor ink = palette.color(QPalette::Text);
    EXPECT_GT(CountNear(active, SelectionTint(palette)), active.width() * active.height() / 2);
    EXPECT_GT(CountNear(before, ink), 20);
    EXPECT_NEAR(CountNear(active, ink), CountNear(before, ink), CountNear(before, ink) / 5);
}

/// One row whose words and marks a test chooses.
class OneRow final : public RecordListModel {
  public:
    OneRow() { SetKeys({1, 2}); }
    int columnCount(const QModelIndex& = {}) const override { return 1; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role == RecordRole::Marks) return index.row() == 0 ? marks : 0;
        return role == Qt::DisplayRole && index.row() == 0 ? QVariant(words) : QVariant();
    }
    QString words = "MMMMMMMM";
    int marks = 0;

  protected:
    CellTexts ReadTexts(int) const override { return {}; }
};

TEST(RecordDelegateTest, SelectionIsATintAndABarUnderTheSameInk) {
    OneRow model;
    RecordListView view;
    view.setPalette(LightPalette());
    view.resize(300, 200);
    view.setHeaderHidden(true);
    QFont large = view.font();
    large.setPixelSize(18);
    large.setBold(true);  // or the ink of thin letters is mixed with the ground
    view.setFont(large);
    view.SetModel(&model);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    const auto row = [&] { return view.viewport()->grab(view.visualRect(model.index(0, 0))).toImage(); };
    const QPalette palette = view.palette();
    const QColor ink = palette.color(QPalette::Text), base = palette.color(QPalette::Base);
    const QImage plain = row();
    ASSERT_GT(CountNear(plain, ink), 20);
    view.setCurrentIndex(model.index(0, 0));
    view.clearFocus();  // its frame is another thing, and the tint paler
    const QImage selected = row();
    EXPECT_NEAR(CountNear(selected, ink), CountNear(plain, ink), 40) << "the words keep their ink";
    EXPECT_EQ(selected.pixelColor(1, 5).name(), InkOf(Ink::Accent, palette).name());
    EXPECT_EQ(selected.pixelColor(selected.width() - 8, 5).name(), SelectionTint(palette, false).name());
    EXPECT_NE(SelectionTint(palette), base);

    const std::pair<int, QColor> marks[] = {{RowMark::Overdue, InkOf(Ink::Alarm, palette)},
                                            {RowMark::Faint, Blend(base, ink, 0.4)},
                                            {RowMark::Completed, Blend(base, ink, 0.6)}};
    view.setCurrentIndex(model.index(1, 0));
    for (const auto& [mark, colour] : marks) {
        model.marks = mark;
        const QImage marked = row();
        EXPECT_GT(CountNear(marked, colour), 20) << mark;
        EXPECT_EQ(CountNear(marked, ink), 0) << mark;
    }
    model.marks = RowMark::Faint;
    view.setPalette(HighContrastPalette());
    EXPECT_GT(CountNear(row(), HighContrastPalette().color(QPalette::PlaceholderText)), 20);
    view.setPalette(LightPalette());
    model.marks = 0;
    model.words.clear();
    EXPECT_GT(CountNear(row(), palette.color(QPalette::PlaceholderText)), 5)
        << "a record without a name shows so";
    EXPECT_EQ(model.index(0, 0).data().toString(), "");
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

TEST(StripTest, StaysInTheHandAndGivesTheFocusBack) {
    QWidget window;
    auto* column = new QVBoxLayout(&window);
    auto* before = new QLineEdit;
    auto* other = new QLineEdit;
    auto* strip = new Strip;
    for (QWidget* each :
         {static_cast<QWidget*>(strip), static_cast<QWidget*>(before), static_cast<QWidget*>(other)})
        column->addWidget(each);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    strip->Say("Task deleted.", Strip::Kind::Note, "Undo");
    other->setFocus();
    EXPECT_FALSE(strip->InHand());
    test::Named(*strip, "stripAction").setFocus();
    EXPECT_TRUE(strip->InHand());
    QSignalSpy acted(strip, &Strip::Acted);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(acted.size(), 1);
    strip->Clear();
    EXPECT_EQ(QApplication::focusWidget(), other);
}

}  // namespace
}  // namespace bmr::kit
