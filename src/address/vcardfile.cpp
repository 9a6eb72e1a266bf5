#include "address/vcardfile.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <unordered_map>

#include "address/addressbook.h"
#include "address/contact.h"
#include "address/exportfile.h"
#include "address/merge.h"
#include "address/payloadsource.h"
#include "address/telephone.h"
#include "address/vcard.h"
#include "base/unicode.h"
#include "crypto/conversion.h"
#include "store/categories.h"
#include "store/undostep.h"

namespace bmr::address {
namespace {

using store::Session;

/// So many records wait for their places to be worked out together: some ten MiB.
constexpr std::size_t kBatch = 10000;
/// More cards than any address book; what is told of each takes memory.
constexpr std::size_t kMostCards = 200000;
/// Numbers are the same when so many of their last digits are.
constexpr std::size_t kTellingDigits = 8;

/// Who has a name or a number: a record that is stored, or a card of the file.
struct Owner {
    std::int32_t key = store::kNewRecord;
    std::size_t card = 0;
};

/// Names and numbers by what remains of them when case, accents and their way of writing are taken away. Only
/// hashes are kept.
class Known {
  public:
    int Load(Session& session) {
        auto keys = ListRecords(session, store::Category::All);
        if (!keys) return keys.error().number;
        PayloadSource source(session, std::move(*keys));
        while (source.Next([this](const PayloadRow& row) {
            Add(DecodeAddressRecord(row.payload, row.name), {row.key, 0});
        })) {
        }
        return source.error();
    }

    void Add(const Record& record, Owner owner) {
        names_.emplace(NameHash(record), owner);
        for (std::size_t slot = 0; slot < kComSlots; ++slot)
            if (const auto hash = NumberHash(record.Com(slot))) numbers_.emplace(*hash, owner);
    }

    /// Who is the same person, or null; and what of a card is known.
    const Owner* Find(const Record& record, SeenCard& card) const {
        const auto name = names_.find(NameHash(record));
        card.sameName = name != names_.end();
        for (std::size_t slot = 0; slot < kComSlots; ++slot)
            if (const auto hash = NumberHash(record.Com(slot)); hash && numbers_.contains(*hash))
                card.sameNumber = true;
        return card.sameName ? &name->second : nullptr;
    }

  private:
    static std::size_t Hash(std::string_view text) { return std::hash<std::string_view>{}(text); }
    static std::size_t NameHash(const Record& record) {
        const WipedText letters = conversion::PlainUpper(Transliterate(Normalised(record.fileAs)));
        return Hash(TrimBlanks(letters));
    }
    static std::optional<std::size_t> NumberHash(std::string_view value) {
        if (value.empty()) return std::nullopt;
        if (!LooksLikeNumber(value)) return Hash(WipedText(FoldCase(value)));
        const WipedText digits = DigitsOf(value);
        if (digits.size() < 5) return std::nullopt;
        return Hash(std::string_view(digits).substr(digits.size() - std::min(digits.size(), kTellingDigits)));
    }

    std::unordered_map<std::size_t, Owner> names_;
    std::unordered_map<std::size_t, Owner> numbers_;
};

/// The names of the section's categories.
class Categories {
  public:
    explicit Categories(Session& session)
        : list_(store::FillCategories(session, kRecords.section, false, false, false)) {}

    /// Puts a record where its card says; names of categories that do not exist go to the notes.
    void Place(CardRecord& made, std::int32_t standard) const {
        Record& record = made.record;
        record.category = standard;
        bool placed = false;
        WipedText others;
        for (const WipedText& name : made.categories) {
            const auto wanted = ToBytes(name);
            const auto found = std::ranges::find_if(list_, [&wanted](const store::CategoryEntry& entry) {
                return wanted && CompareNoCase(TrimBlanks(entry.text), TrimBlanks(*wanted)) == 0;
            });
            if (found != list_.end() && !placed) {
                record.category = found->number;
                placed = true;
            } else {
                others += others.empty() ? "" : ", ";
                others += name;
            }
        }
        if (others.empty()) return;
        WipedText& notes = record[FieldNumber::Notes];
        if (!notes.empty()) notes += "\r\n";
        notes += Joined("Categories: ", others);
    }

    WipedText Name(std::int32_t number) const {
        for (const store::CategoryEntry& entry : list_)
            if (entry.number == number) return ToUtf8(TrimBlanks(entry.text));
        return {};
    }

  private:
    store::CategoryList list_;
};

Error Unreadable(const std::filesystem::path& path, const char* why) {
    return {engine::EngineNumber::Failed, path.string() + " " + why + "."};
}

/// Reads a file card by card; false from `each` ends it. How many there were.
Result<std::size_t> ReadCards(Session& session, const std::filesystem::path& path,
                              const std::function<Result<bool>(SeenCard& seen, CardRecord& made)>& each) {
    std::error_code ignored;
    if (std::filesystem::equivalent(path, session.DatabasePath, ignored))
        return Unreadable(path, "is the open database");
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, ignored)) return Unreadable(path, "could not be read");
    VCardReader reader([&file](std::span<char> room) {
        file.read(room.data(), static_cast<std::streamsize>(room.size()));
        return static_cast<std::size_t>(file.gcount());
    });
    std::size_t count = 0;
    VCard card;
    while (reader.Next(card)) {
        if (count == kMostCards) return Unreadable(path, "holds more than 200,000 vCards: divide it");
        CardRecord made = RecordOfCard(card);
        SeenCard seen;
        seen.number = ++count;
        seen.line = card.line;
        seen.name = made.record.fileAs;
        seen.contact = AddressContactText(made.record);
        seen.leftOut = made.leftOut;
        seen.problem = made.problem;
        const auto more = each(seen, made);
        if (!more) return more.error();
        if (!*more) return count;
    }
    if (file.bad()) return Unreadable(path, "could not be read to its end");
    if (count == 0) return Unreadable(path, "holds no vCard");
    return count;
}

std::string LeftOutText(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "left out: " : ", ") + name;
    return text;
}

/// One import: what waits to be added, and what came of each card.
class Importer {
  public:
    Importer(Session& session, const ImportPlan& plan)
        : session_(session), plan_(plan), categories_(session) {}

    int Load() { return known_.Load(session_); }

    /// An error number, or 0.
    int Take(SeenCard& seen, CardRecord& made) {
        ImportedCard came{seen.number, seen.name, CardFate::Skip, seen.problem};
        int error = 0;
        if (seen.problem.empty()) {
            const Owner* owner = known_.Find(made.record, seen);
            came.fate = plan_.fate ? plan_.fate(seen) : CardFate::Add;
            if (came.fate == CardFate::Merge && !owner) came.fate = CardFate::Add;
            came.reason = LeftOutText(seen.leftOut);
            if (came.fate == CardFate::Skip) came.reason = "it is there already";
            if (came.fate == CardFate::Add) error = Add(seen.number, made);
            if (came.fate == CardFate::Merge) error = Merge(*owner, made, came);
        }
        ++(came.fate == CardFate::Add     ? report.added
           : came.fate == CardFate::Merge ? report.merged
                                          : report.skipped);
        report.cards.push_back(std::move(came));
        return error;
    }

    int Flush() {
        const int error = waiting_.empty() ? 0 : AddRecords(session_, waiting_);
        for (std::size_t i = 0; error == 0 && i < waiting_.size(); ++i)
            keys_[numbers_[i]] = waiting_[i].key;
        waiting_.clear();
        numbers_.clear();
        return error;
    }

    ImportReport report;

  private:
    int Add(std::size_t number, CardRecord& made) {
        categories_.Place(made, plan_.category);
        known_.Add(made.record, {store::kNewRecord, number});
        waiting_.push_back(std::move(made.record));
        numbers_.push_back(number);
        return waiting_.size() < kBatch ? 0 : Flush();
    }

    int Merge(const Owner& owner, CardRecord& made, ImportedCard& came) {
        if (owner.card != 0)
            if (const int error = Flush()) return error;
        const std::int32_t key = owner.card != 0 ? keys_[owner.card] : owner.key;
        int error = 0;
        const auto stored = FetchRecord(session_, key, &error);
        if (error != 0) return error;
        if (!stored || !stored->readable) {
            came.fate = CardFate::Skip;
            came.reason = "the record that has its name cannot be read";
            return 0;
        }
        categories_.Place(made, stored->category);
        Record merged = MergeRecords(*stored, made.record, {}, plan_.locale, Losers::ToNotes);
        return WriteRecord(session_, merged);
    }

    Session& session_;
    const ImportPlan& plan_;
    Categories categories_;
    Known known_;
    std::vector<Record> waiting_;
    std::vector<std::size_t> numbers_;  ///< their cards
    std::unordered_map<std::size_t, std::int32_t> keys_;
};

}  // namespace

Result<Exported> ExportVCards(Session& session, std::int32_t category, const std::filesystem::path& path) {
    auto keys = ListRecords(session, category);
    if (!keys) return keys.error();
    const Categories categories(session);
    Exported exported;
    PayloadSource source(session, std::move(*keys));
    WipedText part;
    const auto next = [&]() -> Result<std::string_view> {
        part = WipedText();
        source.Next([&](const PayloadRow& row) {
            AppendVCard(part, DecodeAddressRecord(row.payload, row.name), categories.Name(row.category));
            ++exported.records;
        });
        if (source.error() != 0) return Error{source.error(), session.ProgramDb->LastError()};
        return std::string_view(part);
    };
    const auto written = ReplaceFile(session, path, next);
    if (!written) return written.error();
    return exported;
}

Result<std::size_t> PreviewVCards(Session& session, const std::filesystem::path& path,
                                  const std::function<bool(const SeenCard& card)>& each) {
    Known known;
    if (const int error = known.Load(session)) return Error{error, session.ProgramDb->LastError()};
    return ReadCards(session, path, [&](SeenCard& seen, CardRecord& made) -> Result<bool> {
        if (seen.problem.empty()) {
            known.Find(made.record, seen);
            known.Add(made.record, {store::kNewRecord, seen.number});
        }
        return each(seen);
    });
}

Result<ImportReport> ImportVCards(Session& session, const std::filesystem::path& path,
                                  const ImportPlan& plan) {
    store::UndoStep step(session, kRecords.section, {"import", "imported"});
    engine::Transaction transaction(*session.ProgramDb);
    const auto fail = [&session](int error) {
        session.bucketOrder.Clear();  // it may know of rows that are being rolled back
        return Error{error, "Nothing was imported: " + session.ProgramDb->LastError()};
    };
    if (transaction.error() != 0) return fail(transaction.error());
    Importer importer(session, plan);
    if (const int error = importer.Load()) return fail(error);
    const auto read = ReadCards(session, path, [&](SeenCard& seen, CardRecord& made) -> Result<bool> {
        if (const int error = importer.Take(seen, made)) return fail(error);
        return true;
    });
    if (!read) {
        session.bucketOrder.Clear();
        return read.error();
    }
    if (const int error = importer.Flush()) return fail(error);
    if (const int error = transaction.Commit()) return fail(error);
    step.Keep();
    return std::move(importer.report);
}

}  // namespace bmr::address
