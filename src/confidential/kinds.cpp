#include "confidential/kinds.h"

#include <algorithm>

#include "base/bytes.h"

namespace bmr::confidential {
namespace {

constexpr std::string_view kInternet = " INTERNET";
constexpr std::string_view kEconomy = " ECONOMY";
constexpr std::string_view kProducts = " PRODUCTS";
constexpr std::string_view kPersonal = " PERSONAL";
constexpr std::string_view kMiscellaneous = " MISCELLANEOUS";

// E-Commerce came last and kept the next free number, yet stands at the head of its group.
constexpr std::array<Kind, 16> kKinds = {{
    {1,
     kInternet,
     "Web Login",
     {"Name", "URL", "User ID", "Password", ""},
     1,
     "access to web sites, e-commerce, discussion groups"},
    {2,
     kInternet,
     "Email Accounts",
     {"Name", "Email Address", "User ID", "Password", "POP/SMTP Server"},
     1,
     ""},
    {3,
     kInternet,
     "ISP Accounts",
     {"Name", "URL", "Login / User ID", "Password", ""},
     1,
     "Login parameters to the Internet (Internet Service Providers)"},
    {4, kInternet, "FTP Servers", {"Name", "URL", "User ID", "Password", ""}, 1, ""},
    {5,
     kEconomy,
     "Bank Accounts",
     {"Bank", "Bank Address", "Bank Routing Number", "Account Holder", "Account Number "},
     3,
     ""},
    {6, kEconomy, "Online Banking", {"Bank", "URL", "User ID", "Password", ""}, 1, ""},
    {7, kEconomy, "Credit Cards", {"Name/Type", "Number", "Exp. Date", "Security Code", "PIN Code"}, 1, ""},
    {8,
     kEconomy,
     "ATM/PIN Cards",
     {"Card Name", "Card Number", "Bank", "ATM/PIN Code", ""},
     1,
     "Cash Cards, Bankomat etc."},
    {16, kProducts, "E-Commerce", {"Company", "URL", "User ID", "Password", "Customer Number"}, 1, ""},
    {9, kProducts, "Serial Numbers", {"Product Name", "Description", "Serial Number", "URL", ""}, 2, ""},
    {10,
     kProducts,
     "Software Keys",
     {"Product Name", "Serial Number", "Licensed To", "Software Key", ""},
     1,
     ""},
    {11, kProducts, "Mobile Phone SIM", {"Phone Provider", "Phone Number", "PIN", "PUK", ""}, 1, ""},
    {12,
     kPersonal,
     "Documents/Data",
     {"Person", "Document / Type of Data", "Number", "Place/Date Issued", ""},
     1,
     "Important Document Numbers (ID card, driver's license, etc.), important personal data"},
    {13, kPersonal, "Membership", {"Organization", "Person", "Membership Number", "URL", ""}, 1, ""},
    {14, kMiscellaneous, "Insurance", {"Description", "Company", "Police Number", "Contact", ""}, 1, ""},
    {15, kMiscellaneous, "Other", {"Name", "Description", "Other Info", "Password/PIN", ""}, 2, ""},
}};

}  // namespace

std::span<const Kind> ConfidentialKinds() {
    return kKinds;
}

const Kind* ConfidentialKindFields(std::int32_t number) {
    const auto* found = std::find_if(kKinds.begin(), kKinds.end(),
                                     [number](const Kind& kind) { return kind.number == number; });
    return found == kKinds.end() ? nullptr : found;
}

bool IsMaskedCaption(std::string_view caption) {
    const Bytes upper = UpperCase(caption);
    return upper.find("PASSWORD") != Bytes::npos || upper.find("PIN") != Bytes::npos;
}

bool IsUrlCaption(std::string_view caption) {
    return caption == "URL";
}

bool IsMailCaption(std::string_view caption) {
    return caption == "Email Address";
}

bool IsPhoneCaption(std::string_view caption) {
    return caption == "Phone Number";
}

}  // namespace bmr::confidential
