#include "base/buckets.h"

#include <gtest/gtest.h>

#include "support/data.h"
#include "support/random.h"

namespace bmr {
namespace {

void ExpectRange(const SpreadRange& range, const nlohmann::json& expected, const std::string& what) {
    EXPECT_EQ(range.value, expected.at("value").get<std::int32_t>()) << what;
    EXPECT_EQ(range.low, expected.at("low").get<std::int32_t>()) << what;
    EXPECT_EQ(range.high, expected.at("high").get<std::int32_t>()) << what;
}

SpreadRange SpreadOf(const nlohmann::json& c) {
    return SpreadIndexAt(c.at("index"), c.at("slots"), c.at("min"), c.at("max"), c.at("r"));
}

TEST(Buckets, KnownAnswers) {
    const auto format = test::LoadVectors("format.json").at("buckets");
    const auto logic = test::LoadVectors("logic.json").at("groups");
    for (const auto& c : format.at("SpreadIndex"))
        ExpectRange(SpreadOf(c), c, c.dump());
    for (const auto& c : logic.at("SpreadIndex"))
        ExpectRange(SpreadOf(c), c.at("out"), c.dump());
    for (const auto& c : format.at("SlotOf"))
        EXPECT_EQ(SlotOf(c.at("value"), c.at("slots"), c.at("min"), c.at("max")), c.at("slot")) << c;
    for (const auto& c : logic.at("SlotOf"))
        EXPECT_EQ(SlotOf(c.at("value"), c.at("slots"), c.at("min"), c.at("max")), c.at("out")) << c;
    for (const auto& c : format.at("UnpackDate"))
        EXPECT_EQ(IsoDate(UnpackDate(c.at("value"), static_cast<DateKind>(c.at("kind").get<int>()))),
                  c.at("date"))
            << c;
    for (const auto& c : logic.at("PackDate")) {
        const auto kind = static_cast<DateKind>(c.at("kind").get<int>());
        const SpreadRange range = PackDateAt(Day{c.at("serial")}, kind, c.at("r"));
        ExpectRange(range, c.at("out"), c.dump());
        EXPECT_EQ(UnpackDate(range.value, kind).serial, c.at("out").at("unpacked")) << c;
    }
    for (const auto& c : logic.at("RandomFraction")) {
        test::ScriptedRandom random;
        random.uniforms = {c.at("r"), c.at("r2")};
        EXPECT_EQ(RandomFraction(random), c.at("out").get<double>()) << c;
        EXPECT_TRUE(random.uniforms.empty());
    }
}

TEST(Buckets, ABaseDayPacksToIndexZeroAndTheDayBeforeIntoTheMirroredHalf) {
    const struct {
        DateKind kind;
        std::int32_t base;
        std::int32_t width;
    } tables[] = {
        {DateKind::Start, 31608, 71049}, {DateKind::First, 32626, 73526}, {DateKind::Last, 35509, 81578}};
    for (const auto& table : tables) {
        const SpreadRange first = PackDateAt(Day{table.base}, table.kind, 0.25);
        EXPECT_EQ(first.low, 0);
        EXPECT_EQ(first.high, table.width - 1);
        EXPECT_EQ(UnpackDate(first.value, table.kind).serial, table.base);
        const SpreadRange before = PackDateAt(Day{table.base - 1}, table.kind, 0.0);
        EXPECT_EQ(before.value, -table.width);
        EXPECT_EQ(UnpackDate(before.value, table.kind).serial, table.base - 1);
    }
}

TEST(Buckets, EveryDayOfATableComesBackWhateverTheDraw) {
    test::SeededRandom random(7);
    for (const DateKind kind : {DateKind::Start, DateKind::First, DateKind::Last}) {
        for (std::int32_t serial = 9185; serial <= 61832; serial += 13) {
            const SpreadRange range = PackDate(Day{serial}, kind, random);
            ASSERT_LE(range.low, range.value);
            ASSERT_LE(range.value, range.high);
            // The lower limit for what a person enters is the first day of the narrowest table.
            ASSERT_EQ(UnpackDate(range.value, kind).serial,
                      std::max(serial, 9186 * (kind == DateKind::Last)));
        }
    }
}

TEST(Buckets, ADayBeyondItsTableIsClampedToTheLastSlot) {
    for (const std::int32_t serial : {61832, 61833, 2147483647})
        EXPECT_EQ(UnpackDate(PackDateAt(Day{serial}, DateKind::Last, 0.5).value, DateKind::Last).serial,
                  61832);
    EXPECT_EQ(PackDateAt(Day{-2147483647}, DateKind::Last, 0.5).value,
              PackDateAt(Day{9186}, DateKind::Last, 0.5).value);
}

}  // namespace
}  // namespace bmr
