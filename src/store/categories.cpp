#include "store/categories.h"

#include <algorithm>
#include <optional>
#include <set>

#include "base/errors.h"
#include "base/languageus.h"
#include "store/record_get.h"
#include "store/section_store.h"
#include "store/undo.h"

namespace bmr::store {
namespace {

bool IsFixed(std::int32_t number) {
    return number == Category::All || number == Category::Unfiled || number == Category::Edit;
}

/// Blanks before the real names, so that they sort behind the fixed entries.
Bytes IndentFor(bool withAll, bool withUnfiled, bool withEdit) {
    if (withAll && (withUnfiled || withEdit)) return "  ";
    return withAll || withUnfiled || withEdit ? " " : "";
}

/// A list without entries has an empty payload. What is too short to hold even that deciphers to nothing as
/// well.
constexpr std::size_t kEmptyListCiphered = 18;

bool Decodes(std::string_view ciphered, std::string_view payload) {
    if (payload.empty()) return ciphered.size() == kEmptyListCiphered;
    PayloadReader reader(payload);
    for (RawField field; reader.Next(field);)
        continue;
    return reader.Clean();
}

/// The stored pairs; a name without its number, or the other way round, is left out. Nothing where there is a
/// list that does not decode, or that could not be looked for.
std::optional<CategoryList> ReadList(Session& session, std::uint8_t section) {
    CategoryList list;
    if (!session.ProgramDb) return std::nullopt;
    auto rows =
        session.ProgramDb->Select("SELECT fEtx FROM tt WHERE fSec=? And fSub=?", {kListClass, section});
    if (!rows) return std::nullopt;
    if (!rows->Next()) return rows->error() == 0 ? std::optional(list) : std::nullopt;
    const std::string_view payload = cry::DecipherField(session.cipher, rows->Bytes(0));
    if (!Decodes(rows->Bytes(0), payload)) return std::nullopt;
    std::vector<Value> fields;
    DecodeRecord(fields, payload, false, session.cipher);
    for (std::size_t i = 0; i + 1 < fields.size(); i += 2) {
        const auto* name = std::get_if<Bytes>(&fields[i]);
        const auto* number = std::get_if<std::int32_t>(&fields[i + 1]);
        if (name != nullptr && number != nullptr) list.push_back({*name, *number});
    }
    return list;
}

bool IsReal(std::int32_t number) {
    return number >= 1 && number <= Category::Highest;
}

/// Which of the numbers 1 to 9998 are taken.
class NumberSet {
  public:
    void Take(std::int32_t number) {
        if (IsReal(number)) taken_[static_cast<std::size_t>(number)] = true;
    }
    /// 0 when all are taken.
    std::int32_t LowestFree() const {
        for (std::int32_t number = 1; number <= Category::Highest; ++number)
            if (!taken_[static_cast<std::size_t>(number)]) return number;
        return 0;
    }

  private:
    std::vector<bool> taken_ = std::vector<bool>(Category::Highest + 1);
};

}  // namespace

CategoryList FillCategories(Session& session, std::uint8_t section, bool withAll, bool withUnfiled,
                            bool withEdit) {
    const Bytes indent = IndentFor(withAll, withUnfiled, withEdit);
    CategoryList list;
    for (const CategoryEntry& entry : ReadList(session, section).value_or(CategoryList()))
        InsertCategory(list, {indent + entry.text, entry.number});
    if (withAll) list.insert(list.begin(), {"All", Category::All});
    if (withUnfiled) list.push_back({Msg(66), Category::Unfiled});
    if (withEdit) list.push_back({"Edit categories", Category::Edit});
    return list;
}

bool CategoriesUnread(Session& session, std::uint8_t section) {
    return !ReadList(session, section);
}

std::size_t InsertCategory(CategoryList& list, CategoryEntry entry) {
    const auto place = std::find_if(list.begin(), list.end(), [&entry](const CategoryEntry& present) {
        if (present.number == Category::All) return false;
        return IsFixed(present.number) || CompareNoCase(present.text, entry.text) >= 0;
    });
    const auto index = place - list.begin();  // before the list moves to a larger home
    list.insert(place, std::move(entry));
    return static_cast<std::size_t>(index);
}

int StoreCategories(Session& session, const CategoryList& list, std::uint8_t section) {
    if (list.size() > kMostCategories) return MessageNumber::NoFreeNumber;
    Bytes payload;
    std::uint8_t number = 0;
    for (const CategoryEntry& entry : list) {
        const bool whole = AppendField(payload, number, entry.text, FieldTag::Text, session.ports.random) &&
                           AppendField(payload, static_cast<std::uint8_t>(number + 1), entry.number,
                                       FieldTag::Int16, session.ports.random);
        if (!whole) return engine::EngineNumber::Failed;
        number = static_cast<std::uint8_t>(number + 2);
    }
    return StoreSinglePayload(session, kListClass, section, payload);
}

std::int32_t RecordCategory(Session& session, std::int32_t fPK) {
    auto rows =
        session.ProgramDb->Select("SELECT fG1 FROM tt WHERE fPK=" + std::to_string(fPK) + kOwnerAccess);
    return rows && rows->Next() ? rows->Int(0) : 0;
}

std::string CategoryClause(Session& session, std::uint8_t section, std::int32_t category) {
    if (category == Category::All || category == Category::Edit) return "";
    if (category != Category::Unfiled) return " And fG1 = " + std::to_string(category);
    const auto list = ReadList(session, section);
    if (!list) return " And (fG1 Is Null Or fG1 = 0)";
    std::string others;
    for (const CategoryEntry& entry : *list)
        if (IsReal(entry.number))
            others += (others.empty() ? "" : " And ") + ("fG1 <> " + std::to_string(entry.number));
    return others.empty() ? "" : " And (fG1 Is Null Or (" + others + "))";
}

Result<std::vector<std::int32_t>> CarriedNumbers(Session& session, std::uint8_t section,
                                                 const CategoryList& list) {
    std::set<std::int32_t> numbers;
    for (const CategoryEntry& entry : list)
        if (IsReal(entry.number)) numbers.insert(entry.number);
    auto rows =
        session.ProgramDb->Select("SELECT fG1, Count(*) AS N FROM tt WHERE fSec=? GROUP BY fG1", {section});
    if (!rows) return rows.error();
    while (rows->Next())
        if (IsReal(rows->Int(0))) numbers.insert(rows->Int(0));
    if (rows->error() != 0) return Error{rows->error(), session.ProgramDb->LastError()};
    // What is taken back must not come back under another name.
    for (const std::int32_t number : NumbersInSteps(session, section))
        if (IsReal(number)) numbers.insert(number);
    return std::vector<std::int32_t>(numbers.begin(), numbers.end());
}

Result<std::int32_t> NewCategoryNumber(Session& session, std::uint8_t section, const CategoryList& list) {
    const auto carried = CarriedNumbers(session, section, list);
    if (!carried) return carried.error();
    NumberSet numbers;
    for (const std::int32_t number : *carried)
        numbers.Take(number);
    return numbers.LowestFree();
}

std::int32_t FreeCategoryNumber(const std::vector<std::int32_t>& numbers) {
    NumberSet taken;
    for (std::size_t i = 0; i + 1 < numbers.size(); ++i) {
        if (IsFixed(numbers[i])) return 0;
        taken.Take(numbers[i]);
    }
    return taken.LowestFree();
}

Bytes CategoryName(const CategoryList& list, std::int32_t number) {
    for (const CategoryEntry& entry : list)
        if (entry.number == number && !IsFixed(number)) return Bytes(TrimBlanks(entry.text));
    return Msg(66);
}

}  // namespace bmr::store
