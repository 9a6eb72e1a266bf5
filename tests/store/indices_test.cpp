#include "store/indices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "crypto/conversion.h"
#include "notes/memo.h"
#include "store/bucketsearch.h"
#include "support/data.h"
#include "support/store.h"

namespace bmr::store {
namespace {

TEST(BucketKeys, StayInTheirBucketAndInItsColumnX) {
    test::SeededRandom random;
    for (const char* text : {"", " ", "A", "Ab", "Mz", "zz", "\xC4pfel", "9 lives"}) {
        const SpreadRange bounds = BucketBounds(text);
        for (int i = 0; i < 200; ++i) {
            const std::int32_t key = BucketKey(text, random);
            EXPECT_GE(key, bounds.low);
            EXPECT_LE(key, bounds.high);
            EXPECT_EQ(BucketOfKey(key), BucketOfKey(bounds.high));
        }
    }
    EXPECT_EQ(BucketBounds("\xC4pfel").low, BucketBounds("Apfel").low);
    EXPECT_EQ(BucketBounds("").low, 0);
    EXPECT_EQ(BucketBounds("  Ab ").low, BucketBounds("Ab").low);
    const auto vectors = test::LoadVectors("format.json");
    for (const auto& entry : vectors["BucketKey"]) {
        const SpreadRange bounds = BucketBounds(test::Hex(entry["text"]));
        EXPECT_EQ(bounds.low, entry["low"].get<std::int32_t>());
        EXPECT_EQ(bounds.high, entry["high"].get<std::int32_t>());
        EXPECT_EQ(BucketOfKey(bounds.high), entry["X_high"].get<std::int32_t>());
    }
}

TEST(BucketKeys, ADrawOnThePointsThatXCountsBeforeIsDrawnAnew) {
    // The first point of the third bucket is still the X of the two before.
    const SpreadRange bounds = SpreadIndexAt(2, kSortBuckets, 0, kMaxLong, 0);
    ASSERT_NE(BucketOfKey(bounds.low), BucketOfKey(bounds.high));
    test::ScriptedRandom random;
    random.uniforms = {0.0, 0.0, 0.5, 0.5};
    const std::int32_t key = BucketKey("Bd", random);
    EXPECT_EQ(conversion::NameKey("Bd", false), 2);
    EXPECT_GT(key, bounds.low);
    EXPECT_TRUE(random.uniforms.empty());
}

TEST(BucketPositions, LieStrictlyBetweenTheNeighbours) {
    test::SeededRandom random;
    const SpreadRange bounds = BucketBounds("Ab");
    std::vector<BucketRow> rows;
    int full = 0;
    for (int i = 0; i < 2000; ++i) {
        const auto place =
            static_cast<std::size_t>(DrawBelow(random, static_cast<std::int32_t>(rows.size()) + 1));
        const auto position = PositionBetween(rows, place, bounds, random);
        if (!position) {
            ++full;
            ASSERT_EQ(rows[place - 1].position + 1, rows[place].position);
            for (std::size_t at = 0; at < rows.size(); ++at)
                rows[at].position =
                    SpreadIndexAt(static_cast<std::int32_t>(at), static_cast<std::int32_t>(rows.size()),
                                  bounds.low, bounds.high, 0.5)
                        .value;
            continue;
        }
        ASSERT_GE(*position, bounds.low);
        ASSERT_LE(*position, bounds.high);
        if (place > 0) ASSERT_GT(*position, rows[place - 1].position);
        if (place < rows.size()) ASSERT_LT(*position, rows[place].position);
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(place), {i, *position});
    }
    EXPECT_LE(full, 2);  // fewer than one in a thousand
    EXPECT_FALSE(PositionBetween({{1, 500}, {2, 501}}, 1, bounds, random));
    EXPECT_FALSE(PositionBetween({{1, bounds.low}}, 0, bounds, random));
}

/// How many texts the search for `text` deciphered; the place must be the right one.
std::size_t TextsRead(const std::vector<Bytes>& sorted, const Bytes& text) {
    std::size_t read = 0;
    const std::size_t place = FindBucketPlace(sorted.size(), text, [&](std::span<const std::size_t> places) {
        std::vector<Bytes> texts;
        for (const std::size_t at : places)
            texts.push_back(sorted.at(at));
        read += places.size();
        return texts;
    });
    EXPECT_EQ(place, std::upper_bound(sorted.begin(), sorted.end(), text) - sorted.begin()) << text;
    return read;
}

TEST(BucketSearch, FindsThePlaceWithinItsLimitHoweverTheTextsAreSpread) {
    test::SeededRandom random(3);
    const std::pair<const char*, std::size_t> spreads[] = {
        {"abcdefghijklmnopqrstuvwxyz", 8}, {"eeeeeeeeeeetanz", 6}, {"a", 30}, {"aZ 9\xE9\xFF", 3}, {"", 0}};
    for (const auto& [letters, length] : spreads) {
        const auto draw = [&, letters = std::string_view(letters), length = length] {
            Bytes text = "Ke";
            const auto most = static_cast<std::int32_t>(length);
            for (int i = most == 0 ? 0 : DrawBelow(random, most + 1); i > 0; --i)
                text += letters[static_cast<std::size_t>(
                    DrawBelow(random, static_cast<std::int32_t>(letters.size())))];
            return text;
        };
        for (const std::size_t rows : {0, 1, 2, 3, 65, 700, 4000}) {
            std::vector<Bytes> sorted(rows);
            std::generate(sorted.begin(), sorted.end(), draw);
            std::sort(sorted.begin(), sorted.end());
            const double limit = rows == 0 ? 0 : 2 + std::log2(rows);
            for (int i = 0; i < 60; ++i)
                ASSERT_LE(TextsRead(sorted, draw()), limit) << letters << " " << rows;
            for (const char* outside : {"", "A", "Kd", "Kf", "\xFF"})
                ASSERT_LE(TextsRead(sorted, outside), limit) << outside << " " << rows;
        }
    }
}

class Order : public testing::Test {
  protected:
    std::int32_t Save(std::int32_t key, const Bytes& subject) {
        notes::Memo memo = notes::ClearRecord(store.session, 0);
        memo.key = key;
        memo.subject = subject;
        EXPECT_EQ(notes::WriteRecord(store.session, memo), 0);
        return memo.key;
    }
    /// Keys in reading order, and what their texts say of it.
    void ExpectOrdered(const std::map<std::int32_t, Bytes>& texts) {
        auto rows = notes::ListRecords(store.session, -1);
        ASSERT_TRUE(rows);
        ASSERT_EQ(rows->size(), texts.size());
        std::map<std::int32_t, Bytes> lastOfBucket;
        for (const std::int32_t key : *rows) {
            const Bytes& text = texts.at(key);
            Bytes& last = lastOfBucket[BucketBounds(text).low];
            EXPECT_LE(last, Bytes(TrimBlanks(text)));
            last = Bytes(TrimBlanks(text));
        }
        EXPECT_TRUE(FindDisorder(store.session, Section::Memo).empty());
    }

    test::TempStore store;
};

TEST_F(Order, HoldsAfterAnySequenceOfAddsRenamesAndDeletes) {
    store.session.ShowPrivate = true;
    test::SeededRandom random(11);
    std::map<std::int32_t, Bytes> texts;
    std::vector<std::int32_t> keys;
    const auto draw = [&random] {
        Bytes text;
        for (int i = DrawBelow(random, 5); i >= 0; --i)
            text += ByteChar(static_cast<unsigned>(64 + DrawBelow(random, 6)));
        return text;
    };
    const auto transaction = std::make_unique<engine::Transaction>(*store.session.ProgramDb);
    for (int i = 0; i < 700; ++i) {
        const int what = keys.empty() ? 0 : DrawBelow(random, 5);
        if (what < 3) {
            const Bytes text = draw();
            keys.push_back(Save(kNewRecord, text));
            texts[keys.back()] = text;
            continue;
        }
        const auto at = static_cast<std::size_t>(DrawBelow(random, static_cast<std::int32_t>(keys.size())));
        if (what == 3) {
            texts[keys[at]] = draw();
            EXPECT_EQ(Save(keys[at], texts[keys[at]]), keys[at]);
        } else {
            EXPECT_EQ(DeleteRow(store.session, keys[at]), 0);
            texts.erase(keys[at]);
            keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(at));
        }
    }
    ASSERT_EQ(transaction->error(), 0);
    ExpectOrdered(texts);
}

TEST_F(Order, HoldsWhenEveryNewRowComesFirstOrLast) {
    store.session.ShowPrivate = true;
    std::map<std::int32_t, Bytes> texts;
    const auto transaction = std::make_unique<engine::Transaction>(*store.session.ProgramDb);
    for (int i = 100; i < 250; ++i) {
        const Bytes last = "Ab" + std::to_string(i);
        const Bytes first = "Mo" + std::to_string(999 - i);
        texts[Save(kNewRecord, last)] = last;
        texts[Save(kNewRecord, first)] = first;
    }
    ExpectOrdered(texts);
}

TEST_F(Order, ASaveDeciphersNoMoreThanTheHalvingNeeds) {
    std::vector<notes::Memo> memos(500);
    for (std::size_t i = 0; i < memos.size(); ++i)
        memos[i].subject = "Ab" + std::to_string(i * 7919 % 500);
    ASSERT_EQ(notes::AddRecords(store.session, memos), 0);
    EXPECT_TRUE(FindDisorder(store.session, Section::Memo).empty());
    for (const char* subject : {"Ab250x", "Aa", "Ab9999"}) {
        const std::uint64_t before = store.session.cipher.deciphered;
        Save(kNewRecord, subject);
        EXPECT_LE(store.session.cipher.deciphered - before, 2 + std::ceil(std::log2(503))) << subject;
    }
    EXPECT_TRUE(FindDisorder(store.session, Section::Memo).empty());
}

TEST_F(Order, WhatWasTakenBackIsForgotten) {
    Save(kNewRecord, "Ab1");
    {
        const engine::Transaction transaction(*store.session.ProgramDb);
        for (const char* subject : {"Ab2", "Ab3", "Ab4"})
            Save(kNewRecord, subject);
    }
    Save(kNewRecord, "Ab0");
    EXPECT_TRUE(FindDisorder(store.session, Section::Memo).empty());
}

TEST_F(Order, ABucketIsReadOnceForManySavesRenamesAndDeletes) {
    const auto& buckets = store.session.bucketOrder.buckets;
    const auto remembered = [&] { return buckets.empty() ? 0 : buckets.begin()->second.size(); };
    const std::int32_t first = Save(kNewRecord, "Ab1");
    const std::int32_t second = Save(kNewRecord, "Ab2");
    EXPECT_EQ(DeleteRow(store.session, first), 0);
    Save(second, "Ab2");
    Save(second, "Ab3");
    ASSERT_EQ(remembered(), 1U);
    // A row that only the memory knows, to tell whether the memory is asked.
    auto& rows = store.session.bucketOrder.buckets.begin()->second;
    rows.push_back({1, rows.back().position + 1});
    Save(kNewRecord, "Ab4");
    EXPECT_EQ(remembered(), 3U);
    ASSERT_EQ(store.session.ProgramDb->Execute("DELETE * FROM tt WHERE fPK=" + std::to_string(second)), 0);
    Save(kNewRecord, "Ab6");
    EXPECT_EQ(remembered(), 2U) << "somebody else's write: read anew";
}

TEST_F(Order, AFullGapSpreadsTheBucketAndMarksTheRewrittenRows) {
    const std::int32_t first = Save(kNewRecord, "Ab1");
    const std::int32_t second = Save(kNewRecord, "Ab3");
    const auto place = [&](std::int32_t key, std::int32_t position) {
        auto table = store.session.ProgramDb->OpenRecordset("tt");
        ASSERT_TRUE(table);
        ASSERT_EQ((*table)->FindFirst("fPK=?", {key}), 0);
        (*table)->Edit();
        (*table)->SetField("fR1", position);
        ASSERT_EQ((*table)->Update(), 0);
    };
    const std::int32_t low = BucketBounds("Ab").low;
    place(first, low + 4);
    place(second, low + 5);
    const std::int32_t between = Save(kNewRecord, "Ab2");
    EXPECT_TRUE(FindDisorder(store.session, Section::Memo).empty());
    const auto mark = [&](std::int32_t key) {
        return NumberOf(store.Row("SELECT AE FROM tt WHERE fPK=" + std::to_string(key))->Field("AE"));
    };
    EXPECT_EQ(mark(first), 3);
    EXPECT_EQ(mark(between), 1);
}

TEST_F(Order, DisorderIsFound) {
    const std::int32_t key = Save(kNewRecord, "Ab1");
    Save(kNewRecord, "Ab2");
    auto table = store.session.ProgramDb->OpenRecordset("tt");
    ASSERT_TRUE(table);
    ASSERT_EQ((*table)->FindFirst("fPK=?", {key}), 0);
    (*table)->Edit();
    (*table)->SetField("fR1", BucketBounds("Ab").high);
    ASSERT_EQ((*table)->Update(), 0);
    EXPECT_EQ(FindDisorder(store.session, Section::Memo).size(), 1U);
}

}  // namespace
}  // namespace bmr::store
