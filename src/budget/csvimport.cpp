#include "budget/csvimport.h"

#include <algorithm>
#include <fstream>
#include <map>

#include "base/errors.h"
#include "base/languageus.h"
#include "base/unicode.h"
#include "base/utf8.h"
#include "budget/amount.h"
#include "budget/amountrows.h"
#include "calendar/months.h"
#include "crypto/conversion.h"
#include "engine/fileio.h"
#include "store/undostep.h"
#include "store/words.h"

namespace bmr::budget {
namespace {

using store::Session;

constexpr std::size_t kBeginning = std::size_t{256} << 10;
constexpr std::size_t kGuessRows = 200;
constexpr std::size_t kMostHeadRows = 40;
constexpr std::size_t kToldRefusals = 100;
constexpr std::int32_t kNear = 3;  ///< days in which an equal amount is taken for the same entry

/// What banks of several countries call their columns, in capitals without accents. The first of a field that
/// fits best is taken.
struct HeadWord {
    std::string_view word;
    CsvField field;
};
constexpr HeadWord kHeadWords[] = {
    {"DATE", CsvField::Date},
    {"DATUM", CsvField::Date},
    {"BUCHUNGSTAG", CsvField::Date},
    {"BUCHUNGSDATUM", CsvField::Date},
    {"BUCHUNG", CsvField::Date},
    {"BOOKING DATE", CsvField::Date},
    {"TRANSACTION DATE", CsvField::Date},
    {"POSTING DATE", CsvField::Date},
    {"DATE OPERATION", CsvField::Date},
    {"DATE DE L'OPERATION", CsvField::Date},
    {"FECHA", CsvField::Date},
    {"DATA", CsvField::Date},
    {"DATO", CsvField::Date},
    {"BOEKDATUM", CsvField::Date},
    {"DATA OPERACJI", CsvField::Date},
    {"ITEM", CsvField::Item},
    {"DESCRIPTION", CsvField::Item},
    {"VERWENDUNGSZWECK", CsvField::Item},
    {"BUCHUNGSTEXT", CsvField::Item},
    {"BESCHREIBUNG", CsvField::Item},
    {"BETREFF", CsvField::Item},
    {"LIBELLE", CsvField::Item},
    {"CONCEPTO", CsvField::Item},
    {"DESCRIPCION", CsvField::Item},
    {"DESCRIZIONE", CsvField::Item},
    {"CAUSALE", CsvField::Item},
    {"OMSCHRIJVING", CsvField::Item},
    {"MEDEDELINGEN", CsvField::Item},
    {"DETAILS", CsvField::Item},
    {"NARRATIVE", CsvField::Item},
    {"MEMO", CsvField::Item},
    {"TITLE", CsvField::Item},
    {"OPIS", CsvField::Item},
    {"TYTUL", CsvField::Item},
    {"TEXT", CsvField::Item},
    {"TEKST", CsvField::Item},
    {"AMOUNT", CsvField::Amount},
    {"BETRAG", CsvField::Amount},
    {"UMSATZ", CsvField::Amount},
    {"MONTANT", CsvField::Amount},
    {"IMPORTE", CsvField::Amount},
    {"IMPORTO", CsvField::Amount},
    {"BEDRAG", CsvField::Amount},
    {"KWOTA", CsvField::Amount},
    {"BELOP", CsvField::Amount},
    {"BELOB", CsvField::Amount},
    {"VALOR", CsvField::Amount},
    {"CREDIT", CsvField::Credit},
    {"HABEN", CsvField::Credit},
    {"GUTSCHRIFT", CsvField::Credit},
    {"CREDITO", CsvField::Credit},
    {"INGRESOS", CsvField::Credit},
    {"ABONO", CsvField::Credit},
    {"PAID IN", CsvField::Credit},
    {"MONEY IN", CsvField::Credit},
    {"DEPOSIT", CsvField::Credit},
    {"ENTRATE", CsvField::Credit},
    {"AVERE", CsvField::Credit},
    {"DEBIT", CsvField::Debit},
    {"SOLL", CsvField::Debit},
    {"BELASTUNG", CsvField::Debit},
    {"LASTSCHRIFT", CsvField::Debit},
    {"DEBITO", CsvField::Debit},
    {"GASTOS", CsvField::Debit},
    {"CARGO", CsvField::Debit},
    {"PAID OUT", CsvField::Debit},
    {"MONEY OUT", CsvField::Debit},
    {"WITHDRAWAL", CsvField::Debit},
    {"USCITE", CsvField::Debit},
    {"DARE", CsvField::Debit},
    {"BIZ-PARTNER", CsvField::Partner},
    {"PARTNER", CsvField::Partner},
    {"PAYEE", CsvField::Partner},
    {"MERCHANT", CsvField::Partner},
    {"COUNTERPARTY", CsvField::Partner},
    {"BEGUNSTIGTER", CsvField::Partner},
    {"AUFTRAGGEBER", CsvField::Partner},
    {"EMPFANGER", CsvField::Partner},
    {"ZAHLUNGSEMPFANGER", CsvField::Partner},
    {"BENEFICIAIRE", CsvField::Partner},
    {"BENEFICIARIO", CsvField::Partner},
    {"TEGENPARTIJ", CsvField::Partner},
    {"NAAM", CsvField::Partner},
    {"NAME", CsvField::Partner},
    {"NOTE", CsvField::Note},
    {"NOTES", CsvField::Note},
    {"NOTIZ", CsvField::Note},
    {"COMMENT", CsvField::Note},
    {"KOMMENTAR", CsvField::Note},
    {"CATEGORY", CsvField::Category},
    {"KATEGORIE", CsvField::Category},
    {"CATEGORIE", CsvField::Category},
    {"CATEGORIA", CsvField::Category},
    {"PAYMENT", CsvField::Payment},
    {"ZAHLUNGSART", CsvField::Payment},
    {"PRIVATE", CsvField::Private},
    {"PRIV", CsvField::Private},
};

constexpr std::array<std::string_view, 12> kMonths = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                      "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Capitals without accents, for comparing.
Bytes Plain(std::string_view utf8) {
    if (AsciiRun(utf8, 0) == utf8.size()) return UpperCase(TrimBlanks(utf8));  // nearly every cell
    return conversion::PlainUpper(Transliterate(Normalised(TrimBlanks(utf8))));
}

/// Narrow blanks and the minus sign, which have no letter on the page, as those that have.
WipedText WithPlainSigns(std::string_view text) {
    WipedText plain;
    plain.Reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::string_view three = text.substr(i, 3);
        const bool minus = three == "\xE2\x88\x92";
        const bool blank = three == "\xE2\x80\xAF" || three == "\xE2\x80\x89" || three == "\xE2\x80\x87";
        plain += minus ? std::string_view("-") : blank ? std::string_view(" ") : text.substr(i, 1);
        i += minus || blank ? 3 : 1;
    }
    return plain;
}

/// How well a head fits a word: whole, as its beginning, as a word in it; 0 not at all.
int Fits(std::string_view head, std::string_view word) {
    if (head == word) return 3;
    const std::size_t at = head.find(word);
    if (at == std::string_view::npos) return 0;
    const auto isLetter = [](char c) { return c >= 'A' && c <= 'Z'; };
    const std::size_t end = at + word.size();
    if ((at > 0 && isLetter(head[at - 1])) || (end < head.size() && isLetter(head[end]))) return 0;
    return at == 0 ? 2 : 1;
}

/// The fields of a row of heads; each is given to the column that fits it best.
std::vector<CsvField> FieldsOf(const CsvRow& heads) {
    std::vector<CsvField> fields(heads.size(), CsvField::None);
    std::array<int, kCsvFieldNames.size()> best{};
    std::vector<Bytes> plain;
    for (const WipedText& head : heads)
        plain.push_back(Plain(head));
    for (int wanted = 3; wanted > 0; --wanted)
        for (const HeadWord& word : kHeadWords)
            for (std::size_t i = 0; i < heads.size(); ++i) {
                int& taken = best[static_cast<std::size_t>(word.field)];
                if (taken != 0 || fields[i] != CsvField::None || Fits(plain[i], word.word) != wanted)
                    continue;
                fields[i] = word.field;
                taken = wanted;
            }
    return fields;
}

bool Has(const std::vector<CsvField>& fields, CsvField field) {
    return std::ranges::find(fields, field) != fields.end();
}

bool HasAmount(const std::vector<CsvField>& fields) {
    return Has(fields, CsvField::Amount) || Has(fields, CsvField::Credit) || Has(fields, CsvField::Debit);
}

/// The numbers of a date, and where one of them was a name of a month.
struct DateNumbers {
    std::array<int, 3> numbers{};
    std::array<std::size_t, 3> digits{};
    std::size_t count = 0;
    std::size_t month = 3;  ///< place of the name
};

DateNumbers NumbersIn(std::string_view text) {
    DateNumbers found;
    const Bytes plain = Plain(text);
    for (std::size_t i = 0; i < plain.size() && found.count < 3;) {
        if (IsDigit(plain[i])) {
            const std::size_t begin = i;
            int number = 0;
            for (; i < plain.size() && IsDigit(plain[i]) && i - begin < 8; ++i)
                number = number * 10 + (plain[i] - '0');
            found.digits[found.count] = i - begin;
            found.numbers[found.count++] = number;
            continue;
        }
        const auto* name = std::ranges::find(kMonths, std::string_view(plain).substr(i, 3));
        if (found.month == 3 && name != kMonths.end()) {
            found.month = found.count;
            found.digits[found.count] = 2;
            found.numbers[found.count++] = static_cast<int>(name - kMonths.begin()) + 1;
            while (i < plain.size() && plain[i] >= 'A' && plain[i] <= 'Z')
                ++i;
            continue;
        }
        if (plain[i] >= 'A' && plain[i] <= 'Z' && plain[i] != 'T') return {};  // "T" begins a time of day
        ++i;
    }
    return found;
}

std::optional<Day> DayFromNumbers(int year, int month, int day, bool shortYear) {
    if (shortYear) year += year < 30 ? 2000 : 1900;
    if (month < 1 || month > 12 || day < 1 || year < 1000 || year > 9999) return std::nullopt;
    const Day found = calendar::RolledDate(year, month, day);
    if (calendar::MonthOf(found) != month) return std::nullopt;
    return found;
}

char DecimalVote(std::string_view text) {
    const std::size_t last = text.find_last_of(".,");
    if (last == std::string_view::npos) return 0;
    std::size_t digits = 0;
    while (last + 1 + digits < text.size() && IsDigit(text[last + 1 + digits]))
        ++digits;
    const bool both = text.find(text[last] == '.' ? ',' : '.') != std::string_view::npos;
    // Three digits alone behind a sign may be a group.
    return both || (digits != 0 && digits != 3) ? text[last] : 0;
}

char GuessDecimal(const std::vector<CsvRow>& rows, const std::vector<CsvField>& fields, char separator) {
    std::array<int, 2> votes{};
    for (const CsvRow& row : rows)
        for (std::size_t i = 0; i < std::min(row.size(), fields.size()); ++i)
            if (fields[i] == CsvField::Amount || fields[i] == CsvField::Credit ||
                fields[i] == CsvField::Debit)
                if (const char vote = DecimalVote(row[i])) ++votes[vote == ',' ? 1 : 0];
    if (votes[0] == votes[1]) return separator == ';' ? ',' : '.';
    return votes[1] > votes[0] ? ',' : '.';
}

DateOrder GuessOrder(const std::vector<CsvRow>& rows, const std::vector<CsvField>& fields,
                     DateOrder localeOrder) {
    const auto column = static_cast<std::size_t>(std::ranges::find(fields, CsvField::Date) - fields.begin());
    std::array<std::size_t, 3> read{};
    for (const CsvRow& row : rows)
        for (const auto order : {DateOrder::DayMonthYear, DateOrder::MonthDayYear, DateOrder::YearMonthDay})
            if (column < row.size() && ParseCsvDate(row[column], order))
                ++read[static_cast<std::size_t>(order)];
    DateOrder best = localeOrder;
    for (const auto order : {DateOrder::DayMonthYear, DateOrder::MonthDayYear, DateOrder::YearMonthDay})
        if (read[static_cast<std::size_t>(order)] > read[static_cast<std::size_t>(best)]) best = order;
    return best;
}

bool IsDate(std::string_view text) {
    return ParseCsvDate(text, DateOrder::DayMonthYear) || ParseCsvDate(text, DateOrder::MonthDayYear);
}

/// The fields of a file without heads, by what its cells are.
std::vector<CsvField> FieldsByContent(const std::vector<CsvRow>& rows) {
    std::size_t width = 0;
    for (const CsvRow& row : rows)
        width = std::max(width, row.size());
    std::vector<CsvField> fields(width, CsvField::None);
    for (std::size_t column = 0; column < width; ++column) {
        std::size_t dates = 0, amounts = 0, words = 0, filled = 0;
        for (const CsvRow& row : rows) {
            if (column >= row.size() || row[column].empty()) continue;
            ++filled;
            if (IsDate(row[column]))
                ++dates;
            else if (DecimalVote(row[column]) && ParseCsvAmount(row[column], DecimalVote(row[column])))
                ++amounts;
            else if (!ParseCsvAmount(row[column], '.'))
                ++words;
        }
        const auto mostly = [filled](std::size_t count) { return filled > 0 && count * 5 >= filled * 4; };
        const auto give = [&](CsvField field) {
            if (!Has(fields, field)) fields[column] = field;
        };
        if (mostly(dates))
            give(CsvField::Date);
        else if (mostly(amounts))
            give(CsvField::Amount);
        else if (mostly(words))
            give(CsvField::Item);
    }
    return fields;
}

Result<std::ifstream> OpenFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return Error{MessageNumber::FileNotFound, Msg(134)};
    return in;
}

/// Heads and fields of a file's first rows.
void GuessMapping(std::vector<CsvRow>& rows, DateOrder localeOrder, CsvPreview& preview) {
    CsvMapping& mapping = preview.mapping;
    std::size_t best = 1;
    for (std::size_t i = 0; i < std::min(rows.size(), kMostHeadRows); ++i) {
        const auto fields = FieldsOf(rows[i]);
        const auto known = static_cast<std::size_t>(
            std::ranges::count_if(fields, [](CsvField field) { return field != CsvField::None; }));
        if (known <= best || !Has(fields, CsvField::Date) || !HasAmount(fields)) continue;
        best = known;
        mapping.columns = fields;
        mapping.headRows = i + 1;
        preview.heads = rows[i];
    }
    if (mapping.columns.empty()) {
        const auto entry =
            std::ranges::find_if(rows, [](const CsvRow& row) { return std::ranges::any_of(row, IsDate); });
        if (entry != rows.end()) mapping.headRows = static_cast<std::size_t>(entry - rows.begin());
        rows.erase(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(mapping.headRows));
        mapping.columns = FieldsByContent(rows);
    } else {
        rows.erase(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(mapping.headRows));
    }
    mapping.decimal = GuessDecimal(rows, mapping.columns, mapping.form.separator);
    mapping.dates = GuessOrder(rows, mapping.columns, localeOrder);
}

Result<CsvPreview> Preview(std::istream& in, CsvForm form, DateOrder localeOrder) {
    CsvPreview preview;
    preview.mapping.form = form;
    CsvReader reader(in, form);
    std::vector<CsvRow> rows;
    for (CsvRow row; rows.size() < kGuessRows && reader.Next(row);)
        rows.push_back(std::move(row));
    if (rows.empty()) return Error{MessageNumber::InputError, "The file holds no rows."};
    GuessMapping(rows, localeOrder, preview);
    if (rows.size() > kPreviewRows) rows.resize(kPreviewRows);
    preview.rows = std::move(rows);
    return preview;
}

/// The number of a payment type by its name or digits; 0 for another word.
std::int32_t PaymentOf(std::string_view text) {
    const Bytes plain = Plain(text);
    for (std::size_t i = 0; i < kPaymentTypes.size(); ++i)
        if (plain == Plain(kPaymentTypes[i])) return static_cast<std::int32_t>(i);
    const auto number = ParseAmount(text, {".", ""});
    const bool fits =
        number && *number >= Money{} && *number <= Money{2550000} && number->tenThousandths % 10000 == 0;
    return fits ? static_cast<std::int32_t>(number->tenThousandths / 10000) : 0;
}

bool IsYes(std::string_view text) {
    const Bytes plain = Plain(text);
    return plain == "X" || plain == "1" || plain == "TRUE" || plain == "YES" || plain == "P";
}

/// Fills entries from rows.
class EntryMaker {
  public:
    explicit EntryMaker(const CsvMapping& mapping) : mapping_(mapping) {}

    /// What is wrong with the row; empty when `entry` is filled.
    std::string Make(const CsvRow& row, CsvEntry& entry) {
        amount_ = {};
        hasAmount_ = hasDate_ = false;
        std::string why;
        for (std::size_t i = 0; i < std::min(row.size(), mapping_.columns.size()) && why.empty(); ++i)
            why = Take(mapping_.columns[i], row[i], entry);
        if (!why.empty()) return why;
        if (!hasDate_) return "no date";
        if (!hasAmount_) return "no amount";
        Transaction& transaction = entry.transaction;
        if (amount_ < Money{}) {
            transaction.cdbw |= kDebit;
            amount_ = Minus({}, amount_);
        }
        transaction.amount = amount_;
        transaction.hasNote = !transaction.note.empty();
        return {};
    }

  private:
    std::string TakeDate(std::string_view text, Transaction& transaction) {
        const auto day = ParseCsvDate(text, mapping_.dates);
        if (!day) return text.empty() ? "no date" : "the date is none";
        if (!IsInTable(*day)) return "the date is beyond what the file holds";
        transaction.date = *day;
        hasDate_ = true;
        return {};
    }
    std::string TakeAmount(CsvField field, std::string_view text) {
        if (text.empty()) return {};
        auto amount = ParseCsvAmount(text, mapping_.decimal);
        if (!amount) return "the amount is none";
        // A debit in a column of its own is told without a sign, or with one.
        const Money magnitude = *amount < Money{} ? Minus({}, *amount) : *amount;
        if (field == CsvField::Debit) amount = Minus({}, magnitude);
        if (amount_ != Money{} && *amount != Money{}) return "both a credit and a debit";
        if (*amount != Money{}) amount_ = *amount;
        hasAmount_ = true;
        return {};
    }
    static std::string TakeWords(std::string_view text, WipedText& words, bool lines) {
        words = text;
        if (!lines)
            std::ranges::replace_if(
                words, [](char c) { return c == '\r' || c == '\n'; }, ' ');
        return store::MeasureWords(words).TooLong() ? "a text is too long" : "";
    }
    std::string Take(CsvField field, std::string_view text, CsvEntry& entry) {
        Transaction& transaction = entry.transaction;
        switch (field) {
            case CsvField::None:
                break;
            case CsvField::Date:
                return TakeDate(text, transaction);
            case CsvField::Item:
                return TakeWords(text, transaction.description, false);
            case CsvField::Amount:
            case CsvField::Credit:
            case CsvField::Debit:
                return TakeAmount(field, text);
            case CsvField::Partner:
                return TakeWords(text, transaction.partner, false);
            case CsvField::Note:
                return TakeWords(text, transaction.note, true);
            case CsvField::Category:
                entry.categoryName = TrimBlanks(text);
                break;
            case CsvField::Payment:
                transaction.paymentType = PaymentOf(text);
                break;
            case CsvField::Private:
                transaction.isPrivate = IsYes(text);
                if (transaction.isPrivate) transaction.cdbw |= kPrivate;
                break;
        }
        return {};
    }

    const CsvMapping& mapping_;
    Money amount_{};
    bool hasAmount_ = false;
    bool hasDate_ = false;
};

/// What an entry adds to the balance.
Money Effect(std::int32_t cdbw, Money amount) {
    return (cdbw & kDebit) != 0 ? Minus({}, amount) : amount;
}

/// The list of categories, to which names are added as they come.
class CategoryMerger {
  public:
    CategoryMerger(Session& session, std::uint8_t section)
        : session_(session),
          section_(section),
          list_(store::FillCategories(session, section, false, false, false)),
          closed_(store::CategoriesUnread(session, section)) {}

    /// The number of a name; nothing where it finds no room. A name has the letters of the page.
    Result<std::optional<std::int32_t>> NumberOf(std::string_view name) {
        if (TrimBlanks(name).empty()) return std::optional(store::Category::Unfiled);
        const Bytes letters = Transliterate(Normalised(TrimBlanks(name)));
        if (CompareNoCase(letters, Msg(66)) == 0) return std::optional(store::Category::Unfiled);
        for (const auto& entry : list_)
            if (CompareNoCase(TrimBlanks(entry.text), letters) == 0) return std::optional(entry.number);
        if (closed_ || list_.size() >= store::kMostCategories) return std::optional<std::int32_t>();
        const auto number = store::NewCategoryNumber(session_, section_, list_);
        if (!number) return number.error();
        if (*number == 0) return std::optional<std::int32_t>();
        store::InsertCategory(list_, {letters, *number});
        ++added_;
        return std::optional(*number);
    }
    std::size_t added() const { return added_; }
    int Store() { return added_ == 0 ? 0 : store::StoreCategories(session_, list_, section_); }

  private:
    Session& session_;
    std::uint8_t section_;
    store::CategoryList list_;
    bool closed_;
    std::size_t added_ = 0;
};

}  // namespace

std::optional<CsvField> CsvFieldNamed(std::string_view name) {
    const auto* found = std::ranges::find(kCsvFieldNames, name);
    if (name.empty() || found == kCsvFieldNames.end()) return std::nullopt;
    return static_cast<CsvField>(found - kCsvFieldNames.begin());
}

Result<CsvPreview> PreviewCsv(const std::filesystem::path& path, DateOrder localeOrder) {
    auto in = OpenFile(path);
    if (!in) return in.error();
    WipedText beginning(std::string(kBeginning, '\0'));
    in->read(beginning.data(), static_cast<std::streamsize>(kBeginning));
    beginning.resize(static_cast<std::size_t>(in->gcount()));
    return PreviewCsv(path, GuessForm(beginning), localeOrder);
}

Result<CsvPreview> PreviewCsv(const std::filesystem::path& path, CsvForm form, DateOrder localeOrder) {
    auto in = OpenFile(path);
    if (!in) return in.error();
    return Preview(*in, form, localeOrder);
}

std::optional<Day> ParseCsvDate(std::string_view text, DateOrder order) {
    const DateNumbers found = NumbersIn(text);
    const auto& [a, b, c] = found.numbers;
    if (found.count > 0 && found.digits[0] == 8)
        return order == DateOrder::YearMonthDay || found.numbers[0] / 10000 > 1231
                   ? DayFromNumbers(a / 10000, a / 100 % 100, a % 100, false)
                   : DayFromNumbers(a % 10000, a / 10000 % 100, a / 1000000, false);
    if (found.count < 3) return std::nullopt;
    if (found.digits[0] > 2) return found.digits[0] == 4 ? DayFromNumbers(a, b, c, false) : std::nullopt;
    if (found.digits[2] != 2 && found.digits[2] != 4 && order != DateOrder::YearMonthDay) return std::nullopt;
    const bool shortYear = found.digits[2] <= 2;
    if (found.month == 0) return DayFromNumbers(c, a, b, shortYear);
    if (found.month == 1) return DayFromNumbers(c, b, a, shortYear);
    if (order == DateOrder::DayMonthYear) return DayFromNumbers(c, b, a, shortYear);
    if (order == DateOrder::MonthDayYear) return DayFromNumbers(c, a, b, shortYear);
    return found.digits[0] == 2 && found.digits[2] <= 2 ? DayFromNumbers(a, b, c, true) : std::nullopt;
}

std::optional<Money> ParseCsvAmount(std::string_view text, char decimal) {
    // What stands around the number tells a currency, or the side.
    const Bytes plain = Plain(WithPlainSigns(text));
    const std::size_t first = plain.find_first_of("0123456789");
    const std::size_t last = plain.find_last_of("0123456789");
    if (first == std::string::npos) return std::nullopt;
    std::string before, behind, number;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        const char c = plain[i];
        const unsigned code = ByteAt(plain, i);
        const bool inside = i >= first && i <= last;
        const bool group = c == ' ' || code == 0xA0 || c == '\'' || code == 0x92;
        const bool dash = c == '-' || code == 0x96;
        const bool sign = dash || c == '+' || c == '(' || c == ')';
        // ".50", while the dot of "kr." is none of the number's.
        const bool leading = i + 1 == first && c == decimal && before.empty();
        if (inside ? !group : sign || leading) number += dash ? '-' : c;
        if (!inside && c >= 'A' && c <= 'Z') (i < first ? before : behind) += c;
    }
    if (before.size() > 3 || behind.size() > 6) return std::nullopt;
    const bool debit = behind.ends_with("DR") || behind == "S";
    const bool comma = decimal == ',';
    auto amount = ParseAmount(number, {comma ? "," : ".", comma ? "." : ","});
    if (amount && debit && *amount > Money{}) amount = Minus({}, *amount);
    return amount;
}

Result<CsvReading> ReadCsv(const std::filesystem::path& path, const CsvMapping& mapping) {
    auto in = OpenFile(path);
    if (!in) return in.error();
    CsvReader reader(*in, mapping.form);
    CsvReading reading;
    EntryMaker maker(mapping);
    CsvRow row;
    for (std::size_t number = 0; reader.Next(row); ++number) {
        if (number < mapping.headRows) continue;
        if (reading.entries.size() == kMostCsvEntries) {
            reading.tooMany = true;
            break;
        }
        CsvEntry entry;
        entry.line = reader.Line();
        std::string why = maker.Make(row, entry);
        if (why.empty()) {
            reading.entries.push_back(std::move(entry));
        } else {
            ++reading.refusedCount;
            if (reading.refused.size() < kToldRefusals)
                reading.refused.push_back({reader.Line(), std::move(why)});
        }
    }
    reading.doubtful = reader.Doubtful();
    return reading;
}

int MarkDuplicates(Session& session, std::uint8_t section, std::vector<CsvEntry>& entries) {
    if (entries.empty()) return 0;
    const auto [first, last] = std::ranges::minmax_element(
        entries, {}, [](const CsvEntry& entry) { return entry.transaction.date; });
    std::map<Money, std::vector<Day>> there;
    const int error = ForEachAmount(
        session, section, {first->transaction.date.serial - kNear}, {last->transaction.date.serial + kNear},
        [&there](const AmountRow& row) { there[Effect(row.cdbw, row.amount)].push_back(row.date); });
    if (error != 0) return error;
    for (auto& [amount, days] : there)
        std::ranges::sort(days);
    for (CsvEntry& entry : entries) {
        const Transaction& transaction = entry.transaction;
        const auto equal = there.find(Effect(transaction.cdbw, transaction.amount));
        entry.duplicate = false;
        if (equal != there.end()) {
            const auto day = std::ranges::lower_bound(equal->second, Day{transaction.date.serial - kNear});
            entry.duplicate = day != equal->second.end() && day->serial <= transaction.date.serial + kNear;
        }
        entry.ticked = !entry.duplicate;
    }
    return 0;
}

Result<CsvReport> ImportCsv(Session& session, std::uint8_t section, std::vector<CsvEntry>& entries) {
    CsvReport report;
    CategoryMerger categories(session, section);
    std::vector<Transaction> chosen;
    for (CsvEntry& entry : entries) {
        if (!entry.ticked) {
            ++report.leftOut;
            continue;
        }
        const auto number = categories.NumberOf(entry.categoryName);
        if (!number) return number.error();
        if (!*number) ++report.unfiled;
        entry.transaction.category = number->value_or(store::Category::Unfiled);
        chosen.push_back(std::move(entry.transaction));
    }
    const auto failed = [&session](int error) { return Error{error, session.ProgramDb->LastError()}; };
    store::UndoStep step(session, section, {"import", "imported"});
    engine::Transaction all(*session.ProgramDb);
    if (all.error() != 0) return failed(all.error());
    if (const int error = categories.Store()) return failed(error);
    if (const int error = AddRecords(session, section, chosen)) return failed(error);
    if (const int error = all.Commit()) return failed(error);
    step.Keep();
    report.imported = chosen.size();
    report.categories = categories.added();
    return report;
}

Result<std::size_t> ExportCsv(Session& session, std::uint8_t section, store::Keys keys,
                              const std::filesystem::path& path, char decimal) {
    const auto categories = store::FillCategories(session, section, false, false, false);
    const char separator = decimal == ',' ? ';' : ',';
    std::filesystem::path part = path;
    part += ".part";
    WipedText line;
    std::size_t at = 0, written = 0;
    int failure = 0;
    bool headed = false;
    const auto next = [&]() -> std::string_view {
        if (!headed) {
            headed = true;
            line = CsvLine(CsvHeads(), separator);
            return line;
        }
        while (at < keys.size() && failure == 0) {
            const auto transaction = FetchRecord(session, section, keys[at++], &failure);
            if (!transaction || !transaction->readable) continue;
            ++written;
            line = CsvLine(CsvRowOf(*transaction, categories, decimal), separator);
            return line;
        }
        return {};
    };
    std::error_code ignored;
    std::filesystem::remove(part, ignored);
    int error = engine::WriteNewFile(part, next);
    if (error == 0 && failure == 0) error = engine::RenameOver(part, path);
    if (error == 0 && failure == 0) return written;
    std::filesystem::remove(part, ignored);
    if (failure != 0) return Error{failure, session.ProgramDb->LastError()};
    return Error{engine::NumberOfErrno(error), "The file cannot be written."};
}

CsvRow CsvHeads() {
    return {"Date", "Item", "Credit", "Debit", "Payment", "Private", "Biz-Partner", "Note", "Category"};
}

CsvRow CsvRowOf(const Transaction& transaction, const store::CategoryList& categories, char decimal) {
    const AmountFormat format{std::string(1, decimal), ""};
    // By what it counts as: a credit below 0 is a debit.
    const bool below = transaction.amount < Money{};
    const bool debit = transaction.IsDebit() != below;
    const std::string amount = PlainText(below ? Minus({}, transaction.amount) : transaction.amount, format);
    const bool unnamed = transaction.paymentType >= static_cast<std::int32_t>(kPaymentTypes.size());
    return {IsoDate(transaction.date),
            transaction.description,
            debit ? std::string() : amount,
            debit ? amount : std::string(),
            unnamed ? std::to_string(transaction.paymentType)
                    : std::string(transaction.paymentType == 0 ? "" : PaymentText(transaction.paymentType)),
            std::string((transaction.cdbw & kPrivate) != 0 ? "x" : ""),
            transaction.partner,
            transaction.note,
            transaction.category == 0 ? std::string()
                                      : ToUtf8(store::CategoryName(categories, transaction.category))};
}

}  // namespace bmr::budget
