#include "address/section.h"

namespace bmr::address {
namespace {

using store::FieldRule;
using store::FieldTag;
using store::Kind;
using store::Section;

/// Never renumber: files in the field carry these. The labels of the nine numbers, and which of them is
/// shown, are digits; what the record is filed as stands in fT1 alone.
constexpr FieldRule kFields[] = {
    {0, FieldTag::Byte, "UserNumber", Kind::Stamp},
    {1, FieldTag::Boolean, "Private", Kind::Private},
    {2, FieldTag::Byte, "Priority"},
    {3, FieldTag::Text, "Title", Kind::Words},
    {4, FieldTag::Text, "FirstName", Kind::Words},
    {5, FieldTag::Text, "MiddleName", Kind::Words},
    {6, FieldTag::Text, "LastName", Kind::Words},
    {7, FieldTag::Text, "Suffix", Kind::Words},
    {8, FieldTag::Text, "CompanyName", Kind::Words},
    {9, FieldTag::Text, "Department", Kind::Words},
    {10, FieldTag::Text, "JobTitle", Kind::Words},
    {11, FieldTag::Text, "BusinessAddressStreet", Kind::Words},
    {12, FieldTag::Text, "BusinessAddressCity", Kind::Words},
    {13, FieldTag::Text, "BusinessAddressState", Kind::Words},
    {14, FieldTag::Text, "BusinessAddressPostalCode", Kind::Words},
    {15, FieldTag::Text, "BusinessAddressCountry", Kind::Words},
    {16, FieldTag::Text, "HomeAddressStreet", Kind::Words},
    {17, FieldTag::Text, "HomeAddressCity", Kind::Words},
    {18, FieldTag::Text, "HomeAddressState", Kind::Words},
    {19, FieldTag::Text, "HomeAddressPostalCode", Kind::Words},
    {20, FieldTag::Text, "HomeAddressCountry", Kind::Words},
    {21, FieldTag::Text, "OtherAddressStreet", Kind::Words},
    {22, FieldTag::Text, "OtherAddressCity", Kind::Words},
    {23, FieldTag::Text, "OtherAddressState", Kind::Words},
    {24, FieldTag::Text, "OtherAddressPostalCode", Kind::Words},
    {25, FieldTag::Text, "OtherAddressCountry", Kind::Words},
    {26, FieldTag::Text, "Account", Kind::Words},
    {27, FieldTag::Text, "Anniversary", Kind::Words},
    {28, FieldTag::Text, "BillingInformation", Kind::Words},
    {29, FieldTag::Date, "Birthday"},
    {30, FieldTag::Text, "Children", Kind::Words},
    {31, FieldTag::Text, "Gender", Kind::Words},
    {32, FieldTag::Text, "GovernmentIDNumber", Kind::Words},
    {33, FieldTag::Text, "Profession", Kind::Words},
    {34, FieldTag::Text, "Spouse", Kind::Words},
    {35, FieldTag::Text, "User1", Kind::Words},
    {36, FieldTag::Text, "User2", Kind::Words},
    {37, FieldTag::Text, "User3", Kind::Words},
    {38, FieldTag::Text, "User4", Kind::Words},
    {39, FieldTag::Text, "OrganizationalIDNumber", Kind::Words},
    {40, FieldTag::Text, "CustomerID", Kind::Words},
    {41, FieldTag::Text, "Com1", Kind::Words},
    {42, FieldTag::Text, "Com2", Kind::Words},
    {43, FieldTag::Text, "Com3", Kind::Words},
    {44, FieldTag::Text, "Com4", Kind::Words},
    {45, FieldTag::Text, "Com5", Kind::Words},
    {46, FieldTag::Text, "Com6", Kind::Words},
    {47, FieldTag::Text, "Com7", Kind::Words},
    {48, FieldTag::Text, "Com8", Kind::Words},
    {49, FieldTag::Text, "Com9", Kind::Words},
    {50, FieldTag::Text, "ComLabel1"},
    {51, FieldTag::Text, "ComLabel2"},
    {52, FieldTag::Text, "ComLabel3"},
    {53, FieldTag::Text, "ComLabel4"},
    {54, FieldTag::Text, "ComLabel5"},
    {55, FieldTag::Text, "ComLabel6"},
    {56, FieldTag::Text, "ComLabel7"},
    {57, FieldTag::Text, "ComLabel8"},
    {58, FieldTag::Text, "ComLabel9"},
    {59, FieldTag::Text, "ComDisplay"},
    {60, FieldTag::Memo, "Notes", Kind::Words},
    {61, FieldTag::Text, "FileAs", Kind::ColumnName},
};

constexpr store::SectionFacts kSections[] = {
    {.code = Section::Address,
     .command = "address",
     .title = "Address",
     .name = "Address Book",
     .one = "address",
     .many = "addresses",
     .purpose = "People and firms, their numbers and addresses.",
     .icon = "x-office-address-book",
     .lastCategory = 0,
     .privateField = 1,
     .fields = kFields},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::address
