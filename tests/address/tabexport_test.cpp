#include "address/tabexport.h"

#include <gtest/gtest.h>

#include <fstream>

#include "address/addressbook.h"
#include "store/record_put.h"
#include "support/data.h"
#include "support/store.h"

namespace bmr::address {
namespace {

Bytes ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(TabExport, LinesAgreeWithKnownAnswers) {
    const auto groups = test::LoadVectors("logic.json")["groups"];
    EXPECT_EQ(TabHeader(), groups["ExportHeader"][0]["out"].get<std::string>() + "\r\n");
    test::SeededRandom random;
    for (const auto& known : groups["ExportLine"]) {
        Bytes payload;
        for (std::size_t i = 0; i < known["fields"].size(); ++i) {
            const auto text = known["fields"][i].get<std::string>();
            const auto tag = kAddressFields[i].rule.tag;
            if (text.empty()) continue;
            const auto number = static_cast<std::uint8_t>(i);
            if (tag == store::FieldTag::Boolean)
                store::AppendField(payload, number, text == "True", tag, random);
            else if (tag == store::FieldTag::Byte)
                store::AppendField(payload, number, std::stoi(text), tag, random);
            else
                store::AppendText(payload, number, text, tag);
        }
        WipedText line;
        std::size_t transliterated = 0;
        AppendTabLine(line, payload, {}, transliterated);
        EXPECT_EQ(line, known["out"].get<std::string>() + "\r\n");
        EXPECT_EQ(transliterated, 0U);
    }
}

class TabFile : public testing::Test {
  protected:
    TabFile() { store.session.ShowPrivate = true; }
    std::int32_t Add(const Words& name, bool isPrivate = false, std::int32_t category = 0) {
        Record record = ClearRecord(category);
        record.fileAs = record[FieldNumber::LastName] = name;
        record.isPrivate = isPrivate;
        EXPECT_EQ(WriteRecord(store.session, record), 0);
        return record.key;
    }
    /// The last names, in the order of the file.
    std::vector<Bytes> Names(const Bytes& text) {
        std::vector<Bytes> names;
        for (std::size_t at = text.find("\r\n") + 2; at < text.size(); at = text.find("\r\n", at) + 2) {
            std::size_t begin = at;
            for (int tab = 1; tab < FieldNumber::LastName; ++tab)
                begin = text.find('\t', begin) + 1;
            names.push_back(text.substr(begin, text.find('\t', begin) - begin));
        }
        return names;
    }

    test::TempStore store;
    std::filesystem::path path = store.folder.Path() / kTabFileName;
};

TEST_F(TabFile, HoldsWhatTheListShowsInItsOrderAndItsLetters) {
    ASSERT_TRUE(ExportAddressTabDelimited(store.session, -1, path, {}));
    EXPECT_EQ(ReadFile(path), TabHeader());
    for (const char* name : {"Muz", "Mua", "Müb", "Łódź €", "Ab", ""})
        Add(name);
    Add("Secret", true);
    Add("Filed", false, 3);
    const auto all = ExportAddressTabDelimited(store.session, 9999, path, {});
    ASSERT_TRUE(all);
    EXPECT_EQ(all->records, 7U);
    EXPECT_EQ(all->transliterated, 1U) << "the name is told by its own field";
    EXPECT_EQ(Names(ReadFile(path)), (std::vector<Bytes>{"Ab", "Filed",
                                                         "L\xF3"
                                                         "dz \x80",
                                                         "Mua", "Muz",
                                                         "M\xFC"
                                                         "b",
                                                         "Secret"}));
    store.session.ShowPrivate = false;
    EXPECT_EQ(ExportAddressTabDelimited(store.session, -1, path, {})->records, 6U);
    EXPECT_EQ(ExportAddressTabDelimited(store.session, 3, path, {})->records, 1U);
    EXPECT_EQ(Names(ReadFile(path)), std::vector<Bytes>{"Filed"});
    EXPECT_EQ(ExportedText({1, 2}, "/x"),
              "1 address was written to /x. 2 texts have characters that such a "
              "file cannot hold, and stand there in plain letters.");
}

TEST_F(TabFile, WhatCannotBeWrittenLeavesWhatStood) {
    Add("Muster");
    std::ofstream(path) << "old";
    const auto files = [this] {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& each : std::filesystem::directory_iterator(store.folder.Path()))
            ++count;
        return count;
    };
    const auto before = files();
    std::filesystem::create_directory(store.folder.Path() / "taken");
    for (const auto& bad : {store.folder.Path() / "none" / "x.txt", store.folder.Path() / "taken",
                            store.session.DatabasePath}) {
        const auto written = ExportAddressTabDelimited(store.session, -1, bad, {});
        ASSERT_FALSE(written) << bad;
        EXPECT_NE(written.error().detail.find("could not be written"), std::string::npos);
    }
    EXPECT_EQ(files(), before + 1);
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_TRUE(ListRecords(store.session, -1)) << "the database is what it was";
}

}  // namespace
}  // namespace bmr::address
