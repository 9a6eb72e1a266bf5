#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "rows.h"

namespace bmr::tools {

using Json = nlohmann::ordered_json;

/// The category names of the sections, read once each.
class CategoryNames {
  public:
    explicit CategoryNames(store::Session& session) : session_(session) {}
    /// In UTF-8, "Unfiled" where there is none.
    std::string Name(std::int32_t section, std::int32_t number);

  private:
    store::Session& session_;
    std::map<std::int32_t, std::map<std::int32_t, std::string>> names_;
};

/// The number of a category by its name, without regard to case; throws Failure for a name that the section
/// does not have.
std::int32_t CategoryByName(store::Session& session, std::uint8_t section, const std::string& name);

/// One record with the names of its fields: `fPK`, `section`, the payload's fields, the plain columns
/// decoded. A payload that does not decode gives "decodes": false in their place. What stands in an
/// enciphered column alone is told where the row's were deciphered.
Json RecordJson(store::Session& session, const Row& row, std::string_view payload, CategoryNames& names);

/// "" when the payload is one that this class of records can have; else what is wrong, in plain English.
std::string FaultOf(const Row& row, std::string_view payload);

/// What is worth knowing of a payload without a fault, in plain English.
std::vector<std::string> NotesOf(const Row& row, std::string_view payload);

/// One line of JSON in UTF-8 that no terminal takes for a command.
std::string DumpLine(const Json& json, int indent = -1);

}  // namespace bmr::tools
