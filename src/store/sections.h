#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/buckets.h"
#include "base/result.h"
#include "crypto/secret.h"
#include "store/fieldtable.h"
#include "store/namedorder.h"
#include "store/session.h"

/// What everyone who serves all sections knows of one: the main window, the preferences, searches, the checks
/// and the command line read it here, and nobody lists sections anywhere else.
namespace bmr::store {

struct SeveralOutcome;

/// Keys of rows that are worked on together.
using Keys = std::span<const std::int32_t>;

/// The columns of a row that are read in clear.
struct PlainColumns {
    std::int32_t fPK = 0;
    std::int32_t fSec = 0;
    std::int32_t fSub = 0;
    std::optional<std::int32_t> fG1;
    std::int32_t fR1 = 0;
    std::int32_t fR2 = 0;
    std::int32_t fR3 = 0;
    bool fF1 = false;
    bool fF2 = false;
    bool fF3 = false;
};

/// How rows stand in the order of their days: fR3 tells the day, fR1 the place in it.
struct DayOrder {
    /// Gives a row in AddNew or Edit, all of whose other columns stand, a place among the rows that its day
    /// has now; they may move. 0 or an error number.
    int (*place)(Session& session, engine::Recordset& row) = nullptr;
};

/// The day of a row of such a section, by fR3.
inline std::int32_t DayOfPoint(std::int32_t fR3) {
    return UnpackDate(fR3, DateKind::Start).serial;
}

/// Something that a record's plain columns tell. `cell` is what a table shows of it, under `header`; a value
/// without a header is for programs alone.
struct ColumnValue {
    std::string_view name;
    Value value;
    std::string_view header = {};
    std::string cell = {};
};

/// What a list is asked for.
struct ListRequest {
    std::int32_t group = -1;  ///< category or kind; -1 all
    bool all = false;         ///< what the section leaves out at first too: completed tasks
    /// Of a section whose lists span days: the first and the last, both within.
    std::optional<Day> from = {};
    std::optional<Day> to = {};
};

/// A record that is made from words, as on the command line.
struct NewRecord {
    std::int32_t group = 0;  ///< category or kind
    bool isPrivate = false;
    std::vector<std::pair<std::string, std::string>> fields;  ///< names and values, UTF-8
    LocaleFacts locale;                                       ///< on which day a week begins
    /// Asks for a value that may stand in no argument list, by its caption.
    std::function<Result<Secret>(const std::string& caption)> ask;
};

/// A short way of the command line to give a field.
struct FieldOption {
    const char* option;  ///< "--subject"
    std::string_view field;
    const char* help;
    bool flag = false;  ///< takes no value
};

/// What a group of records calls a field, where groups do.
struct FieldCaption {
    std::string_view text;
    bool masked = false;  ///< a secret, shown only when asked for
};

struct SectionFacts {
    std::uint8_t code = Section::None;
    std::string_view command;   ///< on the command line: "memo"
    std::string_view title;     ///< in reports: "Memo"
    std::string_view name;      ///< on its button and in menus: "Memo Pad"
    std::string_view one;       ///< what one of its records is called: "memo"
    std::string_view many;      ///< and several: "memos"
    std::string_view purpose;   ///< one sentence, for who has not opened it yet
    std::string_view icon;      ///< name of its icon
    int lastCategory = -1;      ///< its place in `Settings::LastCategory`; -1 none
    std::uint8_t privateField;  ///< number of the flag that hides a record
    std::span<const FieldRule> fields;
    bool grouped = true;  ///< its records have a category or a kind
    /// The flag that the section's own list hides by, where that is another: a search through all sections is
    /// stricter with the budgets than their ledger is.
    std::optional<std::uint8_t> ownFlag = std::nullopt;
    bool spans = false;  ///< its list can be asked for a span of days

    // What follows is left out by a section that is not in this version.

    const NamedOrder* order = nullptr;  ///< of a section in alphabetical order
    const DayOrder* days = nullptr;     ///< of one in the order of days
    /// The conditions of a list, beside the section.
    std::string (*clauses)(Session& session, const ListRequest& request) = nullptr;
    /// The keys of a list in the order of the section's window.
    Result<std::vector<std::int32_t>> (*list)(Session& session, const ListRequest& request) = nullptr;
    /// Stores a new record; its key, or what is wrong in plain English.
    Result<std::int32_t> (*add)(Session& session, const NewRecord& record) = nullptr;
    std::span<const FieldOption> options = {};
    std::vector<ColumnValue> (*columns)(const PlainColumns& row) = nullptr;
    /// What the deciphered fT1 tells, where that is no name.
    std::vector<ColumnValue> (*inText)(std::string_view fT1) = nullptr;

    // What can be done with several records at once.

    SeveralOutcome (*move)(Session& session, Keys keys, std::int32_t category) = nullptr;
    SeveralOutcome (*hide)(Session& session, Keys keys, bool isPrivate) = nullptr;
    SeveralOutcome (*remove)(Session& session, Keys keys) = nullptr;

    // Of a section whose records have kinds in place of categories.

    std::string_view (*kindName)(std::int32_t kind) = nullptr;  ///< empty for a number that is none
    FieldCaption (*caption)(std::int32_t kind, std::uint8_t field) = nullptr;

    /// The number of the flag that the section's own list hides by.
    std::uint8_t FlagField() const { return ownFlag.value_or(privateField); }
    /// The rule of the field that is a record's name; null where none is.
    const FieldRule* NameRule() const;
    const FieldRule* Rule(std::uint8_t number) const;
};

/// All sections by their codes. Which there are is told where the program is put together.
std::span<const SectionFacts* const> Sections();

/// The facts of a code; null for one that is no section's.
const SectionFacts* FactsOf(std::int32_t code);

/// Sets one field of a new record from words. "", or what is wrong with them in plain English: a name that is
/// none, a text that is too long, a line break in a field of one line, a date that is none. Line ends become
/// those of our editors.
std::string SetField(std::span<const FieldSlot> members, std::string_view name, std::string_view value,
                     bool manyLines = false);
/// Sets all that `given` names but what `apart` takes first (true: done; what is wrong: in the text).
std::string SetFields(std::span<const FieldSlot> members, const NewRecord& given,
                      const std::function<bool(std::string_view name, std::string_view value,
                                               std::string& problem)>& apart = nullptr);

}  // namespace bmr::store
