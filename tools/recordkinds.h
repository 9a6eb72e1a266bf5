#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "store/sections.h"

namespace bmr::tools {

/// A class of records: what its payloads may hold.
struct RecordKind {
    std::uint8_t fSec = 0;
    std::uint8_t fSub = 0;  ///< 0: every fSub
    std::string_view title;
    std::span<const store::FieldRule> fields;
    const store::SectionFacts* section = nullptr;  ///< null for a row of the system
};

/// Nothing for a class that this version does not know.
std::optional<RecordKind> KindOf(std::int32_t fSec, std::int32_t fSub);

/// "Todo", or "class 20" for a class that this version does not know.
std::string TitleOf(std::int32_t fSec, std::int32_t fSub);

/// The section of a name of the command line ("todo"); throws Failure for another word.
const store::SectionFacts& SectionByName(std::string_view name);

/// Throw Failure where --kind, --category, --week or a period mean nothing to a section.
void RefuseKinds(const store::SectionFacts& section);
void RefuseCategories(const store::SectionFacts& section);
void RefuseWeeks(const store::SectionFacts& section);

/// The rule of a field; nothing when the class has no such field. Category lists and user labels follow a
/// pattern by their number instead of a table.
std::optional<store::FieldRule> RuleOf(const RecordKind& kind, std::uint8_t number);

}  // namespace bmr::tools
