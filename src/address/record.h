#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "base/serialdate.h"
#include "store/namedsection.h"

/// The address book without a screen.
namespace bmr::address {

/// The numbers of the fields, which are stored. Never give one another meaning.
struct FieldNumber {
    static constexpr std::uint8_t UserNumber = 0;
    static constexpr std::uint8_t Private = 1;
    static constexpr std::uint8_t Priority = 2;
    static constexpr std::uint8_t Title = 3;
    static constexpr std::uint8_t FirstName = 4;
    static constexpr std::uint8_t MiddleName = 5;
    static constexpr std::uint8_t LastName = 6;
    static constexpr std::uint8_t Suffix = 7;
    static constexpr std::uint8_t CompanyName = 8;
    static constexpr std::uint8_t Department = 9;
    static constexpr std::uint8_t JobTitle = 10;
    /// Of each address five: street, city, state, postal code, country.
    static constexpr std::uint8_t BusinessAddress = 11;
    static constexpr std::uint8_t HomeAddress = 16;
    static constexpr std::uint8_t OtherAddress = 21;
    static constexpr std::uint8_t Account = 26;
    static constexpr std::uint8_t Anniversary = 27;
    static constexpr std::uint8_t BillingInformation = 28;
    static constexpr std::uint8_t Birthday = 29;
    static constexpr std::uint8_t Children = 30;
    static constexpr std::uint8_t Gender = 31;
    static constexpr std::uint8_t GovernmentIDNumber = 32;
    static constexpr std::uint8_t Profession = 33;
    static constexpr std::uint8_t Spouse = 34;
    static constexpr std::uint8_t User1 = 35;  ///< the first of four
    static constexpr std::uint8_t OrganizationalIDNumber = 39;
    static constexpr std::uint8_t CustomerID = 40;
    static constexpr std::uint8_t Com1 = 41;       ///< the first of nine
    static constexpr std::uint8_t ComLabel1 = 50;  ///< the first of nine
    static constexpr std::uint8_t ComDisplay = 59;
    static constexpr std::uint8_t Notes = 60;
    static constexpr std::uint8_t FileAs = 61;
};

/// The parts of an address, counted from its first field.
struct AddressPart {
    static constexpr std::uint8_t Street = 0;
    static constexpr std::uint8_t City = 1;
    static constexpr std::uint8_t State = 2;
    static constexpr std::uint8_t PostalCode = 3;
    static constexpr std::uint8_t Country = 4;
};
inline constexpr std::uint8_t kAddressParts = 5;

/// The nine numbers, mail and web addresses of a record.
inline constexpr std::size_t kComSlots = 9;

/// A person or a firm.
struct Record {
    static constexpr std::size_t kFields = 61;

    std::int32_t key = store::kNewRecord;
    std::uint8_t userNumber = 0;
    bool isPrivate = false;
    std::optional<std::uint8_t> priority;  ///< only ever imported
    DateValue birthday;                    ///< a whole day; 0 for none
    /// By their numbers; those of the fields above stay empty. UTF-8, `ComLabel` and `ComDisplay` digits.
    std::array<WipedText, kFields> texts;
    WipedText fileAs;  ///< under which name it stands in the list
    std::int32_t category = 0;
    bool readable = true;  ///< false when the payload did not decode whole: a store would end the rest
    store::CarriedFields carried;

    WipedText& operator[](std::size_t number) { return texts[number]; }
    const WipedText& operator[](std::size_t number) const { return texts[number]; }
    WipedText& Com(std::size_t slot) { return texts[FieldNumber::Com1 + slot]; }
    const WipedText& Com(std::size_t slot) const { return texts[FieldNumber::Com1 + slot]; }
    WipedText& ComLabel(std::size_t slot) { return texts[FieldNumber::ComLabel1 + slot]; }
    const WipedText& ComLabel(std::size_t slot) const { return texts[FieldNumber::ComLabel1 + slot]; }
};

/// A field of words, and one that is bytes: digits.
template <std::uint8_t Number>
constexpr store::Field<Record> WordsField(std::string_view name) {
    return {{Number, store::FieldTag::Text, name, store::Kind::Words}, store::At<&Record::texts, Number>};
}
template <std::uint8_t Number>
constexpr store::Field<Record> DigitsField(std::string_view name) {
    return {{Number, store::FieldTag::Text, name}, store::At<&Record::texts, Number>};
}

/// The record in its order in the file. What it is filed as stands in fT1 alone.
inline constexpr std::array<store::Field<Record>, Record::kFields + 1> kAddressFields{{
    {{0, store::FieldTag::Byte, "UserNumber", store::Kind::Stamp}, store::At<&Record::userNumber>},
    {{1, store::FieldTag::Boolean, "Private", store::Kind::Private}, store::At<&Record::isPrivate>, true},
    {{2, store::FieldTag::Byte, "Priority"}, store::At<&Record::priority>},
    WordsField<3>("Title"),
    WordsField<4>("FirstName"),
    WordsField<5>("MiddleName"),
    WordsField<6>("LastName"),
    WordsField<7>("Suffix"),
    WordsField<8>("CompanyName"),
    WordsField<9>("Department"),
    WordsField<10>("JobTitle"),
    WordsField<11>("BusinessAddressStreet"),
    WordsField<12>("BusinessAddressCity"),
    WordsField<13>("BusinessAddressState"),
    WordsField<14>("BusinessAddressPostalCode"),
    WordsField<15>("BusinessAddressCountry"),
    WordsField<16>("HomeAddressStreet"),
    WordsField<17>("HomeAddressCity"),
    WordsField<18>("HomeAddressState"),
    WordsField<19>("HomeAddressPostalCode"),
    WordsField<20>("HomeAddressCountry"),
    WordsField<21>("OtherAddressStreet"),
    WordsField<22>("OtherAddressCity"),
    WordsField<23>("OtherAddressState"),
    WordsField<24>("OtherAddressPostalCode"),
    WordsField<25>("OtherAddressCountry"),
    WordsField<26>("Account"),
    WordsField<27>("Anniversary"),
    WordsField<28>("BillingInformation"),
    {{29, store::FieldTag::Date, "Birthday"}, store::At<&Record::birthday>},
    WordsField<30>("Children"),
    WordsField<31>("Gender"),
    WordsField<32>("GovernmentIDNumber"),
    WordsField<33>("Profession"),
    WordsField<34>("Spouse"),
    WordsField<35>("User1"),
    WordsField<36>("User2"),
    WordsField<37>("User3"),
    WordsField<38>("User4"),
    WordsField<39>("OrganizationalIDNumber"),
    WordsField<40>("CustomerID"),
    WordsField<41>("Com1"),
    WordsField<42>("Com2"),
    WordsField<43>("Com3"),
    WordsField<44>("Com4"),
    WordsField<45>("Com5"),
    WordsField<46>("Com6"),
    WordsField<47>("Com7"),
    WordsField<48>("Com8"),
    WordsField<49>("Com9"),
    DigitsField<50>("ComLabel1"),
    DigitsField<51>("ComLabel2"),
    DigitsField<52>("ComLabel3"),
    DigitsField<53>("ComLabel4"),
    DigitsField<54>("ComLabel5"),
    DigitsField<55>("ComLabel6"),
    DigitsField<56>("ComLabel7"),
    DigitsField<57>("ComLabel8"),
    DigitsField<58>("ComLabel9"),
    DigitsField<59>("ComDisplay"),
    {{60, store::FieldTag::Memo, "Notes", store::Kind::Words}, store::At<&Record::texts, 60>},
    {{61, store::FieldTag::Text, "fileAs", store::Kind::ColumnName}, store::At<&Record::fileAs>},
}};

/// How the records stand in the file: in the order of their names, under categories.
inline constexpr store::NamedSection<Record, kAddressFields.size()> kRecords{
    {.section = store::Section::Address, .nameField = FieldNumber::FileAs, .blanks = store::Blanks::LeaveOut},
    kAddressFields,
    &Record::category};

}  // namespace bmr::address
