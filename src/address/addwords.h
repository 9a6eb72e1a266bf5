#pragma once

#include "store/sections.h"

/// A record that is made from words, as on the command line.
namespace bmr::address {

/// The short options that `AddFromWords` understands.
inline constexpr store::FieldOption kAddOptions[] = {
    {"--first-name", "FirstName", "the first name"},
    {"--last-name", "LastName", "the last name"},
    {"--company", "CompanyName", "the firm"},
    {"--phone", "Com1", "a telephone number at work"},
    {"--mobile", "Com3", "a mobile number"},
    {"--email", "Com6", "a mail address"},
    {"--birthday", "Birthday", "YYYY-MM-DD"},
    {"--notes", "Notes", "notes of any length"},
    {"--file-as", "fileAs", "under which name it stands in the list"}};

/// Stores it under the name that is proposed for it, if it is given none. An error in words for what cannot
/// be set, and where there is no name to propose.
Result<std::int32_t> AddFromWords(store::Session& session, const store::NewRecord& given);

}  // namespace bmr::address
