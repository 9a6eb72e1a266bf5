#include "budget/csv.h"

#include <algorithm>
#include <array>
#include <map>
#include <sstream>

#include "base/bytes.h"
#include "base/unicode.h"
#include "base/utf8.h"

namespace bmr::budget {
namespace {

constexpr std::size_t kPiece = std::size_t{256} << 10;
constexpr std::array<char, 4> kSeparators = {';', ',', '\t', '|'};
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleMark = "\xFF\xFE";
constexpr std::string_view kBigMark = "\xFE\xFF";

void PutCharacter(std::string& out, char32_t c) {
    const auto put = [&out](unsigned byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

/// Where a character begins that the end of the bytes may have cut off.
std::size_t WholeLength(std::string_view bytes) {
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, bytes.size()); ++back) {
        const unsigned byte = Octet(bytes, bytes.size() - back);
        if ((byte & 0xC0U) == 0x80) continue;
        const std::size_t size = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        return size > back ? bytes.size() - back : bytes.size();
    }
    return bytes.size();
}

CsvEncoding GuessEncoding(std::string_view bytes) {
    if (bytes.starts_with(kLittleMark)) return CsvEncoding::Utf16Little;
    if (bytes.starts_with(kBigMark)) return CsvEncoding::Utf16Big;
    if (bytes.starts_with(kUtf8Mark)) return CsvEncoding::Utf8;
    // Of text in Latin letters every second byte is 0.
    std::array<std::size_t, 2> nuls{};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\0') ++nuls[i % 2];
    const std::size_t quarter = bytes.size() / 4;
    if (bytes.size() >= 4 && nuls[1] > quarter && nuls[0] < quarter / 4) return CsvEncoding::Utf16Little;
    if (bytes.size() >= 4 && nuls[0] > quarter && nuls[1] < quarter / 4) return CsvEncoding::Utf16Big;
    return IsWellFormed(bytes.substr(0, WholeLength(bytes))) ? CsvEncoding::Utf8 : CsvEncoding::Windows1252;
}

/// How well a separator divides the first rows: how many have the commonest number of columns above one, and
/// how many columns that is.
std::pair<std::size_t, std::size_t> Fitness(std::string_view beginning, CsvForm form) {
    constexpr std::size_t kRows = 60;
    std::istringstream in{std::string(beginning)};
    CsvReader reader(in, form);
    std::map<std::size_t, std::size_t> counts;
    CsvRow row;
    for (std::size_t i = 0; i < kRows && reader.Next(row); ++i)
        if (row.size() > 1) ++counts[row.size()];
    std::pair<std::size_t, std::size_t> best;
    for (const auto& [columns, rows] : counts)
        best = std::max(best, std::pair(rows, columns));
    return best;
}

}  // namespace

CsvForm GuessForm(std::string_view beginning) {
    CsvForm form{GuessEncoding(beginning), ','};
    std::pair<std::size_t, std::size_t> best;
    for (const char separator : kSeparators) {
        const auto fitness = Fitness(beginning, {form.encoding, separator});
        if (fitness > best) {
            best = fitness;
            form.separator = separator;
        }
    }
    return form;
}

CsvReader::CsvReader(std::istream& in, CsvForm form) : in_(in), form_(form) {
    text_.reserve(2 * kPiece);
}

void CsvReader::AppendUnits(std::string_view bytes) {
    const bool little = form_.encoding == CsvEncoding::Utf16Little;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const char32_t unit =
            little ? Octet(bytes, i) | Octet(bytes, i + 1) << 8 : Octet(bytes, i) << 8 | Octet(bytes, i + 1);
        if (high_ != 0) {
            const bool pair = unit >= 0xDC00 && unit < 0xE000;
            PutCharacter(text_, pair ? 0x10000 + ((high_ - 0xD800) << 10) + (unit - 0xDC00) : kReplacement);
            high_ = 0;
            if (pair) continue;
        }
        if (unit >= 0xD800 && unit < 0xDC00)
            high_ = unit;
        else if (unit >= 0xDC00 && unit < 0xE000)
            PutCharacter(text_, kReplacement);
        else if (unit != 0 && unit != 0xFEFF)
            PutCharacter(text_, unit);
    }
}

void CsvReader::Append(std::string_view bytes) {
    // A character never becomes more than three times its bytes.
    text_.Reserve(3 * bytes.size() + 8);
    if (form_.encoding == CsvEncoding::Utf16Little || form_.encoding == CsvEncoding::Utf16Big)
        return AppendUnits(bytes);
    WipedText whole = form_.encoding == CsvEncoding::Utf8 ? WellFormed(bytes) : ToUtf8(bytes);
    if (whole.find('\0') != std::string::npos) std::erase(whole, '\0');
    text_ += whole;
}

void CsvReader::Fill(std::size_t size) {
    if (text_.size() - at_ >= size || !in_) return;
    text_.erase(0, at_);
    at_ = 0;
    WipedText piece;
    while (text_.size() < size && in_) {
        piece.assign(kPiece, '\0');
        in_.read(piece.data(), static_cast<std::streamsize>(kPiece));
        piece.resize(static_cast<std::size_t>(in_.gcount()));
        WipedText bytes = Joined(carried_, piece);
        std::size_t length = bytes.size();
        if (in_ && form_.encoding == CsvEncoding::Utf8) length = WholeLength(bytes);
        if (form_.encoding == CsvEncoding::Utf16Little || form_.encoding == CsvEncoding::Utf16Big)
            length -= length % 2;
        WipeText(carried_);
        carried_ = bytes.substr(length);
        std::string_view whole = std::string_view(bytes).substr(0, length);
        if (!begun_ && form_.encoding == CsvEncoding::Utf8 && whole.starts_with(kUtf8Mark))
            whole.remove_prefix(kUtf8Mark.size());
        begun_ = begun_ || length > 0;
        Append(whole);
    }
}

void CsvReader::PassOverLine() {
    for (;;) {
        const std::size_t stop = text_.find_first_of("\r\n", at_);
        at_ = std::min(stop, text_.size());
        if (stop != std::string::npos) return;
        Fill(1);
        if (at_ == text_.size()) return;
    }
}

/// One row from `at_` on. False, and nothing taken, for quotes that do not close within the room of a row.
bool CsvReader::Parse(CsvRow& row, bool quotes) {
    row.clear();
    WipedText cell;
    bool quoted = false, tooMuch = false;
    const std::string_view all = std::string_view(text_).substr(at_, kMostCsvRecord);
    const char ends[] = {form_.separator, '\n', '\r', '"'};
    const std::string_view stops(ends, quotes ? 4 : 3);
    const auto endCell = [&] {
        if (row.size() < kMostCsvColumns)
            row.emplace_back(quoted ? std::string_view(cell) : TrimBlanks(cell));
        else
            tooMuch = true;
        cell = {};
        quoted = false;
    };
    std::size_t i = 0;
    for (; i < all.size(); ++i) {
        const std::size_t stop = std::min(all.find_first_of(stops, i), all.size());
        cell += all.substr(i, stop - i);
        i = stop;
        if (i == all.size()) break;
        if (all[i] == form_.separator) {
            endCell();
        } else if (all[i] != '"') {
            break;
        } else if (quoted || !TrimBlanks(cell).empty()) {
            cell += "\"";  // in the middle of a cell it is a character
        } else {
            cell = {};
            quoted = true;
            // Up to the quote that closes; a doubled one is a character.
            for (++i;; i += 2) {
                const std::size_t close = all.find('"', i);
                if (close == std::string_view::npos) return false;
                cell += all.substr(i, close - i);
                i = close;
                if (i + 1 == all.size() || all[i + 1] != '"') break;
                cell += "\"";
            }
        }
    }
    endCell();
    line_ += static_cast<std::size_t>(std::ranges::count(all.substr(0, i), '\n')) + 1;
    at_ += i;
    if (i == kMostCsvRecord) {
        tooMuch = true;
        PassOverLine();
    }
    if (at_ < text_.size() && text_[at_] == '\r') ++at_;
    if (at_ < text_.size() && text_[at_] == '\n') ++at_;
    if (tooMuch) ++doubtful_;
    return true;
}

bool CsvReader::Next(CsvRow& row) {
    for (;;) {
        Fill(kMostCsvRecord + 2);
        if (at_ >= text_.size()) return false;
        rowLine_ = line_;
        if (!Parse(row, true)) {
            ++doubtful_;
            Parse(row, false);
        }
        if (std::ranges::any_of(row, [](const WipedText& cell) { return !TrimBlanks(cell).empty(); }))
            return true;
    }
}

WipedText CsvLine(const CsvRow& row, char separator) {
    WipedText line;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (i > 0) line += std::string_view(&separator, 1);
        const WipedText& cell = row[i];
        const bool quote = cell.find_first_of("\"\r\n") != std::string::npos ||
                           cell.find(separator) != std::string::npos || cell.starts_with(' ') ||
                           cell.ends_with(' ');
        if (!quote) {
            line += cell;
            continue;
        }
        line += "\"";
        for (std::size_t at = 0; at < cell.size();) {
            const std::size_t next = std::min(cell.find('"', at), cell.size());
            line += std::string_view(cell).substr(at, next - at);
            if (next < cell.size()) line += "\"\"";
            at = next + 1;
        }
        line += "\"";
    }
    line += "\r\n";
    return line;
}

}  // namespace bmr::budget
