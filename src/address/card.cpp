#include "address/card.h"

#include <algorithm>
#include <array>

#include "address/foundwords.h"
#include "base/languageus.h"
#include "base/shortdate.h"

namespace bmr::address {
namespace {

constexpr std::size_t kRuleLength = 40;
constexpr std::string_view kLineEnd = "\r\n";

/// The message that names a kind on the card. 6 and 7 stand under each other's words, as they always have.
int CaptionOf(ComKind kind) {
    switch (kind) {
        case ComKind::Home:
            return 56;
        case ComKind::Fax:
            return 60;
        case ComKind::Other:
            return 59;
        case ComKind::Email:
            return 55;
        case ComKind::Main:
            return 64;
        case ComKind::Pager:
            return 65;
        case ComKind::Mobile:
            return 67;
        case ComKind::Website:
            return 61;
        default:
            return 58;
    }
}

int AddressCaption(std::uint8_t base) {
    switch (base) {
        case FieldNumber::HomeAddress:
            return 56;
        case FieldNumber::BusinessAddress:
            return 58;
        default:
            return 59;
    }
}

/// The two with `between` where both have text.
WipedText JoinParts(std::string_view one, std::string_view between, std::string_view other) {
    return Joined(one, one.empty() || other.empty() ? std::string_view() : between, other);
}

struct Part {
    const Record& record;
    std::uint8_t base;
    std::string_view operator[](std::uint8_t part) const {
        return record[static_cast<std::size_t>(base) + part];
    }
};

class CardBuilder {
  public:
    CardBuilder(const Record& record, const store::UserLabels& labels, const LocaleFacts& locale)
        : record_(record), labels_(labels), locale_(locale) {}

    Card Build() {
        card_.head = JoinParts(JoinParts(record_[FieldNumber::Title], " ", record_.fileAs), " ",
                               record_[FieldNumber::Suffix]);
        AddJob();
        AddNumbers();
        AddAddresses();
        AddPersonal();
        if (!record_[FieldNumber::Notes].empty()) {
            card_.lines.push_back({CardPart::NoteHeading, Msg(68), {}});
            card_.lines.push_back(
                {CardPart::Note, {}, record_[FieldNumber::Notes], ComAction::None, FieldNumber::Notes});
        }
        return std::move(card_);
    }

  private:
    void AddJob() {
        for (const std::uint8_t field :
             {FieldNumber::JobTitle, FieldNumber::CompanyName, FieldNumber::Department})
            if (!record_[field].empty())
                card_.lines.push_back({CardPart::Job, {}, record_[field], ComAction::None, field});
        if (card_.lines.empty()) return;
        card_.lines.push_back({CardPart::Rule, {}, WipedText(std::string(kRuleLength, '_'))});
        card_.lines.push_back({CardPart::Gap, {}, {}});
    }

    void AddNumbers() {
        for (std::size_t slot = 0; slot < kComSlots; ++slot) {
            if (record_.Com(slot).empty()) continue;
            const ComKind kind = KindOfLabel(record_.ComLabel(slot));
            card_.lines.push_back({CardPart::Number, Msg(CaptionOf(kind)), record_.Com(slot),
                                   ActionOf(kind, record_.Com(slot)),
                                   static_cast<std::uint8_t>(FieldNumber::Com1 + slot)});
        }
    }

    void AddAddresses() {
        bool headed = false;
        for (const std::uint8_t base : kAddressBases) {
            if (!HasAddress(record_, base)) continue;
            if (!headed) card_.lines.push_back({CardPart::Heading, Msg(53), {}});
            headed = true;
            card_.lines.push_back({CardPart::Caption, Msg(AddressCaption(base)), {}, ComAction::None, base});
            const Part part{record_, base};
            const WipedText stateAndCode =
                JoinParts(part[AddressPart::State], " ", part[AddressPart::PostalCode]);
            for (const WipedText& line : {WipedText(part[AddressPart::Street]),
                                          JoinParts(part[AddressPart::City], ", ", stateAndCode),
                                          WipedText(part[AddressPart::Country])})
                if (!line.empty())
                    card_.lines.push_back({CardPart::AddressLine, {}, line, ComAction::None, base});
        }
    }

    void AddPersonal() {
        const auto add = [this](WipedText caption, WipedText value, std::uint8_t field) {
            if (!value.empty())
                card_.lines.push_back(
                    {CardPart::Personal, std::move(caption), std::move(value), ComAction::None, field});
        };
        add(Msg(75), record_[FieldNumber::GovernmentIDNumber], FieldNumber::GovernmentIDNumber);
        if (record_.birthday.serial != 0)
            add(Msg(78), FormatShortDate(DayOf(record_.birthday), locale_.shortDate), FieldNumber::Birthday);
        add(Msg(76), record_[FieldNumber::Spouse], FieldNumber::Spouse);
        add(Msg(77), record_[FieldNumber::Children], FieldNumber::Children);
        for (std::uint8_t i = 0; i < labels_.size(); ++i) {
            const auto field = static_cast<std::uint8_t>(FieldNumber::User1 + i);
            add(ToUtf8(labels_[i]), record_[field], field);
        }
    }

    const Record& record_;
    const store::UserLabels& labels_;
    const LocaleFacts& locale_;
    Card card_;
};

void AppendPlain(WipedText& out, const CardLine& line) {
    switch (line.part) {
        case CardPart::Number:
        case CardPart::Personal:
            out += line.caption;
            out += ":\t";
            break;
        case CardPart::Heading:
        case CardPart::Caption:
        case CardPart::NoteHeading:
            out += line.caption;
            out += ":";
            break;
        default:
            break;
    }
    out += line.value;
    if (line.part != CardPart::Note) out += kLineEnd;
}

/// A text in HTML: its own signs are no marks, its line breaks and tabs are seen.
void AppendEscaped(WipedText& out, std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        switch (text[i]) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\t':
                out += "&nbsp; &nbsp; ";
                break;
            case '\r':
                if (i + 1 < text.size() && text[i + 1] == '\n') break;
                [[fallthrough]];
            case '\n':
                out += "<br/>";
                break;
            default:
                out += text.substr(i, 1);
        }
    }
}

void AppendMarked(WipedText& out, std::string_view text, const std::vector<WipedText>& found) {
    std::size_t at = 0;
    for (const FoundSpan& span : FindWords(text, found)) {
        AppendEscaped(out, text.substr(at, span.begin - at));
        out += "<span class=\"found\">";
        AppendEscaped(out, text.substr(span.begin, span.end - span.begin));
        out += "</span>";
        at = span.end;
    }
    AppendEscaped(out, text.substr(at));
}

void AppendValue(WipedText& out, const CardLine& line, const std::vector<WipedText>& found) {
    const bool link = line.action != ComAction::None;
    if (link) {
        out += "<a href=\"com:";
        out += std::to_string(line.field);
        out += "\">";
    }
    AppendMarked(out, line.value, found);
    if (link) out += "</a>";
}

/// A code of digits alone, as on the continent, where it stands before the town.
bool StandsBeforeTown(std::string_view code) {
    if (code.empty()) return false;
    // "1234 AB" of the Netherlands, "D-12345"; those of Britain and Canada begin with two letters or mix
    // them.
    if (code.size() > 2 && code[1] == '-') code.remove_prefix(2);
    return code.size() >= 3 &&
           std::all_of(code.begin(), code.begin() + 3, [](char c) { return c >= '0' && c <= '9'; });
}

WipedText PersonName(const Record& record) {
    WipedText name;
    for (const std::uint8_t field :
         {FieldNumber::Title, FieldNumber::FirstName, FieldNumber::MiddleName, FieldNumber::LastName})
        name = JoinParts(name, " ", record[field]);
    if (record[FieldNumber::FirstName].empty() && record[FieldNumber::LastName].empty()) return {};
    return JoinParts(name, ", ", record[FieldNumber::Suffix]);
}

}  // namespace

bool HasAddress(const Record& record, std::uint8_t base) {
    for (std::uint8_t part = 0; part < kAddressParts; ++part)
        if (!record[static_cast<std::size_t>(base) + part].empty()) return true;
    return false;
}

std::uint8_t FirstAddress(const Record& record) {
    for (const std::uint8_t base : kAddressBases)
        if (HasAddress(record, base)) return base;
    return kAddressBases[0];
}

Card BuildCard(const Record& record, const store::UserLabels& labels, const LocaleFacts& locale) {
    return CardBuilder(record, labels, locale).Build();
}

WipedText BodyText(const Card& card) {
    WipedText text;
    for (const CardLine& line : card.lines)
        AppendPlain(text, line);
    return text;
}

WipedText CardText(const Card& card) {
    return Joined(card.head, kLineEnd, BodyText(card));
}

WipedText MarkedHead(const Card& card, const std::vector<WipedText>& found) {
    WipedText text;
    AppendMarked(text, card.head, found);
    return text;
}

WipedText MarkedBody(const Card& card, const std::vector<WipedText>& found) {
    WipedText text;
    const auto paragraph = [&text](std::string_view name, const auto& inside) {
        text += "<p class=\"";
        text += name;
        text += "\">";
        inside();
        text += "</p>";
    };
    for (const CardLine& line : card.lines) {
        const auto value = [&] { AppendValue(text, line, found); };
        const auto caption = [&] { AppendEscaped(text, line.caption); };
        const auto both = [&] {
            text += "<span class=\"caption\">";
            caption();
            text += "</span>&nbsp; ";
            value();
        };
        switch (line.part) {
            case CardPart::Job:
                paragraph("job", value);
                break;
            case CardPart::Rule:
                text += "<hr/>";
                break;
            case CardPart::Gap:
                break;
            case CardPart::Number:
                paragraph("number", both);
                break;
            case CardPart::Heading:
                paragraph("heading", caption);
                break;
            case CardPart::Caption:
                paragraph("caption", caption);
                break;
            case CardPart::AddressLine:
                paragraph("address", value);
                break;
            case CardPart::Personal:
                paragraph("personal", both);
                break;
            case CardPart::NoteHeading:
                paragraph("heading", caption);
                break;
            case CardPart::Note:
                paragraph("note", value);
                break;
        }
    }
    return text;
}

WipedText EnvelopeText(const Record& record, std::uint8_t base) {
    if (!HasAddress(record, base)) return {};
    const Part part{record, base};
    std::vector<WipedText> lines;
    const WipedText person = PersonName(record);
    const bool business = base == FieldNumber::BusinessAddress;
    if (business || person.empty()) lines.push_back(record[FieldNumber::CompanyName]);
    if (business) lines.push_back(record[FieldNumber::Department]);
    lines.push_back(person.empty() && record[FieldNumber::CompanyName].empty() ? record.fileAs : person);
    lines.emplace_back(part[AddressPart::Street]);
    const std::string_view code = part[AddressPart::PostalCode];
    const std::string_view city = part[AddressPart::City];
    const std::string_view state = part[AddressPart::State];
    if (!state.empty()) {
        lines.push_back(JoinParts(city, ", ", JoinParts(state, " ", code)));
    } else if (StandsBeforeTown(code)) {
        lines.push_back(JoinParts(code, " ", city));
    } else {
        lines.emplace_back(city);
        lines.emplace_back(code);
    }
    lines.emplace_back(part[AddressPart::Country]);
    WipedText text;
    for (const WipedText& line : lines) {
        if (line.empty()) continue;
        text += line;
        text += kLineEnd;
    }
    return text;
}

}  // namespace bmr::address
