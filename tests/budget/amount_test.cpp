#include "budget/amount.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "budget/entry.h"
#include "support/calendar.h"
#include "support/random.h"

namespace bmr::budget {
namespace {

const AmountFormat kPoint{".", ","};
const AmountFormat kComma{",", "."};
const AmountFormat kNarrow{",", "\xE2\x80\xAF"};
const AmountFormat kSwiss{".", "\xE2\x80\x99"};

std::string Parsed(std::string_view text, const AmountFormat& format) {
    const auto amount = ParseAmount(text, format);
    return amount ? ExactText(*amount) : "none";
}

std::string WorkedOut(std::string_view text, const AmountFormat& format = kPoint) {
    const auto amount = WorkOutAmount(text, format);
    return amount ? ExactText(*amount) : "none";
}

TEST(AmountTexts, KnownAnswers) {
    for (const auto& c : test::CalendarVectors("FormatAmount"))
        EXPECT_EQ(AmountText({c.at("amount")}, kPoint), c.at("out")) << c;
}

TEST(AmountTexts, FollowTheLocaleToTheEndsOfTheRange) {
    EXPECT_EQ(AmountText({12345678950}, kComma), "1.234.567,90");
    EXPECT_EQ(AmountText({-12345678950}, kNarrow),
              "-1\xE2\x80\xAF"
              "234\xE2\x80\xAF"
              "567,90");
    EXPECT_EQ(AmountText({-49}, kPoint), "0.00");
    EXPECT_EQ(AmountText({-50}, kPoint), "-0.01");
    const Money lowest{std::numeric_limits<std::int64_t>::min()};
    EXPECT_EQ(AmountText(lowest, kPoint), "-922,337,203,685,477.58");
    EXPECT_EQ(ExactText(lowest), "-922337203685477.5808");
    EXPECT_EQ(PlainText({15000}, kComma), "1,50");
    EXPECT_EQ(PlainText({15001}, kComma), "1,5001");
    EXPECT_EQ(PlainText({15010}, kPoint), "1.501");
    EXPECT_EQ(SumText({15000}, kPoint), " 1.50");
}

TEST(Amounts, AreReadAsPeopleOfALocaleWriteThem) {
    struct Case {
        const char* text;
        const char* point;  ///< under a decimal point with grouping commas
        const char* comma;  ///< the other way round
    };
    for (const Case& c : {Case{"", "none", "none"},
                          {"x", "none", "none"},
                          {" ", "none", "none"},
                          {".", "none", "none"},
                          {"-", "none", "none"},
                          {"12", "12.0000", "12.0000"},
                          {" 12.5 ", "12.5000", "none"},
                          {"12,5", "none", "12.5000"},
                          {"1.234,56", "none", "1234.5600"},
                          {"1,234.56", "1234.5600", "none"},
                          {"1,234", "1234.0000", "1.2340"},
                          {"1.234", "1.2340", "1234.0000"},
                          {"12,34,567.5", "1234567.5000", "none"},
                          {"1,2,345", "none", "none"},
                          {"1234,567", "none", "1234.5670"},
                          {"1,234,56", "none", "none"},
                          {"1e3", "1000.0000", "1000.0000"},
                          {"1E-2", "0.0100", "0.0100"},
                          {"1e", "none", "none"},
                          {"(5)", "-5.0000", "-5.0000"},
                          {"(-5)", "none", "none"},
                          {"-3", "-3.0000", "-3.0000"},
                          {"3-", "-3.0000", "-3.0000"},
                          {"\xE2\x88\x92"
                           "3",
                           "-3.0000", "-3.0000"},
                          {"--3", "none", "none"},
                          {"+3", "3.0000", "3.0000"},
                          {".5", "0.5000", "none"},
                          {"5.", "5.0000", "none"},
                          {"5 EUR", "none", "none"},
                          {"1234567890123456", "none", "none"},
                          {"922337203685477.5807", "922337203685477.5807", "none"},
                          {"922337203685477.5808", "none", "none"},
                          {"-922337203685477.5808", "-922337203685477.5808", "none"},
                          {"1e400", "none", "none"},
                          {"0e400", "0.0000", "0.0000"},
                          {"1e-400", "0.0000", "0.0000"}}) {
        EXPECT_EQ(Parsed(c.text, kPoint), c.point) << c.text;
        EXPECT_EQ(Parsed(c.text, kComma), c.comma) << c.text;
    }
    for (const char* blank : {" ", "\xC2\xA0", "\xE2\x80\xAF"})
        EXPECT_EQ(Parsed("1" + std::string(blank) + "234,5", kNarrow), "1234.5000");
    EXPECT_EQ(Parsed("1'234.5", kSwiss), "1234.5000");
    EXPECT_EQ(Parsed("0.00005", kPoint), "0.0001");
    EXPECT_EQ(Parsed("-0.00005", kPoint), "-0.0001");
    EXPECT_EQ(Parsed("0.00004999", kPoint), "0.0000");
}

TEST(Amounts, WhatIsShownIsReadBackInEveryLocale) {
    test::SeededRandom random(5);
    for (int i = 0; i < 2000; ++i) {
        const auto bits = static_cast<std::int64_t>(random.Uniform() * 0x1p62);
        const Money amount{(bits >> (i % 60)) * (i % 2 == 0 ? 1 : -1)};
        for (const AmountFormat& format : {kPoint, kComma, kNarrow, kSwiss}) {
            EXPECT_EQ(Parsed(AmountText(amount, format), format), ExactText(RoundedToHundredths(amount)));
            EXPECT_EQ(Parsed(PlainText(amount, format), format), ExactText(amount));
        }
    }
}

TEST(AmountSums, AreWorkedOutExactlyAndRoundedOnce) {
    for (const auto& [text, out] :
         std::initializer_list<std::pair<const char*, const char*>>{{"12.50*3", "37.5000"},
                                                                    {"12.50 * 3 + 1", "38.5000"},
                                                                    {"=2+3*4", "14.0000"},
                                                                    {"(2+3)*4", "20.0000"},
                                                                    {"1,234.50/2", "617.2500"},
                                                                    {"100/3", "33.3333"},
                                                                    {"100/3*3", "100.0000"},
                                                                    {"200/3", "66.6667"},
                                                                    {"1/3+1/3+1/3", "1.0000"},
                                                                    {"-1/3*2", "-0.6667"},
                                                                    {"0.00005*1", "0.0001"},
                                                                    {"2\xC3\x97"
                                                                     "3\xC3\xB7"
                                                                     "4",
                                                                     "1.5000"},
                                                                    {"-(5)", "-5.0000"},
                                                                    {"(5)*2", "10.0000"},
                                                                    {"5-(3)", "2.0000"},
                                                                    {"10-3-2", "5.0000"},
                                                                    {"1/0", "none"},
                                                                    {"1+", "none"},
                                                                    {"(1", "none"},
                                                                    {"1 2", "none"},
                                                                    {"1x2", "none"},
                                                                    {"999999999999999*1000", "none"},
                                                                    {"", "none"}})
        EXPECT_EQ(WorkedOut(text), out) << text;
    EXPECT_EQ(WorkedOut("1.234,50*2", kComma), "2469.0000");
    EXPECT_EQ(WorkedOut(std::string(5000, '(') + "1" + std::string(5000, ')')), "none");
    EXPECT_FALSE(IsSum("(5)", kPoint));
    EXPECT_EQ(LeaveAmount("100/3", kComma), "33,3333");
    EXPECT_EQ(LeaveAmount("12.5", kPoint), "12.5");
    EXPECT_EQ(LeaveAmount("1+x", kPoint), "1+x");
}

TEST(AmountTests, ZeroIsJudgedByThePlainRuleAndNumbersByTheLocale) {
    struct Case {
        const char* text;
        AmountVerdict point, comma;
    };
    using enum AmountVerdict;
    for (const Case& c : {Case{"0", Zero, Zero},
                          {"", NoAmount, NoAmount},
                          {"x", NoAmount, NoAmount},
                          {"0,50", NoAmount, Zero},  // stored as a half, but the plain rule reads 0
                          {".50", Good, NoAmount},
                          {",50", NoAmount, Zero},
                          {"1.234,56", NoAmount, Good},
                          {"(5)", Zero, Zero},
                          {"-3", Good, Good},
                          {"- 3", Good, Good},
                          {"1e3", Good, Good},
                          {"2-2", Zero, Zero},
                          {"2*2", Good, Good}}) {
        EXPECT_EQ(JudgeAmount(c.text, kPoint), c.point) << c.text;
        EXPECT_EQ(JudgeAmount(c.text, kComma), c.comma) << c.text;
    }
}

TEST(AmountSums, HoldAtTheEndsOfTheRange) {
    const Money highest{std::numeric_limits<std::int64_t>::max()};
    const Money lowest{std::numeric_limits<std::int64_t>::min()};
    EXPECT_EQ(Plus(highest, {1}), highest);
    EXPECT_EQ(Minus(lowest, {1}), lowest);
    EXPECT_EQ(Minus({0}, lowest), highest);
    EXPECT_EQ(Plus(highest, lowest), Money{-1});
    EXPECT_EQ(RoundedToHundredths({-50}), Money{-100});
    EXPECT_EQ(RoundedToHundredths({149}), Money{100});
}

}  // namespace
}  // namespace bmr::budget
