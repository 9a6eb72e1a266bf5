#include "address/vcard.h"

#include <gtest/gtest.h>

#include "address/contact.h"
#include "support/random.h"

namespace bmr::address {
namespace {

/// Hands out a text in pieces of `step` bytes.
std::vector<VCard> Cards(std::string text, std::size_t step = 7) {
    std::size_t at = 0;
    VCardReader reader([&](std::span<char> room) {
        const std::size_t size = std::min({step, room.size(), text.size() - at});
        std::copy_n(text.begin() + static_cast<std::ptrdiff_t>(at), size, room.begin());
        at += size;
        return size;
    });
    std::vector<VCard> cards;
    for (VCard card; reader.Next(card);)
        cards.push_back(card);
    EXPECT_EQ(reader.Position(), text.size());
    return cards;
}

std::vector<CardRecord> Records(const std::string& text) {
    std::vector<CardRecord> records;
    for (const VCard& card : Cards(text))
        records.push_back(RecordOfCard(card));
    return records;
}

CardRecord OneRecord(const std::string& lines, const std::string& version = "3.0") {
    const auto records = Records("BEGIN:VCARD\r\nVERSION:" + version + "\r\n" + lines + "END:VCARD\r\n");
    EXPECT_EQ(records.size(), 1U) << lines;
    return records.empty() ? CardRecord() : records[0];
}

/// A field by its name in the file.
Words Field(const CardRecord& made, std::string_view name) {
    for (const store::FieldSlot& slot : store::SlotsOf(const_cast<Record&>(made.record), kAddressFields))
        if (slot.rule.name == name) return *std::get<std::string*>(slot.member);
    return "no field";
}

using Fields = std::vector<std::pair<std::string_view, std::string_view>>;
void Expect(const CardRecord& made, const Fields& fields) {
    EXPECT_EQ(made.problem, "");
    for (const auto& [name, value] : fields)
        EXPECT_EQ(Field(made, name), value) << name;
}

TEST(VCards, OfVersion21AsOldPhonesWriteThem) {
    Expect(OneRecord("N:M=C3=BCller;J=C3=B6rg;;Dr.;jun.\r\n"  // without its encoding these are signs
                     "FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:J=C3=B6rg M=\r\n"
                     "=C3=BCller\r\n"
                     "ORG:Acme;Sales;North\r\nTITLE:Carpenter\r\n"
                     "TEL;CELL;PREF:0664 1\r\nTEL;WORK;FAX:01 2\r\nTEL;HOME;VOICE:01 3\r\nTEL;PAGER:4\r\n"
                     "EMAIL;INTERNET;PREF:j@example.org\r\n"
                     "ADR;WORK;ENCODING=QUOTED-PRINTABLE:Box 7;;Weg 1=0D=0AHof 2;Graz;;8010;Austria\r\n"
                     "BDAY:19610517\r\nPHOTO;JPEG;ENCODING=BASE64:\r\n AAAA\r\n BBBB\r\n\r\n"
                     "NOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:Gr=FC=DFe; =\r\n"
                     "  two\r\nNICKNAME:Jo\r\n",
                     "2.1"),
           {{"fileAs", "Jörg Müller"},
            {"LastName", "M=C3=BCller"},
            {"Title", "Dr."},
            {"Suffix", "jun."},
            {"CompanyName", "Acme"},
            {"Department", "Sales, North"},
            {"JobTitle", "Carpenter"},
            {"Com1", "0664 1"},
            {"ComLabel1", "8"},
            {"ComLabel2", "3"},
            {"ComLabel3", "2"},
            {"ComLabel4", "7"},
            {"Com5", "j@example.org"},
            {"ComLabel5", "5"},
            {"ComDisplay", "0"},
            {"BusinessAddressStreet", "Box 7, Weg 1\r\nHof 2"},
            {"BusinessAddressCity", "Graz"},
            {"BusinessAddressPostalCode", "8010"},
            {"BusinessAddressCountry", "Austria"},
            {"Notes", "Grüße;   two\r\nNickname: Jo"}});
}

TEST(VCards, OfVersion3WithFoldsGroupsAndEscapes) {
    const CardRecord made = OneRecord(
        "N:Stevenson;John;Philip,Paul;Dr.;Jr.,M.D.,A.C.P.\nFN:John\n  Stevenson\n"
        "item1.TEL:+1 555 1\nitem1.X-ABLabel:_$!<HomeFax>!$_\nTEL;TYPE=WORK,VOICE,PREF:+1 555 2\n"
        "tel;type=\"cell,voice\":+1 555 3\nADR;TYPE=home:;;1 Main St\\, rear;Spring\\;field;IL;62701;USA\n"
        "ADR;TYPE=home:;;2nd;;;;\nADR;TYPE=work:;;w;;;;\nADR:;;3rd;;;;\nADR:;;4th;Town;;;\n"
        "URL:http\\://example.org/a,b;c\nNOTE:one\\ntwo\\\\n\\, three\nNOTE:more\n"
        "CATEGORIES:Family,Old\\, friends\nCLASS:PRIVATE\nBDAY;VALUE=date:1880-02-01\nREV:2001\n"
        "LOGO;VALUE=uri:http://example.org/x.gif\nX-SKYPE:john\nGEO:1;2\nno property at "
        "all\nitem2.X-ABDATE:x\n"
        "X-ABRELATEDNAMES;type=spouse:Ann\n");
    Expect(made, {{"fileAs", "John Stevenson"},
                  {"MiddleName", "Philip Paul"},
                  {"Suffix", "Jr. M.D. A.C.P."},
                  {"Com1", "+1 555 1"},
                  {"ComLabel1", "3"},
                  {"ComLabel2", "1"},
                  {"ComLabel3", "8"},
                  {"ComDisplay", "1"},
                  {"HomeAddressStreet", "1 Main St, rear"},
                  {"HomeAddressCity", "Spring;field"},
                  {"HomeAddressState", "IL"},
                  {"OtherAddressStreet", "2nd"},
                  {"BusinessAddressStreet", "w"},
                  {"Com4", "http://example.org/a,b;c"},
                  {"ComLabel4", "9"},
                  {"Spouse", "Ann"}});
    EXPECT_EQ(
        Field(made, "Notes"),
        "one\r\ntwo\\n, three\r\nmore\r\nBirthday: 1880-02-01\r\nX-SKYPE: john\r\nGeo: 1;2\r\nX-ABDATE: x\r\n"
        "Address: 3rd\r\nAddress: 4th, Town");
    EXPECT_TRUE(made.record.isPrivate);
    EXPECT_EQ(made.categories, (std::vector<WipedText>{"Family", "Old, friends"}));
    EXPECT_EQ(made.leftOut, (std::vector<std::string>{"LOGO", "1 line that is no property"}));
}

TEST(VCards, OfVersion4) {
    const CardRecord made = OneRecord(
        "FN;PREF=1:Zoë "
        "O'Dowd\nFN:Second\nN:O'Dowd;Zoë;;;\nTEL;VALUE=uri;PREF=2;TYPE=\"voice,home\":tel:+353-1;ext=5\n"
        "TEL;PREF=1:2\nEMAIL;TYPE=work:z@example.org\nGENDER:O;it's complicated\nBDAY:--0517\n"
        "ANNIVERSARY:20090808\nRELATED;TYPE=child;VALUE=text:Una\nRELATED;TYPE=child;VALUE=text:Fia\n"
        "RELATED;TYPE=friend:urn:x\nPHOTO:data:image/jpeg;base64,AAAA\nROLE:Vet\nLANG:ga\n",
        "4.0");
    Expect(made, {{"fileAs", "Zoë O'Dowd"},
                  {"Com1", "+353-1;ext=5"},
                  {"ComLabel1", "2"},
                  {"ComLabel2", "6"},
                  {"ComDisplay", "1"},
                  {"Gender", "it's complicated"},
                  {"Anniversary", "20090808"},
                  {"Children", "Una, Fia"},
                  {"Profession", "Vet"},
                  {"Notes", "Birthday: --0517\r\nRelated: urn:x\r\nLang: ga"}});
    EXPECT_EQ(made.leftOut, std::vector<std::string>{"PHOTO"});
}

/// One property each, as this or that program writes it.
TEST(VCards, PropertiesInTheirManyForms) {
    struct Case {
        const char* version;
        const char* line;
        const char* field;
        const char* value;
    };
    static constexpr Case kCases[] = {
        {"2.1", "TEL;WORK;VOICE:+43 1 2", "ComLabel1", "1"},
        {"2.1", "TEL;VOICE;CELL:+43 1 2", "ComLabel1", "8"},
        {"2.1", "TEL;X-Mobil:1", "Com1", "1"},
        {"2.1", "tel;pref;home:1", "ComDisplay", "0"},
        {"2.1", "N;ENCODING=8BIT:Muster;Anna", "FirstName", "Anna"},
        {"2.1", "N;CHARSET=WINDOWS-1252;ENCODING=QUOTED-PRINTABLE:=80uro;=8A", "LastName", "€uro"},
        {"2.1", "N;ENCODING=QUOTED-PRINTABLE;CHARSET=utf-8:=E5=8C=97;=E4=BA=AC", "FirstName", "京"},
        {"2.1", "N;QUOTED-PRINTABLE:A=3BB;C", "LastName", "A"},
        {"2.1", "N:Semi\\;colon;C", "LastName", "Semi;colon"},
        {"2.1", "NOTE:C:\\new\\table", "Notes", "C:\\new\\table"},
        {"2.1", "NOTE;ENCODING=QUOTED-PRINTABLE:a=0Ab=0D=0Ac", "Notes", "a\r\nb\r\nc"},
        {"2.1", "NOTE;ENCODING=QUOTED-PRINTABLE:100=", "Notes", "100="},
        {"2.1", "NOTE;ENCODING=QUOTED-PRINTABLE:=G1=4", "Notes", "=G1=4"},
        {"2.1", "URL;WORK:http://example.org:8080/a;b", "Com1", "http://example.org:8080/a;b"},
        {"2.1", "BDAY:1961-05-17T00:00:00Z", "Notes", ""},
        {"3.0", "TEL;TYPE=CELL;TYPE=pref:1", "ComDisplay", "0"},
        {"3.0", "TEL;TYPE=\"HOME,FAX\":1", "ComLabel1", "3"},
        {"3.0", "TEL;type=iPhone;type=CELL;type=VOICE;type=pref:1", "ComLabel1", "8"},
        {"3.0", "TEL;TYPE=MAIN:1", "ComLabel1", "6"},
        {"3.0", "TEL;TYPE=OTHER:1", "ComLabel1", "4"},
        {"3.0", "TEL:1", "ComLabel1", "6"},
        {"3.0", "EMAIL;type=INTERNET;type=HOME;type=pref:a@example.org", "ComLabel1", "5"},
        {"3.0", "EMAIL:mailto:a@example.org", "Com1", "a@example.org"},
        {"3.0", "TEL: ", "Com1", ""},
        {"3.0", "ORG:", "CompanyName", ""},
        {"3.0", "ORG:A\\;B\\, C;D;E", "CompanyName", "A;B, C"},
        {"3.0", "ADR;TYPE=dom,home,postal,parcel:;;Weg 1;Graz", "HomeAddressCity", "Graz"},
        {"3.0", "ADR;TYPE=INTL:;;Weg 1;Graz;;8010;AT", "HomeAddressPostalCode", "8010"},
        {"3.0", "ADR;TYPE=home:PO Box 1;;;Graz;;;", "HomeAddressStreet", "PO Box 1"},
        {"3.0", "ADR;TYPE=home:;;a\\nb;;;;", "HomeAddressStreet", "a\r\nb"},
        {"3.0", "ADR;TYPE=home:;;;;;;", "HomeAddressStreet", ""},
        {"3.0", "NOTE:tab\there\\Nand", "Notes", "tab\there\r\nand"},
        {"3.0", "NOTE:end\\", "Notes", "end\\"},
        {"3.0", "NICKNAME:Annie,Nan", "Notes", "Nickname: Annie,Nan"},
        {"3.0", "X-ABShowAs:COMPANY", "Notes", ""},
        {"3.0", "LABEL;TYPE=HOME:Weg 1\\n8010 Graz", "Notes", ""},
        {"3.0", "BDAY;VALUE=date-time:1961-05-17T10:22:00-08:00", "Notes", ""},
        {"3.0", "X-SPOUSE:Ann", "Spouse", "Ann"},
        {"3.0", "X-ANNIVERSARY:2009-08-08", "Anniversary", "2009-08-08"},
        {"3.0", "NOTE;CHARSET=UNKNOWN-7:caf\xE9", "Notes", "café"},
        {"4.0", "TEL;VALUE=uri;TYPE=\"cell,text\":tel:+1-555-1", "Com1", "+1-555-1"},
        {"4.0", "IMPP;PREF=1:xmpp:a@example.org", "Notes", "Chat: xmpp:a@example.org"},
        {"4.0", "ADR;LABEL=\"Weg 1: hinten; links\";TYPE=work:;;Weg 1;Graz;;;", "BusinessAddressCity",
         "Graz"},
        {"4.0", "GENDER:F", "Gender", "F"},
        {"4.0", "GENDER:;", "Gender", ""},
        {"4.0", "KIND:org", "Notes", ""},
        {"4.0", "MEMBER:urn:uuid:1", "Notes", "Member: urn:uuid:1"},
        {"4.0", "RELATED;TYPE=spouse:urn:uuid:1", "Spouse", "urn:uuid:1"},
        {"4.0", "X-BMR-PRIORITY:900", "Notes", ""},
        {"4.0", "X-BMR-USER2:two", "User2", "two"},
    };
    for (const Case& each : kCases) {
        const CardRecord made = OneRecord("FN:Somebody\r\n" + std::string(each.line) + "\r\n", each.version);
        EXPECT_EQ(made.problem, "") << each.line;
        EXPECT_EQ(Field(made, each.field), each.value) << each.line;
    }
    for (const char* day : {"1961-05-17", "19610517", "1961-05-17T00:00:00Z", "19610517T102200"})
        EXPECT_EQ(OneRecord("FN:x\nBDAY:" + std::string(day) + "\n").record.birthday.serial, 22418) << day;
}

TEST(VCards, GetAName) {
    for (const auto& [lines, name] : Fields{{"N:Muster;Anna\n", "Muster, Anna"},
                                            {"FN: \nN:Muster\n", "Muster"},
                                            {"ORG:Acme\n", "Acme"},
                                            {"FN:Two\\nlines\n", "Two lines"}})
        EXPECT_EQ(Field(OneRecord(std::string(lines)), "fileAs"), name);
    EXPECT_EQ(OneRecord("TEL:1\n").problem, "it has no name");
}

TEST(VCards, MoreNumbersThanSlotsGoToTheNotes) {
    std::string lines = "FN:Muster\n";
    for (int i = 1; i <= 11; ++i)
        lines += "TEL;TYPE=cell:" + std::to_string(i) + "\n";
    const CardRecord made = OneRecord(lines + "EMAIL:a@b\nNOTE:x\n");
    Expect(made, {{"Com9", "9"}, {"Notes", "x\r\nPhone: 10\r\nPhone: 11\r\nEmail: a@b"}});
}

TEST(VCards, DamagedOnesCostNoOthers) {
    const auto problems = [](const std::string& text) {
        std::vector<std::string> told;
        for (const CardRecord& made : Records(text))
            told.push_back(made.problem.empty() ? "+" + Field(made, "fileAs") : made.problem);
        return told;
    };
    using Told = std::vector<std::string>;
    const std::string good = "BEGIN:VCARD\nFN:Good\nEND:VCARD\n";
    EXPECT_EQ(problems(""), Told{});
    EXPECT_EQ(problems(std::string("\x00\xFF\x01\r\n:\n;;", 9)), Told{});
    EXPECT_EQ(problems("BEGIN:VCARD\nFN:A\n" + good), (Told{"it has no end", "+Good"}));
    EXPECT_EQ(problems(good + "BEGIN:VCARD\nFN:B"), (Told{"+Good", "the file ends within it"}));
    EXPECT_EQ(problems("\xEF\xBB\xBF" + good + "rubbish\nEND:VCARD\n" + good), (Told{"+Good", "+Good"}));
    EXPECT_EQ(problems("BEGIN:VCARD\rFN:Mac\rEND:VCARD\r"), Told{"+Mac"});
    EXPECT_EQ(problems("BEGIN:VCARD\nAGENT:\nBEGIN:VCARD\nFN:Inner\nEND:VCARD\nFN:Outer\nEND:VCARD\n" + good),
              (Told{"+Outer", "+Good"}));
    const std::string big(300000, 'x');
    EXPECT_EQ(problems("BEGIN:VCARD\nFN:A\nNOTE:" + big + "\nEND:VCARD\n" + good),
              (Told{"NOTE is longer than any record can hold", "+Good"}));
    EXPECT_EQ(problems("BEGIN:VCARD\nFN:A\nNOTE:" + big.substr(0, 65001) + "\nEND:VCARD\n"),
              Told{"Notes is longer than any record can hold"});
    // A picture of ten thousand lines is one that is left out, and of ten thousand properties nobody has use.
    std::string photo = "BEGIN:VCARD\nFN:Photo\nPHOTO;ENCODING=b:\n";
    std::string many = "BEGIN:VCARD\nFN:Many\n";
    for (int i = 0; i < 10000; ++i) {
        photo += std::string(i < 5000 ? " " : "") + std::string(74, 'A') + "\n";
        many += "NOTE:x\n";
    }
    EXPECT_EQ(problems(photo + "END:VCARD\n" + many + "END:VCARD\n" + good),
              (Told{"+Photo", "it is larger than any record", "+Good"}));
    // Any bytes at all.
    test::SeededRandom random;
    for (int round = 0; round < 300; ++round) {
        std::string text =
            good + "BEGIN:VCARD\nVERSION:2.1\nN;ENCODING=QUOTED-PRINTABLE:=C3=;\\\nADR:;;\n" + good;
        for (int i = DrawBelow(random, 6); i >= 0; --i)
            text[static_cast<std::size_t>(DrawBelow(random, static_cast<std::int32_t>(text.size())))] =
                static_cast<char>(DrawBelow(random, 256));
        for (const CardRecord& made : Records(text))
            EXPECT_TRUE(!made.problem.empty() || !made.record.fileAs.empty());
    }
}

TEST(VCards, ARecordComesBackAsItWas) {
    test::SeededRandom random;
    static constexpr std::array<std::string_view, 8> kPieces = {"plain",    "a;b,c\\d", "\r\n", " lead",
                                                                "Ł 北京 🎉", "=C3\t:",   "\\n",  "\"^n"};
    for (int round = 0; round < 200; ++round) {
        Record record;
        for (const store::FieldSlot& slot : store::SlotsOf(record, kAddressFields)) {
            if (!slot.rule.IsWords() || DrawBelow(random, 3) == 0) continue;
            auto& text = *std::get<std::string*>(slot.member);
            for (int i = DrawBelow(random, 4); i >= 0; --i)
                text += kPieces[static_cast<std::size_t>(DrawBelow(random, 8))];
            if (slot.rule.number == FieldNumber::Notes) text += std::string(200, 'x') + "é";
        }
        std::erase_if(record.fileAs, [](char c) { return c == '\r' || c == '\n'; });
        record.fileAs += "x";
        for (std::size_t slot = 0; slot < kComSlots; ++slot) {
            if (record.Com(slot).find_first_not_of(" \r\n\t") == std::string::npos)
                record.Com(slot) = WipedText();
            record.ComLabel(slot) = LabelOf(static_cast<ComKind>(DrawBelow(random, 10)));
        }
        record[FieldNumber::ComDisplay] = std::to_string(DrawBelow(random, 9));
        record.isPrivate = DrawBelow(random, 2) == 0;
        if (DrawBelow(random, 2) == 0) record.priority = static_cast<std::uint8_t>(DrawBelow(random, 256));
        if (DrawBelow(random, 2) == 0) record.birthday = {20000.0 + DrawBelow(random, 20000)};
        MakeContactGood(record);
        WipedText text;
        AppendVCard(text, record, "Old; friends");
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find("\r\n", at);
            ASSERT_LE(end - at, 75U);
            at = end + 2;
        }
        const auto back = Records(text);
        ASSERT_EQ(back.size(), 1U) << text;
        EXPECT_EQ(back[0].problem, "");
        EXPECT_EQ(back[0].record.texts, record.texts) << text;
        EXPECT_EQ(back[0].record.fileAs, record.fileAs);
        EXPECT_EQ(back[0].record.birthday, record.birthday);
        EXPECT_EQ(back[0].record.priority, record.priority);
        EXPECT_EQ(back[0].record.isPrivate, record.isPrivate);
        EXPECT_EQ(back[0].categories, std::vector<WipedText>{"Old; friends"});
        EXPECT_EQ(back[0].leftOut, std::vector<std::string>());
    }
}

}  // namespace
}  // namespace bmr::address
