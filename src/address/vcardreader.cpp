#include "address/vcardreader.h"

#include <algorithm>
#include <array>

#include "base/bytes.h"
#include "base/unicode.h"

namespace bmr::address {
namespace {

constexpr std::size_t kBuffer = std::size_t{64} << 10;
/// The longest text of a field, each of its bytes as three of quoted-printable, and folds.
constexpr std::size_t kLongestLine = std::size_t{256} << 10;
constexpr std::size_t kMostProperties = 1000;
constexpr std::size_t kLargestCard = std::size_t{1} << 20;

constexpr std::array<std::string_view, 4> kMedia{"PHOTO", "LOGO", "SOUND", "KEY"};

std::string Upper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    return upper;
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return lower;
}

/// The place of `sign` outside of double quotes, or the end.
std::size_t FindUnquoted(std::string_view text, char sign, std::size_t at = 0) {
    bool quoted = false;
    for (; at < text.size(); ++at) {
        if (text[at] == '"') quoted = !quoted;
        if (!quoted && text[at] == sign) break;
    }
    return at;
}

/// A name of letters, digits and dashes, perhaps behind a group.
bool IsName(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
               c == '.' || c == '_';
    });
}

/// The name that a line begins with, in capitals and without its group.
std::string NameOfLine(std::string_view line) {
    std::string_view name = line.substr(0, line.find_first_of(":;"));
    if (const std::size_t dot = name.rfind('.'); dot != std::string_view::npos) name.remove_prefix(dot + 1);
    return Upper(TrimBlanks(name));
}

bool IsMediaName(std::string_view name) {
    return std::ranges::find(kMedia, name) != kMedia.end();
}

bool IsQuotedPrintable(std::string_view line) {
    return Upper(line.substr(0, FindUnquoted(line, ':'))).find("QUOTED-PRINTABLE") != std::string::npos;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

WipedText FromQuotedPrintable(std::string_view text) {
    WipedText plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool code =
            text[i] == '=' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 && HexDigit(text[i + 2]) >= 0;
        if (code) {
            plain.push_back(static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2])));
            i += 2;
        } else {
            plain.push_back(text[i]);
        }
    }
    return plain;
}

/// UTF-8 of a value: what it is by itself, else what the page says. Signs that steer a terminal go.
WipedText ToWords(std::string_view value, std::string_view charset) {
    const std::string page = Upper(charset);
    const bool single = page.starts_with("ISO-8859-1") || page == "WINDOWS-1252" || page == "CP1252";
    WipedText words = !single && IsWellFormed(value) ? WipedText(value) : WipedText(ToUtf8(value));
    const auto steers = [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return (code < 32 && c != '\n' && c != '\r' && c != '\t') || code == 127;
    };
    words.erase(std::remove_if(words.begin(), words.end(), steers), words.end());
    return words;
}

/// RFC 6868: what a parameter cannot hold stands behind a caret.
std::string ParameterText(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '^' && i + 1 < text.size() ? text[i + 1] : 0;
        if (next == 'n' || next == '^' || next == '\'') {
            plain += next == 'n' ? '\n' : next == '^' ? '^' : '"';
            ++i;
        } else if (text[i] != '"') {
            plain += text[i];
        }
    }
    return plain;
}

bool IsEncoding(std::string_view upper) {
    return upper == "QUOTED-PRINTABLE" || upper == "BASE64" || upper == "B" || upper == "8BIT" ||
           upper == "7BIT";
}

/// "TYPE=work,voice", and "WORK" alone as version 2.1 has it.
void AddParameter(VCardProperty& property, std::string_view text) {
    const std::size_t equals = text.find('=');
    std::string name = equals == std::string_view::npos ? "" : Upper(TrimBlanks(text.substr(0, equals)));
    const std::string_view values = equals == std::string_view::npos ? text : text.substr(equals + 1);
    if (name.empty()) name = IsEncoding(Upper(values)) ? "ENCODING" : "TYPE";
    for (std::size_t at = 0; at <= values.size();) {
        const std::size_t end = FindUnquoted(values, ',', at);
        std::string value = ParameterText(values.substr(at, end - at));
        // Several types may stand in one pair of quotes.
        if (name == "TYPE")
            for (std::size_t comma = value.find(','); comma != std::string::npos; comma = value.find(',')) {
                property.parameters.emplace_back(name, Lower(value.substr(0, comma)));
                value.erase(0, comma + 1);
            }
        property.parameters.emplace_back(name, name == "TYPE" ? Lower(value) : value);
        at = end + 1;
    }
}

}  // namespace

bool VCardProperty::HasType(std::string_view type) const {
    return std::ranges::any_of(parameters, [type](const auto& parameter) {
        return parameter.first == "TYPE" && parameter.second == type;
    });
}

std::string_view VCardProperty::Parameter(std::string_view parameter) const {
    for (const auto& [own, text] : parameters)
        if (own == parameter) return text;
    return {};
}

void VCard::Clear() {
    *this = {};
}

std::vector<std::string_view> SplitEscaped(std::string_view value, char separator) {
    std::vector<std::string_view> parts;
    std::size_t begin = 0;
    for (std::size_t at = 0; at <= value.size(); ++at) {
        if (at < value.size() && value[at] == '\\') {
            ++at;
        } else if (at >= value.size() || value[at] == separator) {
            parts.push_back(value.substr(begin, std::min(at, value.size()) - begin));
            begin = at + 1;
        }
    }
    // A backslash at the end hides that end.
    if (begin <= value.size()) parts.push_back(value.substr(begin));
    return parts;
}

WipedText Unescaped(std::string_view text, int version) {
    WipedText plain;
    plain.reserve(text.size() + 8);
    const auto lineEnd = [&plain] { plain += "\r\n"; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const char next = i + 1 < text.size() ? text[i + 1] : 0;
        if (c == '\\' && (next == 'n' || next == 'N') && version != 21) {
            lineEnd();
            ++i;
        } else if (c == '\\' && (next == ';' || next == ',' || next == ':' || next == '\\') &&
                   (version != 21 || next != '\\')) {
            plain.push_back(next);
            ++i;
        } else if (c == '\r') {
            lineEnd();
            if (next == '\n') ++i;
        } else if (c == '\n') {
            lineEnd();
        } else {
            plain.push_back(c);
        }
    }
    return plain;
}

VCardReader::VCardReader(std::function<std::size_t(std::span<char>)> read) : read_(std::move(read)) {
    buffer_.resize(kBuffer);
}

VCardReader::~VCardReader() = default;

bool VCardReader::NextByte(char& byte) {
    if (at_ == filled_) {
        filled_ = read_({buffer_.data(), buffer_.size()});
        at_ = 0;
        if (filled_ == 0) return false;
    }
    byte = buffer_[at_++];
    ++position_;
    return true;
}

bool VCardReader::PhysicalLine(Line& line) {
    if (ahead_) {
        line = std::move(*ahead_);
        ahead_.reset();
        return true;
    }
    line = {};
    char byte = 0;
    bool any = false;
    while (NextByte(byte)) {
        const bool second = byte == '\n' && lastWasReturn_ && !any;
        lastWasReturn_ = byte == '\r';
        if (second) continue;  // the other half of the last line's end
        any = true;
        if (byte == '\n' || byte == '\r') break;
        if (line.text.size() == line.text.capacity()) line.text.Reserve(line.text.size() + 256);
        if (line.text.size() < kLongestLine)
            line.text.push_back(byte);
        else
            line.isCut = true;
    }
    if (any) line.number = ++lines_;
    if (line.number == 1 && line.text.starts_with("\xEF\xBB\xBF")) line.text.erase(0, 3);
    return any;
}

bool VCardReader::LogicalLine(Line& line) {
    do {
        if (!PhysicalLine(line)) return false;
    } while (line.text.empty());
    const bool quoted = IsQuotedPrintable(line.text);
    line.isMedia = IsMediaName(NameOfLine(line.text));
    for (Line more; PhysicalLine(more);) {
        // A value that ends so by mistake does not take the card's end with it.
        const bool soft = quoted && line.text.ends_with('=') && Upper(TrimBlanks(more.text)) != "END:VCARD";
        const bool folded = !more.text.empty() && (more.text[0] == ' ' || more.text[0] == '\t');
        // Some write a picture without blanks in front of its lines.
        const bool picture = line.isMedia && !more.text.empty() && more.text.find(':') == std::string::npos;
        if (!soft && !folded && !picture) {
            ahead_ = std::move(more);
            break;
        }
        if (soft) line.text.pop_back();
        if (line.isMedia) continue;
        const std::string_view part = std::string_view(more.text).substr(soft ? 0 : 1);
        const std::size_t room = kLongestLine - std::min(kLongestLine, line.text.size());
        line.text += part.substr(0, room);
        line.isCut = line.isCut || more.isCut || part.size() > room;
    }
    return true;
}

void VCardReader::TakeProperty(VCard& card, const Line& line) {
    const std::string_view text = line.text;
    const std::size_t colon = FindUnquoted(text, ':');
    const std::string_view head = text.substr(0, colon);
    const std::size_t nameEnd = FindUnquoted(head, ';');
    std::string_view name = TrimBlanks(head.substr(0, nameEnd));
    if (colon == text.size() || !IsName(name)) {
        ++card.strayLines;
        return;
    }
    VCardProperty property;
    if (const std::size_t dot = name.rfind('.'); dot != std::string_view::npos) {
        property.group = Lower(name.substr(0, dot));
        name.remove_prefix(dot + 1);
    }
    property.name = Upper(name);
    for (std::size_t at = nameEnd; at < head.size();) {
        const std::size_t end = FindUnquoted(head, ';', at + 1);
        AddParameter(property, head.substr(at + 1, end - at - 1));
        at = end;
    }
    const std::string encoding = Upper(property.Parameter("ENCODING"));
    property.isMedia = line.isMedia || encoding == "BASE64" || encoding == "B";
    property.isCut = line.isCut;
    if (!property.isMedia) {
        const std::string_view raw = text.substr(colon + 1);
        property.value = encoding == "QUOTED-PRINTABLE"
                             ? ToWords(FromQuotedPrintable(raw), property.Parameter("CHARSET"))
                             : ToWords(raw, property.Parameter("CHARSET"));
        property.isMedia = property.value.starts_with("data:");
        if (property.isMedia) property.value = WipedText();
    }
    card.properties.push_back(std::move(property));
}

bool VCardReader::Next(VCard& card) {
    card.Clear();
    const auto isLine = [](const Line& line, std::string_view what) {
        return line.text.size() < 64 && Upper(TrimBlanks(line.text)) == what;
    };
    Line line;
    if (begun_) {
        card.line = *begun_;
        begun_.reset();
    } else {
        do {
            if (!LogicalLine(line)) return false;
        } while (!isLine(line, "BEGIN:VCARD"));
        card.line = line.number;
    }
    std::size_t depth = 1;
    std::size_t size = 0;
    bool agent = false;
    while (LogicalLine(line)) {
        if (isLine(line, "BEGIN:VCARD")) {
            if (!agent) {
                begun_ = line.number;
                card.problem = "it has no end";
                return true;
            }
            ++depth;  // the card of somebody's agent stands inside theirs
        } else if (isLine(line, "END:VCARD")) {
            if (--depth == 0) return true;
        } else if (depth == 1) {
            if (!line.isMedia) size += line.text.size();
            if (size > kLargestCard || card.properties.size() >= kMostProperties)
                card.problem = "it is larger than any record";
            else
                TakeProperty(card, line);
            if (!card.properties.empty() && card.properties.back().name == "VERSION") {
                const std::string_view version = TrimBlanks(card.properties.back().value);
                card.version = version.starts_with("2") ? 21 : version.starts_with("4") ? 40 : 30;
                card.properties.pop_back();
            }
        }
        agent = depth > 1 || NameOfLine(line.text) == "AGENT";
    }
    card.problem = "the file ends within it";
    return true;
}

}  // namespace bmr::address
