#include "app/sectioncolumn.h"

#include <gtest/gtest.h>

#include <QTest>
#include <vector>

namespace bmr::app {
namespace {

class Column : public testing::Test {
  protected:
    Column() : column_(nullptr) {
        for (const std::uint8_t code : std::vector<std::uint8_t>{11, 13, 15})
            column_.SetAvailable(code, true);
        column_.SetOpenable(true);
        QObject::connect(&column_, &SectionColumn::Chosen,
                         [this](std::uint8_t code) { chosen_.push_back(code); });
        column_.show();
        if (!QTest::qWaitForWindowActive(&column_)) ADD_FAILURE() << "no active window";
    }
    SectionButton& Button(int code) {
        return *column_.findChild<SectionButton*>(QString("optSection%1").arg(code));
    }

    SectionColumn column_;
    std::vector<std::uint8_t> chosen_;
};

TEST_F(Column, APressAloneSwitchesNothing) {
    column_.SetCurrent(11);
    QTest::mouseClick(&Button(15), Qt::LeftButton);
    EXPECT_EQ(chosen_, std::vector<std::uint8_t>{15});
    EXPECT_TRUE(Button(11).isChecked()) << "the PIN has not been asked yet";
    EXPECT_FALSE(Button(15).isChecked());
    column_.SetCurrent(15);
    EXPECT_TRUE(Button(15).isChecked());
    EXPECT_FALSE(Button(11).isChecked());
}

TEST_F(Column, SectionsThatAreMissingSayWhy) {
    EXPECT_TRUE(Button(15).isEnabled());
    EXPECT_FALSE(Button(12).isEnabled());
    EXPECT_TRUE(Button(12).toolTip().contains("Not in this version yet"));
    EXPECT_EQ(Button(12).accessibleDescription(), "Not in this version yet");
    QTest::mouseClick(&Button(12), Qt::LeftButton);
    EXPECT_TRUE(chosen_.empty());
    column_.SetOpenable(false);
    EXPECT_FALSE(Button(15).isEnabled());
}

TEST_F(Column, ArrowsGoPastMissingSectionsAndTabStopsOnce) {
    column_.SetCurrent(11);
    Button(11).setFocus();
    QTest::keyClick(&Button(11), Qt::Key_Down);
    EXPECT_TRUE(Button(13).hasFocus());
    QTest::keyClick(&Button(13), Qt::Key_End);
    EXPECT_TRUE(Button(15).hasFocus());
    QTest::keyClick(&Button(15), Qt::Key_Down);
    EXPECT_TRUE(Button(15).hasFocus()) << "nothing below";
    EXPECT_TRUE(chosen_.empty()) << "moving opens nothing";
    QTest::keyClick(&Button(15), Qt::Key_Return);
    EXPECT_EQ(chosen_, std::vector<std::uint8_t>{15});

    int stops = 0;
    for (int code = 11; code <= 19; ++code)
        stops += Button(code).isEnabled() && (Button(code).focusPolicy() & Qt::TabFocus);
    EXPECT_EQ(stops, 1);
}

TEST_F(Column, FoldsToItsIconsAndBack) {
    EXPECT_GE(column_.width(), 200);
    column_.SetFolded(true);
    EXPECT_LE(column_.width(), 52);
    column_.SetFolded(false);
    EXPECT_GE(column_.width(), 200);

    QFont large = column_.font();
    large.setPointSizeF(large.pointSizeF() * 2);
    column_.setFont(large);
    QTest::qWait(0);
    const QFontMetrics metrics(large);
    EXPECT_GT(Button(11).width(), metrics.horizontalAdvance("Address Book") + 24) << "names are never cut";
    EXPECT_GE(Button(11).height(), metrics.height());
}

TEST_F(Column, FoldsByItselfWhereItIsNarrowAndRemembersBothChoices) {
    std::vector<bool> told;
    QObject::connect(&column_, &SectionColumn::FoldChanged, [&](bool folded) { told.push_back(folded); });
    column_.SetNarrow(true);
    EXPECT_TRUE(column_.Folded());
    EXPECT_FALSE(column_.FoldedWhenWide());
    column_.SetFolded(false);  // the person wants the names all the same
    column_.SetNarrow(true);
    EXPECT_FALSE(column_.Folded());
    column_.SetNarrow(false);
    EXPECT_FALSE(column_.Folded());
    column_.SetFolded(true);
    column_.SetNarrow(true);
    EXPECT_FALSE(column_.Folded());
    EXPECT_TRUE(column_.FoldedWhenWide());
    column_.SetNarrow(false);
    EXPECT_TRUE(column_.Folded());
    EXPECT_EQ(told, (std::vector<bool>{true, false, false, true, false, true}));
}

TEST_F(Column, LocksOnlySectionsThatCanBeOpened) {
    column_.SetLocked([](std::uint8_t code) { return code == 13 || code == 14; });
    EXPECT_TRUE(Button(13).Locked());
    EXPECT_EQ(Button(13).accessibleDescription(), "Asks for the PIN");
    EXPECT_FALSE(Button(14).Locked()) << "not in the program";
    column_.SetLocked([](std::uint8_t) { return false; });
    EXPECT_FALSE(Button(13).Locked());
}

}  // namespace
}  // namespace bmr::app
