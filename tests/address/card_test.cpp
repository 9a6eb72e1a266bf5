#include "address/card.h"

#include <gtest/gtest.h>

#include "address/fileas.h"
#include "support/data.h"

namespace bmr::address {
namespace {

/// Sets fields by their names, a date in the American form.
Record RecordOf(const nlohmann::json& fields) {
    Record record;
    for (const auto& [name, value] : fields.items()) {
        if (name == "Birthday") {
            EXPECT_EQ(value, "2/29/1960");
            record.birthday = {static_cast<double>(ParseIsoDate("1960-02-29")->serial)};
            continue;
        }
        for (const store::FieldSlot& slot : store::SlotsOf(record, kAddressFields))
            if (slot.rule.name == name) *std::get<std::string*>(slot.member) = value.get<std::string>();
    }
    return record;
}

LocaleFacts American() {
    return {.shortDate = "M/d/yyyy"};
}

TEST(Cards, AgreeWithKnownAnswers) {
    for (const auto& known : test::LoadVectors("logic.json")["groups"]["Card"]) {
        Record record = RecordOf(known["fields"]);
        record.fileAs = known["fileAs"].get<std::string>();
        store::UserLabels labels;
        for (std::size_t i = 0; i < labels.size(); ++i)
            labels[i] = known["userLabels"][i].get<std::string>();
        const Card card = BuildCard(record, labels, American());
        EXPECT_EQ(card.head, known["out"]["head"].get<std::string>()) << known["id"];
        EXPECT_EQ(BodyText(card), known["out"]["body"].get<std::string>()) << known["id"];
    }
}

TEST(Cards, MarkedTextHasLinksAndNoSignsOfItsOwn) {
    Record record;
    record.fileAs = "Müller & <b>Sons</b>";
    record.Com(0) = "+49 (0)30 12-34";
    record.ComLabel(0) = "1";
    record.Com(5) = "a\"b@example.org";
    record.ComLabel(5) = "5";
    record.Com(8) = "plain";
    record.ComLabel(8) = "4";
    record[FieldNumber::Notes] = "one\r\ntwo\tthree\nFOUR";
    const Card card = BuildCard(record, {}, {});
    EXPECT_EQ(
        MarkedHead(card, {WipedText("MULLER"), WipedText("on")}),
        "<span class=\"found\">Müller</span> &amp; &lt;b&gt;S<span class=\"found\">on</span>s&lt;/b&gt;");
    const WipedText body = MarkedBody(card, {WipedText("0301 2"), WipedText("four")});
    for (const char* part : {"<a href=\"com:41\">+49 (0)<span class=\"found\">30 12</span>-34</a>",
                             "<a href=\"com:46\">a&quot;b@example.org</a>", "&nbsp; plain</p>",
                             "one<br/>two&nbsp; &nbsp; three<br/><span class=\"found\">FOUR</span>"})
        EXPECT_NE(body.find(part), std::string::npos) << part << "\n" << body;
}

TEST(Cards, EnvelopesFollowTheCountry) {
    Record record;
    record[FieldNumber::Title] = "Dr.";
    record[FieldNumber::FirstName] = "Anna";
    record[FieldNumber::LastName] = "Muster";
    record[FieldNumber::CompanyName] = "Acme";
    record.fileAs = "Muster, Anna";
    const auto put = [&record](std::uint8_t base, std::array<const char*, kAddressParts> parts) {
        for (std::size_t i = 0; i < kAddressParts; ++i)
            record[base + i] = std::string_view(parts[i]);
    };
    EXPECT_EQ(FirstAddress(record), FieldNumber::HomeAddress);
    put(FieldNumber::OtherAddress, {"Herengracht 1", "Amsterdam", "", "1234 AB", "Nederland"});
    EXPECT_EQ(FirstAddress(record), FieldNumber::OtherAddress);
    put(FieldNumber::HomeAddress, {"Weg 1", "Graz", "", "8010", ""});
    put(FieldNumber::BusinessAddress, {"5 High St", "Leeds", "", "LS1 4AP", "UK"});
    EXPECT_EQ(EnvelopeText(record, FieldNumber::HomeAddress), "Dr. Anna Muster\r\nWeg 1\r\n8010 Graz\r\n");
    EXPECT_EQ(EnvelopeText(record, FieldNumber::BusinessAddress),
              "Acme\r\nDr. Anna Muster\r\n5 High St\r\nLeeds\r\nLS1 4AP\r\nUK\r\n");
    EXPECT_EQ(EnvelopeText(record, FieldNumber::OtherAddress),
              "Dr. Anna Muster\r\nHerengracht 1\r\n1234 AB Amsterdam\r\nNederland\r\n");
    put(FieldNumber::OtherAddress, {"1 Main St", "Springfield", "IL", "62701", ""});
    record[FieldNumber::FirstName] = record[FieldNumber::LastName] = WipedText();
    EXPECT_EQ(EnvelopeText(record, FieldNumber::OtherAddress),
              "Acme\r\n1 Main St\r\nSpringfield, IL 62701\r\n");
}

TEST(FileAs, OffersAgreeWithKnownAnswers) {
    for (const auto& known : test::LoadVectors("logic.json")["groups"]["FileAsOptions"]) {
        const auto text = [&known](const char* name) { return known[name].get<std::string>(); };
        const FileAsOffers offers = FileAsOptions(text("L"), text("F"), text("C"), text("H"));
        for (std::size_t i = 0; i < kOffers; ++i)
            EXPECT_EQ(offers.texts[i], known["out"]["slots"][std::to_string(10 + i)].get<std::string>())
                << known["id"];
        EXPECT_EQ(offers.standard, known["out"]["default"]) << known["id"];
    }
}

TEST(FileAs, RefreshedBoxesAgreeWithKnownAnswers) {
    for (const auto& known : test::LoadVectors("logic.json")["groups"]["RefreshFileAs"]) {
        const auto text = [&known](const char* name) { return known[name].get<std::string>(); };
        const auto entries = [](const nlohmann::json& list) {
            std::vector<FileAsBox::Entry> read;
            for (const auto& entry : list)
                read.push_back({entry[0].get<std::string>(), entry[1]});
            return read;
        };
        FileAsBox box{text("text"), entries(known["entries"])};
        RefreshFileAs(box, text("L"), text("F"), text("C"), text("H"));
        EXPECT_EQ(box.text, known["out"]["text"].get<std::string>()) << known["id"];
        EXPECT_EQ(box.entries, entries(known["out"]["entries"])) << known["id"];
    }
}

TEST(FileAs, WhatAPersonTypedStays) {
    FileAsBox box;
    EXPECT_FALSE(RefreshKeepingTyped(box, "Muster", "Anna", "", ""));
    EXPECT_EQ(box.text, "Muster, Anna");
    box.text = WipedText("Aunt Anna");
    EXPECT_TRUE(RefreshKeepingTyped(box, "Muster", "Anne", "", ""));
    EXPECT_TRUE(RefreshKeepingTyped(box, "Muster", "Annie", "", ""));
    EXPECT_EQ(box.text, "Aunt Anna");
    EXPECT_EQ(box.entries,
              (std::vector<FileAsBox::Entry>{{"Aunt Anna", 0}, {"Muster, Annie", 10}, {"Annie Muster", 11}}));
    // One that has become an offer is one.
    box.text = WipedText("Muster");
    EXPECT_FALSE(RefreshKeepingTyped(box, "Muster", "", "", ""));
    EXPECT_EQ(box.Chosen(), 10);
    // Even with nothing left to offer.
    box.text = WipedText("Somebody");
    EXPECT_TRUE(RefreshKeepingTyped(box, "", "", "", ""));
    EXPECT_EQ(box.text, "Somebody");
}

}  // namespace
}  // namespace bmr::address
