#include "kit/dateedit.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QToolButton>

#include "base/shortdate.h"
#include "kit/dateentry.h"
#include "support/forms.h"

namespace bmr::kit {
namespace {

using test::Named;

const Day kToday{46347};  // Saturday, 21 November 2026

TEST(DateEntry, UnderstandsWhatPeopleType) {
    const QLocale british(QLocale::English, QLocale::UnitedKingdom);
    const QLocale american(QLocale::English, QLocale::UnitedStates);
    const QLocale german(QLocale::German, QLocale::Germany);
    const struct {
        const char* typed;
        QLocale locale;
        const char* expected;
    } cases[] = {
        {"t", british, "2026-11-21"},         {" TODAY ", british, "2026-11-21"},
        {"tomorrow", british, "2026-11-22"},  {"yest", british, "2026-11-20"},
        {"+3", british, "2026-11-24"},        {"- 1", british, "2026-11-20"},
        {"+2w", british, "2026-12-05"},       {"+3m", british, "2027-02-21"},
        {"fri", british, "2026-11-27"},       {"Saturday", british, "2026-11-28"},
        {"Donners", german, "2026-11-26"},    {"thu", german, "2026-11-26"},
        {"24/12", british, "2026-12-24"},     {"12/24", american, "2026-12-24"},
        {"20.11.", german, "2027-11-20"},     {"29/2", british, "2028-02-29"},
        {"1/2/2027", british, "2027-02-01"},  {"1/2/2027", american, "2027-01-02"},
        {"2027-03-04", german, "2027-03-04"},
    };
    for (const auto& one : cases) {
        const auto day = ReadDate(one.typed, kToday, one.locale);
        ASSERT_TRUE(day) << one.typed;
        EXPECT_EQ(IsoDate(*day), one.expected) << one.typed;
    }
    const QLocale plain = QLocale::c();
    EXPECT_EQ(ReadDate(plain.toString(QDate(2027, 3, 4), QLocale::ShortFormat), kToday, plain),
              ParseIsoDate("2027-03-04"))
        << "as dates are shown";
    EXPECT_EQ(NoDate("31.12.2026", kToday, plain),
              "“31.12.2026” is no date. Dates are written as 2026-12-31.");
    EXPECT_EQ(NoDate("%1", kToday, british),
              "“%1” is no date. Dates are written as 31/12/2026 or 2026-12-31.");
    for (const char* typed : {"", "soon", "31/2", "13/13", "+", "f", "2027-02-30"})
        EXPECT_FALSE(ReadDate(typed, kToday, british)) << typed;
}

TEST(DateEntry, FactsOfALocaleAreOnesThatTheRulesUnderstand) {
    EXPECT_EQ(FactsOf(QLocale::c()).shortDate, "yyyy-MM-dd");
    const LocaleFacts german = FactsOf(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(german.shortDate, "dd.MM.yy");
    EXPECT_EQ(german.decimalPoint, ',');
    EXPECT_EQ(german.firstDayOfWeek, 2);
    EXPECT_EQ(FactsOf(QLocale(QLocale::English, QLocale::UnitedStates)).firstDayOfWeek, 1);
    for (const QLocale& locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory)) {
        const std::string pattern = FactsOf(locale).shortDate;
        EXPECT_EQ(ParseShortDate(FormatShortDate(kToday, pattern), pattern), kToday)
            << locale.name().toStdString() << " " << pattern;
    }
}

struct DateEditTest : testing::Test {
    DateEditTest() {
        edit.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&edit));
    }
    void Type(const QString& text) {
        line.setFocus();
        line.selectAll();
        QTest::keyClicks(&line, text);
        QTest::keyClick(&line, Qt::Key_Return);
    }
    DateEdit edit{kToday};
    QLineEdit& line = Named<QLineEdit>(edit, "line");
    QCheckBox& box = Named<QCheckBox>(edit, "box");
    QSignalSpy changed{&edit, &DateEdit::DateChanged};
};

TEST_F(DateEditTest, SwitchesOnAtTodayAndOffToNone) {
    EXPECT_FALSE(line.isVisible());
    box.click();
    EXPECT_EQ(edit.Date(), kToday);
    EXPECT_EQ(line.text(), "21/11/2026");
    EXPECT_TRUE(line.hasFocus());
    box.click();
    EXPECT_FALSE(edit.Date());
    EXPECT_FALSE(line.isVisible());
    EXPECT_EQ(changed.size(), 2);
    edit.SetDate(kToday);
    EXPECT_EQ(changed.size(), 2) << "what the program sets is no change";
}

TEST_F(DateEditTest, TakesTypedDatesStepsAndKeepsToItsBounds) {
    edit.SetRange({46000}, {47000});
    edit.SetDate(kToday);
    Type("+3");
    EXPECT_EQ(edit.Date(), Day{46350});
    QTest::keyClick(&line, Qt::Key_Up);
    EXPECT_EQ(edit.Date(), Day{46351});
    QTest::keyClick(&line, Qt::Key_PageDown);
    EXPECT_EQ(line.text(), "25/10/2026");
    Type("1/1/1900");
    EXPECT_EQ(edit.Date(), Day{46000});
    QTest::keyClick(&line, Qt::Key_Down);
    EXPECT_EQ(edit.Date(), Day{46000});

    QSignalSpy wrong(&edit, &DateEdit::NotUnderstood);
    Type("whenever");
    EXPECT_EQ(wrong.size(), 1);
    EXPECT_FALSE(edit.Commit());
    EXPECT_EQ(edit.Date(), Day{46000});
    EXPECT_EQ(line.text(), "whenever") << "it stays to be mended";
    QTest::keyClick(&line, Qt::Key_Up);
    EXPECT_EQ(line.text(), "whenever") << "no step from what is no date";
    line.selectAll();
    QTest::keyClick(&line, Qt::Key_Delete);
    QTest::keyClick(&line, Qt::Key_Return);
    EXPECT_FALSE(edit.Date()) << "an emptied line is no date";
    EXPECT_FALSE(line.isVisible());
}

TEST_F(DateEditTest, PicksFromTheCalendar) {
    edit.SetDate(kToday);
    QTimer::singleShot(50, [] {
        auto* menu = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu);
        auto& calendar = Named<QCalendarWidget>(*menu, "calendar");
        EXPECT_EQ(calendar.selectedDate(), QDate(2026, 11, 21));
        emit calendar.clicked(QDate(2026, 12, 1));
    });
    Named<QToolButton>(edit, "drop").click();
    EXPECT_EQ(line.text(), "01/12/2026");
    EXPECT_EQ(changed.size(), 1);
}

}  // namespace
}  // namespace bmr::kit
