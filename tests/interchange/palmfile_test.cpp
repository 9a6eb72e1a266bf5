#include "interchange/palmfile.h"

#include <gtest/gtest.h>

#include "interchange/palmcategories.h"
#include "interchange/palmmapping.h"
#include "interchange/palmrepeat.h"
#include "store/section.h"
#include "support/data.h"
#include "support/palm.h"
#include "support/store_file.h"

namespace bmr::interchange {
namespace {

using nlohmann::json;
using store::Section;

std::string FromBase64(const std::string& text) {
    static const std::string kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned bits = 0;
    int count = 0;
    for (const char c : text) {
        const auto value = kLetters.find(c);
        if (value == std::string::npos) break;
        bits = bits << 6 | static_cast<unsigned>(value);
        if ((count += 6) >= 8) bytes += ByteChar(bits >> (count -= 8));
    }
    return bytes;
}

json ToJson(const PalmAddressRecord& r) {
    json out{{"id", r.id},
             {"status", r.status},
             {"position", r.position},
             {"last", ToUtf8(r.last)},
             {"first", ToUtf8(r.first)},
             {"title", ToUtf8(r.title)},
             {"company", ToUtf8(r.company)},
             {"address", ToUtf8(r.address)},
             {"city", ToUtf8(r.city)},
             {"state", ToUtf8(r.state)},
             {"zip", ToUtf8(r.zip)},
             {"country", ToUtf8(r.country)},
             {"note", ToUtf8(r.note)},
             {"private", r.isPrivate},
             {"category", r.category},
             {"display", r.displayPhone}};
    for (std::size_t i = 0; i < 5; ++i) {
        out["label" + std::to_string(i)] = r.labels[i];
        out["phone" + std::to_string(i)] = ToUtf8(r.phones[i]);
    }
    for (std::size_t i = 0; i < 4; ++i)
        out["custom" + std::to_string(i + 1)] = ToUtf8(r.custom[i]);
    return out;
}

json ToJson(const PalmMemoRecord& r) {
    return {{"id", r.id},
            {"status", r.status},
            {"memo", ToUtf8(r.memo)},
            {"private", r.isPrivate},
            {"category", r.category}};
}

json ToJson(const PalmTodoRecord& r) {
    return {{"id", r.id},
            {"status", r.status},
            {"description", ToUtf8(r.description)},
            {"due", r.due},
            {"completed", r.completed},
            {"priority", r.priority},
            {"private", r.isPrivate},
            {"category", r.category},
            {"note", ToUtf8(r.note)}};
}

json ToJson(const PalmDatebookRecord& r) {
    json repeat{
        {"exceptions", r.repeat.exceptions}, {"classWord", r.repeat.classWord}, {"kind", r.repeat.kind}};
    if (r.repeat.classWord == 65535) {
        repeat["version"] = r.repeat.version;
        repeat["className"] = ToUtf8(r.repeat.className);
    }
    if (r.repeat.classWord != 0) {
        repeat["interval"] = r.repeat.interval;
        repeat["end"] = r.repeat.end;
        repeat["firstDay"] = r.repeat.firstDay;
        repeat["longs"] = r.repeat.longs;
        if (r.repeat.kind == 2) repeat["mask"] = r.repeat.mask;
    }
    return {{"id", r.id},
            {"status", r.status},
            {"position", r.position},
            {"start", r.start},
            {"end", r.end},
            {"text", ToUtf8(r.text)},
            {"duration", r.duration},
            {"note", ToUtf8(r.note)},
            {"untimed", r.untimed},
            {"private", r.isPrivate},
            {"category", r.category},
            {"alarm", r.alarm},
            {"alarmTime", r.alarmTime},
            {"alarmUnit", r.alarmUnit},
            {"repeat", repeat}};
}

json ToJson(const PalmHeader& h) {
    json categories = json::array();
    for (const PalmCategory& c : h.categories)
        categories.push_back(
            {{"index", c.index}, {"id", c.id}, {"long", ToUtf8(c.longName)}, {"short", ToUtf8(c.shortName)}});
    return {{"tag", h.tag},
            {"path", ToUtf8(h.path)},
            {"custom", ToUtf8(h.custom)},
            {"nextFree", h.nextFree},
            {"categoryCount", h.categoryCount},
            {"categories", categories},
            {"five", h.five},
            {"fields", h.fields},
            {"types", h.types},
            {"total", h.total},
            {"records", h.records}};
}

template <class Record>
json AllOf(const PalmHeader& header, PalmBytes& file) {
    json all = json::array();
    PalmRecords records(header, file);
    for (Record record; records.Next(record);)
        all.push_back(ToJson(record));
    return all;
}

json RecordsOf(std::uint8_t section, const PalmHeader& header, PalmBytes& file) {
    switch (section) {
        case Section::Address:
            return AllOf<PalmAddressRecord>(header, file);
        case Section::Calendar:
            return AllOf<PalmDatebookRecord>(header, file);
        case Section::Memo:
            return AllOf<PalmMemoRecord>(header, file);
        default:
            return AllOf<PalmTodoRecord>(header, file);
    }
}

TEST(PalmFile, MeetsTheKnownAnswers) {
    for (const auto& vector : test::LoadVectors("logic.json")["groups"]["PalmFile"]) {
        const std::string name = vector["file"];
        const std::string bytes = FromBase64(vector["bytes"]);
        const auto& told = vector["out"];
        PalmBytes file(bytes);
        const std::uint8_t section = vector["section"];
        const auto header = ReadPalmHeader(section, file);
        if (told.contains("error")) {
            ASSERT_FALSE(header) << name;
            EXPECT_EQ(-header.error().number, told["error"].get<int>()) << name;
            continue;
        }
        ASSERT_TRUE(header) << name;
        EXPECT_EQ(ToJson(*header), told["header"]) << name;
        EXPECT_EQ(RecordsOf(section, *header, file), told["records"]) << name;
        EXPECT_EQ(file.Left(), told["bytesLeft"].get<std::size_t>()) << name;
    }
}

TEST(PalmFile, AddressFieldsAndTimesMeetTheKnownAnswers) {
    const auto groups = test::LoadVectors("logic.json")["groups"];
    std::map<std::string, std::uint8_t> numbers{{"Title", 3},
                                                {"FirstName", 4},
                                                {"LastName", 6},
                                                {"CompanyName", 8},
                                                {"HomeAddressStreet", 16},
                                                {"HomeAddressCity", 17},
                                                {"HomeAddressState", 18},
                                                {"HomeAddressPostalCode", 19},
                                                {"HomeAddressCountry", 20},
                                                {"ComDisplay", 59},
                                                {"Notes", 60}};
    for (std::uint8_t i = 0; i < 5; ++i) {
        numbers["Com" + std::to_string(i + 1)] = static_cast<std::uint8_t>(41 + i);
        numbers["ComLabel" + std::to_string(i + 1)] = static_cast<std::uint8_t>(50 + i);
    }
    for (std::uint8_t i = 0; i < 4; ++i)
        numbers["User" + std::to_string(i + 1)] = static_cast<std::uint8_t>(35 + i);
    for (const auto& vector : groups["PalmAddressFields"]) {
        std::string bytes;
        for (const auto& file : groups["PalmFile"])
            if (file["file"] == vector["file"]) bytes = FromBase64(file["bytes"]);
        PalmBytes file(bytes);
        const auto header = ReadPalmHeader(Section::Address, file);
        ASSERT_TRUE(header);
        PalmRecords records(*header, file);
        PalmAddressRecord record;
        for (const auto& told : vector["out"]) {
            ASSERT_TRUE(records.Next(record)) << vector["file"];
            const PalmContact contact = MapPalmAddress(record).record;
            std::map<std::uint8_t, WipedText> wanted;
            for (const auto& [name, value] : told.items())
                if (name != "Private") wanted[numbers.at(name)] = value.get<std::string>();
            EXPECT_EQ(contact.texts, wanted) << vector["file"];
            EXPECT_EQ(contact.isPrivate, told.value("Private", false));
        }
        EXPECT_FALSE(records.Next(record));
    }
    for (const auto& vector : groups["PalmTime"])
        EXPECT_EQ(PalmMinutes(vector["seconds"]).count, vector["out"].get<std::int32_t>()) << vector["id"];
    for (const auto& vector : groups["PalmCategoryMerge"]) {
        std::vector<std::string> names;
        for (const auto& category : vector["file"])
            for (const int i : {1, 2})
                names.push_back(*ToBytes(category[i].get<std::string>()));
        std::vector<PalmCategory> found;
        for (std::size_t i = 0; i < names.size(); i += 2)
            found.push_back({0, 0, names[i], names[i + 1]});
        store::CategoryList own;
        for (const auto& entry : vector["own"])
            own.push_back({*ToBytes(entry[1].get<std::string>()), entry[0]});
        const auto merge = MergeCategories(own, found, {});
        EXPECT_EQ(json(merge.mapped), vector["out"]["mapped"]);
        json table = json::array();
        for (const auto& entry : merge.table)
            table.push_back({entry.number, ToUtf8(entry.text)});
        EXPECT_EQ(table, vector["out"]["table"]);
        for (const auto& pair : vector["map"])
            EXPECT_EQ(merge.MapPalmCategory(pair[0]), pair[1].get<std::int32_t>());
    }
}

TEST(MergeCategories, GivesNoNumberAwayTwiceAndEndsWhereTheListIsFull) {
    const std::vector<PalmCategory> found{
        {0, 0, "New", ""}, {0, 0, " ", ""}, {0, 0, "new", "Old"}, {0, 0, "New", ""}};
    const std::vector<std::int32_t> carried{1, 3};
    const auto merge = MergeCategories({{"Old", 2}, {"", 7}}, found, carried);
    EXPECT_EQ(merge.mapped, (std::vector<std::int32_t>{4, 0, 2, 4}));
    EXPECT_EQ(merge.added, 1U);
    EXPECT_FALSE(merge.full);
    store::CategoryList full;
    for (std::int32_t number = 1; number <= static_cast<std::int32_t>(store::kMostCategories); ++number)
        full.push_back({"c" + std::to_string(number), number});
    const auto none = MergeCategories(full, found, {});
    EXPECT_TRUE(none.full);
    EXPECT_EQ(none.mapped, (std::vector<std::int32_t>{0, 0, 0, 0}));
    EXPECT_EQ(none.table.size(), store::kMostCategories);
}

/// Reads all that a file gives; what matters is that it ends.
std::size_t Walk(std::uint8_t section, std::string_view bytes) {
    PalmBytes file(bytes);
    const auto header = ReadPalmHeader(section, file);
    if (!header) return 0;
    EXPECT_LE(header->categories.size() * 14, bytes.size() + 14);
    EXPECT_LE(header->types.size() * 2, bytes.size() + 2);
    return RecordsOf(section, *header, file).size();
}

TEST(PalmFile, CutOrFlippedAnywhereEndsWithWhatThereIs) {
    for (const auto& vector : test::LoadVectors("logic.json")["groups"]["PalmFile"]) {
        const std::string name = vector["file"];
        if (name.find('/') != std::string::npos) continue;
        const std::uint8_t section = vector["section"];
        const std::string bytes = FromBase64(vector["bytes"]);
        PalmBytes whole(bytes);
        ASSERT_TRUE(ReadPalmHeader(section, whole)) << name;
        const std::size_t head = bytes.size() - whole.Left();
        const std::size_t records = Walk(section, bytes);
        std::size_t before = 0;
        for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
            const std::size_t read = Walk(section, bytes.substr(0, cut));
            EXPECT_GE(read, before) << name << " cut at " << cut;
            before = read;
        }
        EXPECT_EQ(before, records);
        for (std::size_t bit = 0; bit < head * 8; ++bit) {
            std::string flipped = bytes;
            flipped[bit / 8] = ByteChar(ByteAt(flipped, bit / 8) ^ 1U << bit % 8);
            Walk(section, flipped);
        }
    }
}

TEST(PalmFile, NumbersWithoutEndAreBoundedByTheBytes) {
    constexpr std::uint32_t kMost = 0xFEFFFFFF;  // the highest that is not read as 0
    test::PalmWriter categories;
    categories.Byte(0).Byte(1).Chars("PM").CString("C:\\memopad.dat").CString("").Long(1).Long(kMost);
    categories.bytes += std::string(1 << 20, '\0');
    PalmBytes file(categories.bytes);
    const auto header = ReadPalmHeader(Section::Memo, file);
    ASSERT_TRUE(header);
    EXPECT_EQ(header->categoryCount, kMost);
    EXPECT_EQ(header->categories.size(), kMostPalmCategories);
    EXPECT_EQ(header->records, 0U);

    const auto count = [](unsigned fields, std::uint32_t total) {
        test::PalmWriter writer;
        writer.Header("MP10", "memopad.dat", {}, fields, 0);
        writer.bytes.resize(writer.bytes.size() - 4);
        writer.Long(total).Memo("one");
        PalmBytes bytes(writer.bytes);
        const auto read = ReadPalmHeader(Section::Memo, bytes);
        if (!read) return -read.error().number + 1000000;
        return static_cast<int>(AllOf<PalmMemoRecord>(*read, bytes).size());
    };
    EXPECT_EQ(count(5, kMost), 1);
    EXPECT_EQ(count(5, 2), 0);
    EXPECT_EQ(count(5, 3), 1);
    EXPECT_EQ(count(6, 3), 0) << "a half goes to the even number";
    EXPECT_EQ(count(0, kMost), 0);
    EXPECT_EQ(count(4, 4), 1000129);
    EXPECT_EQ(count(7, 7), 1000129);

    test::PalmWriter datebook;
    datebook.Header("DB10", "datebook.dat", {}, 15, 1).Appointment("x", 0, 0);
    datebook.Long(8).Word(65535).Long(86400).Long(2 * 86400);
    PalmBytes cut(datebook.bytes);
    const auto datebookHeader = ReadPalmHeader(Section::Calendar, cut);
    PalmRecords records(*datebookHeader, cut);
    PalmDatebookRecord record;
    ASSERT_TRUE(records.Next(record));
    EXPECT_EQ(record.repeat.exceptions, (std::vector<std::uint32_t>{86400, 2 * 86400}));
}

TEST(PalmFile, PositionsInMemosAndTasksAreSkippedAndNamesCompareWithoutCase) {
    test::PalmWriter memos;
    memos.Header("MP10", "MemoPad.DAT", {}, 6, 1).Int(7).Int(0).Int(99).Text("text").Bool(true).Int(2);
    PalmBytes file(memos.bytes);
    const auto header = ReadPalmHeader(Section::Memo, file);
    ASSERT_TRUE(header);
    EXPECT_EQ(
        AllOf<PalmMemoRecord>(*header, file),
        json::array({{{"id", 7}, {"status", 0}, {"memo", "text"}, {"private", true}, {"category", 2}}}));
    EXPECT_TRUE(IsPalmFileName(Section::Memo, "/d/MEMOPAD.dat"));
    EXPECT_FALSE(IsPalmFileName(Section::Memo, "/d/memopad.dat.old"));
    EXPECT_FALSE(IsPalmFileName(Section::Memo, "/memopad.dat/address.dat"));
}

}  // namespace
}  // namespace bmr::interchange
