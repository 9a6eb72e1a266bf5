#include "base/unicode.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>
#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <utility>

#include "base/utf8.h"
#include "base/wiped.h"

namespace bmr {
namespace {

/// No character below joins with one in front of it or stands in another form.
constexpr char32_t kFirstMark = 0x300;

/// The library moves the rest of a text for each character that it changes: pieces keep the cost in
/// proportion to the length.
constexpr std::size_t kLongestRun = 1000;

/// Room for what becomes of one character, in the library's units: an Arabic ligature has some twenty
/// letters.
constexpr std::size_t kMostLetters = 32;

icu::StringPiece Piece(std::string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

/// A text of the library's, with room enough that it seldom moves, wiped when it goes.
struct Letters {
    explicit Letters(std::size_t characters)
        : text(static_cast<std::int32_t>(kMostLetters * characters), 0, 0) {}
    Letters(const Letters&) = delete;
    Letters& operator=(const Letters&) = delete;
    ~Letters() {
        const std::int32_t capacity = text.getCapacity();
        char16_t* memory = text.getBuffer(capacity);
        if (memory == nullptr) return;
        Overwrite(memory, static_cast<std::size_t>(capacity) * sizeof(*memory));
        text.releaseBuffer(0);
    }

    /// Hands over each character, and is empty then.
    template <class Each>
    void Drain(Each each) {
        for (std::int32_t at = 0; at < text.length();) {
            const UChar32 character = text.char32At(at);
            at += U16_LENGTH(character);
            each(static_cast<char32_t>(character));
        }
        text.remove();
        count = 0;
    }

    void Append(char32_t character) {
        text.append(static_cast<UChar32>(character));
        ++count;
    }

    icu::UnicodeString text;
    std::size_t count = 0;
};

/// A letter that the step to Latin writes and the step to ASCII does not know; nothing for other characters.
/// The schwa, the breathings of Arabic and Hebrew, the rounding of Ethiopic and the cedilla of Cyrillic.
const char* LetterOf(char32_t character) {
    switch (character) {
        case 0x0259:
        case 0x01DD:
            return "e";
        case 0x018F:
            return "E";
        case 0x02BE:
        case 0x02BF:
            return "'";
        case 0x02B7:
            return "w";
        case 0x02CC:
            return "";
        default:
            return nullptr;
    }
}

/// The two steps from any script to plain letters.
class Transliterator {
  public:
    Transliterator() : toLatin_(Make("Any-Latin; NFC")), toAscii_(Make("Latin-ASCII")) {}

    /// False when the library came without its tables.
    bool IsReady() const { return toLatin_ != nullptr && toAscii_ != nullptr; }

    /// Appends what `run`, characters that code page 1252 lacks, becomes, and empties it. `rest` is memory to
    /// work in.
    void Append(Bytes& out, Letters& run, Letters& rest) {
        if (run.count == 0) return;
        const std::lock_guard<std::mutex> lock(busy_);
        toLatin_->transliterate(run.text);
        run.Drain([&](char32_t character) {
            // Accents of the letters that stand for others go: who looks for a Greek name types none.
            if (character >= 0x80) return rest.Append(character);
            AppendPlain(out, rest);
            out += static_cast<char>(character);
        });
        AppendPlain(out, rest);
    }

  private:
    static std::unique_ptr<icu::Transliterator> Make(const char* steps) {
        UErrorCode error = U_ZERO_ERROR;
        UParseError place;
        std::unique_ptr<icu::Transliterator> made(
            icu::Transliterator::createInstance(steps, UTRANS_FORWARD, place, error));
        if (U_FAILURE(error) != 0) made.reset();
        return made;
    }

    void AppendPlain(Bytes& out, Letters& rest) {
        if (rest.text.isEmpty()) return;
        toAscii_->transliterate(rest.text);
        rest.Drain([&out](char32_t character) {
            if (const int byte = ByteOf(character); byte >= 0)
                out += ByteChar(static_cast<unsigned>(byte));
            else if (const char* letter = LetterOf(character); letter != nullptr)
                out += letter;
            else if ((U_GET_GC_MASK(static_cast<UChar32>(character)) & U_GC_M_MASK) == 0)
                out += '?';
        });
    }

    std::unique_ptr<icu::Transliterator> toLatin_;
    std::unique_ptr<icu::Transliterator> toAscii_;
    std::mutex busy_;
};

}  // namespace

bool IsWellFormed(std::string_view utf8) {
    constexpr std::string_view kEncodedReplacement = "\xEF\xBF\xBD";
    for (std::size_t at = AsciiRun(utf8, 0); at < utf8.size(); at += AsciiRun(utf8, at)) {
        const std::size_t begin = at;
        if (NextCharacter(utf8, at) == kReplacement && utf8.substr(begin, at - begin) != kEncodedReplacement)
            return false;
    }
    return true;
}

Words WellFormed(std::string_view utf8) {
    if (IsWellFormed(utf8)) return Words(utf8);
    Words out;
    out.reserve(3 * utf8.size());  // each byte may become U+FFFD, and a text with secrets must not move
    for (std::size_t at = 0; at < utf8.size();)
        AppendUtf8(out, NextCharacter(utf8, at));
    return out;
}

Words Normalised(std::string_view utf8) {
    bool plain = true;
    for (std::size_t at = AsciiRun(utf8, 0); plain && at < utf8.size(); at += AsciiRun(utf8, at)) {
        const char32_t character = NextCharacter(utf8, at);
        plain = character < kFirstMark || ByteOf(character) >= 0;
    }
    if (plain) return Words(utf8);
    Words whole = WellFormed(utf8);
    UErrorCode error = U_ZERO_ERROR;
    const icu::Normalizer2* form = icu::Normalizer2::getNFCInstance(error);
    if (U_FAILURE(error) != 0 || (form->isNormalizedUTF8(Piece(whole), error) != 0 && U_SUCCESS(error) != 0))
        return whole;
    Words out;
    // The form never takes more room than that, so that the text does not move while it grows.
    icu::StringByteSink<Words> sink(&out, static_cast<std::int32_t>(3 * whole.size()));
    form->normalizeUTF8(0, Piece(whole), sink, nullptr, error);
    if (U_FAILURE(error) != 0) out.swap(whole);
    WipeText(whole);
    return out;
}

Bytes Transliterate(std::string_view nfc) {
    if (auto bytes = ToBytes(nfc)) return std::move(*bytes);
    // Made by the first text that needs it: that takes a while, and most people never write one.
    static Transliterator transliterator;
    if (!transliterator.IsReady()) return MaskForeign(nfc);
    Bytes out;
    out.reserve(3 * nfc.size());
    Letters run(std::min(nfc.size(), kLongestRun));
    Letters rest(std::min(nfc.size(), kLongestRun));
    for (std::size_t at = 0; at < nfc.size();) {
        const char32_t character = NextCharacter(nfc, at);
        const int byte = ByteOf(character);
        if (byte < 0) run.Append(character);
        if (byte >= 0 || run.count == kLongestRun) transliterator.Append(out, run, rest);
        if (byte >= 0) out += ByteChar(static_cast<unsigned>(byte));
    }
    transliterator.Append(out, run, rest);
    if (TrimBlanks(out).empty()) return "?";
    return out;
}

Bytes MaskForeign(std::string_view nfc) {
    Bytes out;
    out.reserve(nfc.size());
    for (std::size_t at = 0; at < nfc.size();) {
        const int byte = ByteOf(NextCharacter(nfc, at));
        out += byte < 0 ? '?' : ByteChar(static_cast<unsigned>(byte));
    }
    return out;
}

Words FoldCase(std::string_view utf8) {
    Words out;
    if (AsciiRun(utf8, 0) == utf8.size()) {
        out.assign(utf8);
        for (char& c : out)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        return out;
    }
    UErrorCode error = U_ZERO_ERROR;
    icu::StringByteSink<Words> sink(&out, static_cast<std::int32_t>(3 * utf8.size()));
    icu::CaseMap::utf8Fold(0, Piece(utf8), sink, nullptr, error);
    if (U_FAILURE(error) != 0) out.assign(utf8);
    return out;
}

}  // namespace bmr
