#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "store/record_put.h"

namespace bmr::tools {

/// How a payload's value is shown.
enum class Shape : std::uint8_t {
    Plain,
    Hex,      ///< binary text
    Minutes,  ///< minutes of the calendar, as date and time
    Secret,   ///< never shown: it would open the database, or show what is hidden
};

struct FieldRule {
    std::uint8_t number = 0;
    store::FieldTag tag = store::FieldTag::Text;
    std::string_view name;
    Shape shape = Shape::Plain;
};

/// A class of records: what its payloads may hold.
struct RecordKind {
    std::uint8_t fSec = 0;
    /// 0: every fSub.
    std::uint8_t fSub = 0;
    /// How a person calls the section on the command line; for system rows what they are.
    std::string_view name;
    std::string_view title;
    std::span<const FieldRule> fields;
};

/// Nothing for a class that this version does not know.
const RecordKind* KindOf(std::int32_t fSec, std::int32_t fSub);

/// The section of a name of the command line ("todo"); nothing for another word.
const RecordKind* SectionByName(std::string_view name);

/// The rule of a field; nothing when the class has no such field. Category lists and user labels follow a
/// pattern by their number instead of a table.
std::optional<FieldRule> RuleOf(const RecordKind& kind, std::uint8_t number);

}  // namespace bmr::tools
