#include "address/vcard.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <span>

#include "address/card.h"
#include "address/contact.h"
#include "address/fileas.h"
#include "base/buckets.h"
#include "base/bytes.h"
#include "base/serialdate.h"
#include "store/words.h"

namespace bmr::address {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
/// In bytes, the fold's blank included.
constexpr std::size_t kLineWidth = 75;

constexpr std::string_view kSlot = "X-BMR-SLOT";
constexpr std::string_view kKind = "X-BMR-KIND";
constexpr std::string_view kAddress = "X-BMR-ADDRESS";

/// Fields with a property of their own, one text each.
struct TextProperty {
    std::string_view name;
    std::uint8_t field;
};
constexpr TextProperty kTexts[] = {
    {"TITLE", FieldNumber::JobTitle},
    {"ROLE", FieldNumber::Profession},
    {"ANNIVERSARY", FieldNumber::Anniversary},
    {"X-BMR-ACCOUNT", FieldNumber::Account},
    {"X-BMR-BILLINGINFORMATION", FieldNumber::BillingInformation},
    {"X-BMR-GOVERNMENTIDNUMBER", FieldNumber::GovernmentIDNumber},
    {"X-BMR-USER1", FieldNumber::User1},
    {"X-BMR-USER2", FieldNumber::User1 + 1},
    {"X-BMR-USER3", FieldNumber::User1 + 2},
    {"X-BMR-USER4", FieldNumber::User1 + 3},
    {"X-BMR-ORGANIZATIONALIDNUMBER", FieldNumber::OrganizationalIDNumber},
    {"X-BMR-CUSTOMERID", FieldNumber::CustomerID},
    {"X-SPOUSE", FieldNumber::Spouse},
    {"X-ANNIVERSARY", FieldNumber::Anniversary},
};
/// How many of them are written.
constexpr std::size_t kWrittenTexts = 12;

/// What says something of the card alone, and nothing of a person.
constexpr std::string_view kSilent[] = {"REV",         "PRODID", "UID",       "CLIENTPIDMAP", "MAILER",
                                        "SORT-STRING", "N",      "X-ABLABEL", "PROFILE",      "LABEL",
                                        "X-ABSHOWAS",  "KIND",   "SOURCE",    "NAME"};

/// The order of the parts in N, and of those of ADR behind post box and extension.
constexpr std::uint8_t kNameParts[] = {FieldNumber::LastName, FieldNumber::FirstName, FieldNumber::MiddleName,
                                       FieldNumber::Title, FieldNumber::Suffix};
constexpr std::uint8_t kPostalParts[] = {AddressPart::Street, AddressPart::City, AddressPart::State,
                                         AddressPart::PostalCode, AddressPart::Country};

std::optional<int> WholeNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// Date of the forms 1961-05-17, 19610517 and either with a time behind it.
std::optional<Day> DateOf(std::string_view text) {
    text = TrimBlanks(text.substr(0, text.find('T')));
    std::string iso(text);
    if (iso.size() == 8 && iso.find('-') == std::string::npos)
        iso = iso.substr(0, 4) + "-" + iso.substr(4, 2) + "-" + iso.substr(6);
    const auto day = ParseIsoDate(iso);
    // A payload holds the days of its table and takes the next one for any other.
    if (!day || UnpackDate(PackDateAt(*day, DateKind::Start, 0.5).value, DateKind::Start) != *day)
        return std::nullopt;
    return day;
}

void AppendPart(WipedText& text, std::string_view between, std::string_view part) {
    if (part.empty()) return;
    if (!text.empty()) text += between;
    text += part;
}

class CardTaker {
  public:
    explicit CardTaker(const VCard& card) : card_(card) {}

    CardRecord Take() {
        made_.problem = card_.problem;
        if (!made_.problem.empty()) return std::move(made_);
        for (const VCardProperty& property : card_.properties)
            TakeProperty(property);
        PlaceNumbers();
        PlaceAddresses();
        if (card_.strayLines > 0)
            LeaveOut(std::to_string(card_.strayLines) +
                     (card_.strayLines == 1 ? " line that is no property" : " lines that are no property"));
        record_[FieldNumber::Notes] = std::move(notes_);
        NameIt();
        Measure();
        return std::move(made_);
    }

  private:
    void LeaveOut(const std::string& name) {
        if (std::ranges::find(made_.leftOut, name) == made_.leftOut.end()) made_.leftOut.push_back(name);
    }
    WipedText Text(std::string_view escaped) const { return Unescaped(escaped, card_.version); }
    WipedText OneLine(std::string_view escaped) const {
        WipedText text = Text(escaped);
        for (std::size_t at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n", at))
            text.replace(at, 2, " ");
        return text;
    }
    void Note(std::string_view name, std::string_view text) {
        if (!TrimBlanks(text).empty()) AppendPart(notes_, kLineEnd, Joined(name, ": ", text));
    }
    /// A field that may have been filled by another property.
    void Fill(std::uint8_t field, WipedText text, std::string_view name) {
        if (record_[field].empty())
            record_[field] = std::move(text);
        else if (record_[field] != text)
            Note(name, text);
    }

    void TakeProperty(const VCardProperty& property) {
        const std::string& name = property.name;
        if (property.isMedia) return LeaveOut(name);
        if (property.isCut) {
            if (made_.problem.empty()) made_.problem = name + " is longer than any record can hold";
            return;
        }
        if (name == "FN") return SetOnce(record_.fileAs, OneLine(property.value));
        if (name == "N") return TakeName(property);
        if (name == "ORG") return TakeFirm(property);
        if (name == "ADR") return addresses_.push_back(&property);
        if (name == "TEL" || name == "EMAIL" || name == "URL") return numbers_.push_back(&property);
        if (name == "BDAY") return TakeBirthday(property);
        if (name == "NOTE") return AppendPart(notes_, kLineEnd, Text(property.value));
        if (name == "CATEGORIES") return TakeCategories(property);
        if (name == "GENDER") return TakeGender(property);
        if (name == "RELATED" || name == "X-ABRELATEDNAMES") return TakeRelated(property);
        if (name == "CLASS" || name == "X-BMR-PRIVATE") return TakeClass(property);
        if (name == "X-BMR-PRIORITY") {
            if (const auto number = WholeNumber(property.value); number && *number >= 0 && *number < 256)
                record_.priority = static_cast<std::uint8_t>(*number);
            return;
        }
        for (const TextProperty& text : kTexts)
            if (text.name == name) return Fill(text.field, Text(property.value), name);
        if (std::ranges::find(kSilent, name) != std::end(kSilent)) return;
        if (name == "AGENT") return LeaveOut(name);
        Note(NoteName(name), Text(property.value));
    }

    static void SetOnce(WipedText& text, WipedText value) {
        if (text.empty()) text = std::move(value);
    }

    static std::string NoteName(const std::string& name) {
        if (name == "IMPP") return "Chat";
        if (name.starts_with("X-")) return name;
        return name.substr(0, 1) + LowerCase(name.substr(1));
    }

    /// A part of a structured value; several texts in it stand beside each other.
    WipedText Part(std::string_view part, std::string_view between) const {
        WipedText text;
        for (const std::string_view piece : SplitEscaped(part, ','))
            AppendPart(text, between, Text(piece));
        return text;
    }

    void TakeName(const VCardProperty& property) {
        const auto parts = SplitEscaped(property.value, ';');
        for (std::size_t i = 0; i < parts.size() && i < std::size(kNameParts); ++i)
            SetOnce(record_[kNameParts[i]], Part(parts[i], " "));
    }

    void TakeFirm(const VCardProperty& property) {
        const auto parts = SplitEscaped(property.value, ';');
        Fill(FieldNumber::CompanyName, Text(parts[0]), "Company");
        WipedText department;
        for (std::size_t i = 1; i < parts.size(); ++i)
            AppendPart(department, ", ", Text(parts[i]));
        if (!department.empty()) Fill(FieldNumber::Department, std::move(department), "Department");
    }

    void TakeBirthday(const VCardProperty& property) {
        const WipedText text = OneLine(property.value);
        if (const auto day = DateOf(text); day && record_.birthday.serial == 0)
            record_.birthday = {static_cast<double>(day->serial)};
        else
            Note("Birthday", text);
    }

    void TakeCategories(const VCardProperty& property) {
        for (const std::string_view part : SplitEscaped(property.value, ','))
            if (WipedText name = OneLine(part); !TrimBlanks(name).empty())
                made_.categories.push_back(std::move(name));
    }

    void TakeGender(const VCardProperty& property) {
        const auto parts = SplitEscaped(property.value, ';');
        WipedText text = parts.size() > 1 ? Text(parts[1]) : WipedText();
        if (text.empty()) text = Text(parts[0]);
        Fill(FieldNumber::Gender, std::move(text), "Gender");
    }

    void TakeRelated(const VCardProperty& property) {
        const std::string label = LabelOfGroup(property);
        WipedText name = Text(property.value);
        if (property.HasType("spouse") || label.find("spouse") != std::string::npos)
            return Fill(FieldNumber::Spouse, std::move(name), "Spouse");
        if (property.HasType("child") || label.find("child") != std::string::npos)
            return AppendPart(record_[FieldNumber::Children], ", ", name);
        Note("Related", name);
    }

    void TakeClass(const VCardProperty& property) {
        const std::string_view value = TrimBlanks(property.value);
        if (CompareNoCase(value, "PRIVATE") == 0 || CompareNoCase(value, "CONFIDENTIAL") == 0 || value == "1")
            record_.isPrivate = true;
    }

    /// What some programs call a property in another one of its group: "_$!<HomeFax>!$_". Small letters.
    std::string LabelOfGroup(const VCardProperty& property) const {
        if (property.group.empty()) return {};
        for (const VCardProperty& other : card_.properties)
            if (other.group == property.group && other.name == "X-ABLABEL")
                return std::string(LowerCase(ToBytes(other.value).value_or(Bytes())));
        return {};
    }

    ComKind KindOf(const VCardProperty& property) const {
        if (const auto kind = WholeNumber(property.Parameter(kKind)); kind && *kind >= 0 && *kind <= 9)
            return static_cast<ComKind>(*kind);
        if (property.name == "EMAIL") return ComKind::Email;
        if (property.name == "URL") return ComKind::Website;
        const std::string label = LabelOfGroup(property);
        const auto is = [&](std::string_view type) {
            return property.HasType(type) || label.find(type) != std::string::npos;
        };
        if (is("fax")) return ComKind::Fax;
        if (is("pager")) return ComKind::Pager;
        if (is("cell") || is("mobile") || is("iphone")) return ComKind::Mobile;
        if (is("main")) return ComKind::Main;
        if (is("work")) return ComKind::Work;
        if (is("home")) return ComKind::Home;
        return is("other") ? ComKind::Other : ComKind::Main;
    }

    /// 1 is the first; nothing where the card prefers nothing.
    static std::optional<int> PreferenceOf(const VCardProperty& property) {
        if (const auto number = WholeNumber(property.Parameter("PREF"))) return number;
        return property.HasType("pref") ? std::optional<int>(1) : std::nullopt;
    }

    /// Those that know their slot first, the others in the slots that are left, in the card's order.
    void PlaceNumbers() {
        std::vector<const VCardProperty*> rest;
        int best = 101;
        for (const VCardProperty* property : numbers_) {
            const auto slot = WholeNumber(property->Parameter(kSlot));
            if (slot && *slot >= 1 && *slot <= static_cast<int>(kComSlots) &&
                record_.Com(static_cast<std::size_t>(*slot - 1)).empty())
                PutNumber(static_cast<std::size_t>(*slot - 1), *property, best);
            else
                rest.push_back(property);
        }
        std::size_t slot = 0;
        for (const VCardProperty* property : rest) {
            while (slot < kComSlots && !record_.Com(slot).empty())
                ++slot;
            if (slot < kComSlots)
                PutNumber(slot, *property, best);
            else
                Note(property->name == "TEL"     ? "Phone"
                     : property->name == "EMAIL" ? "Email"
                                                 : "Website",
                     ValueOf(*property));
        }
    }
    WipedText ValueOf(const VCardProperty& property) const {
        WipedText value = Text(property.value);
        for (const std::string_view scheme : {"tel:", "mailto:"})
            if (value.size() > scheme.size() && CompareNoCase(value.substr(0, scheme.size()), scheme) == 0 &&
                property.name != "URL")
                value.erase(0, scheme.size());
        return value;
    }
    void PutNumber(std::size_t slot, const VCardProperty& property, int& best) {
        WipedText value = ValueOf(property);
        if (TrimBlanks(value).empty()) return;
        record_.Com(slot) = std::move(value);
        record_.ComLabel(slot) = LabelOf(KindOf(property));
        const auto preference = PreferenceOf(property);
        if (!preference || *preference >= best) return;
        best = *preference;
        record_[FieldNumber::ComDisplay] = std::to_string(slot);
    }

    /// The address that a property asks for, else one that is free; 0 where there is none.
    std::uint8_t BaseFor(const VCardProperty& property) const {
        const std::string label = LabelOfGroup(property);
        const auto is = [&](std::string_view type) {
            return property.HasType(type) || label.find(type) != std::string::npos;
        };
        std::array<std::uint8_t, 3> wanted{FieldNumber::HomeAddress, FieldNumber::OtherAddress,
                                           FieldNumber::BusinessAddress};
        if (property.Parameter(kAddress) == "other" || is("other"))
            wanted = {FieldNumber::OtherAddress, 0, 0};
        else if (is("work"))
            wanted = {FieldNumber::BusinessAddress, FieldNumber::OtherAddress, 0};
        else if (is("home"))
            wanted = {FieldNumber::HomeAddress, FieldNumber::OtherAddress, 0};
        for (const std::uint8_t base : wanted) {
            const auto isEmpty = [&](std::uint8_t part) { return record_[std::size_t{base} + part].empty(); };
            if (base != 0 && std::ranges::all_of(kPostalParts, isEmpty)) return base;
        }
        return 0;
    }

    /// Those that say whose they are first.
    void PlaceAddresses() {
        std::stable_partition(addresses_.begin(), addresses_.end(), [this](const VCardProperty* property) {
            return property->HasType("home") || property->HasType("work") ||
                   property->Parameter(kAddress) == "other" || !LabelOfGroup(*property).empty();
        });
        for (const VCardProperty* property : addresses_) {
            const auto parts = SplitEscaped(property->value, ';');
            WipedText street;
            for (std::size_t i = 0; i < 3 && i < parts.size(); ++i)
                AppendPart(street, ", ", Part(parts[i], ", "));
            std::array<WipedText, kAddressParts> values;
            values[0] = std::move(street);
            for (std::size_t i = 3; i < parts.size() && i < 7; ++i)
                values[i - 2] = Part(parts[i], ", ");
            if (std::ranges::all_of(values, [](const WipedText& value) { return value.empty(); })) continue;
            if (const std::uint8_t base = BaseFor(*property)) {
                for (std::size_t i = 0; i < kAddressParts; ++i)
                    record_[base + i] = std::move(values[i]);
            } else {
                WipedText all;
                for (const WipedText& value : values)
                    AppendPart(all, ", ", value);
                Note("Address", all);
            }
        }
    }

    void NameIt() {
        if (!TrimBlanks(record_.fileAs).empty()) return;
        const FileAsOffers offers = FileAsOptions(record_);
        record_.fileAs = offers.Standard();
        if (record_.fileAs.empty()) record_.fileAs = record_[FieldNumber::CompanyName];
        if (TrimBlanks(record_.fileAs).empty() && made_.problem.empty()) made_.problem = "it has no name";
    }

    void Measure() {
        for (const store::FieldSlot& slot : store::SlotsOf(record_, kAddressFields)) {
            const auto* const* text = std::get_if<std::string*>(&slot.member);
            if (text && made_.problem.empty() && store::MeasureWords(**text).TooLong())
                made_.problem = std::string(slot.rule.name) + " is longer than any record can hold";
        }
    }

    const VCard& card_;
    CardRecord made_;
    Record& record_ = made_.record;
    WipedText notes_;
    std::vector<const VCardProperty*> numbers_;
    std::vector<const VCardProperty*> addresses_;
};

/// A value with its escapes.
WipedText Escaped(std::string_view text) {
    if (text.find_first_of("\r\n\\;,") == std::string_view::npos) return text;
    WipedText out;
    out.reserve(text.size() + text.size() / 8 + 8);
    for (std::size_t i = 0; i < text.size(); ++i) {
        switch (text[i]) {
            case '\r':
                if (i + 1 < text.size() && text[i + 1] == '\n') break;
                [[fallthrough]];
            case '\n':
                out += "\\n";
                break;
            case '\\':
            case ';':
            case ',':
                out += "\\";
                [[fallthrough]];
            default:
                out += text.substr(i, 1);
        }
    }
    return out;
}

/// Folds behind whole characters.
void AppendLine(WipedText& out, std::string_view line) {
    for (bool first = true;; first = false) {
        const std::size_t width = kLineWidth - (first ? 0 : 1);
        std::size_t size = std::min(width, line.size());
        while (size < line.size() && size > 1 && (static_cast<unsigned char>(line[size]) & 0xC0U) == 0x80)
            --size;
        if (!first) out += " ";
        out += line.substr(0, size);
        out += kLineEnd;
        line.remove_prefix(size);
        if (line.empty()) return;
    }
}

void AppendProperty(WipedText& out, std::string_view head, std::string_view escaped) {
    if (escaped.empty()) return;
    if (head.size() + 1 + escaped.size() > kLineWidth) return AppendLine(out, Joined(head, ":", escaped));
    out += head;
    out += ":";
    out += escaped;
    out += kLineEnd;
}

/// Texts with semicolons between; nothing where all are empty.
WipedText Structured(std::span<const std::string_view> parts) {
    WipedText value;
    if (std::ranges::all_of(parts, &std::string_view::empty)) return value;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) value += ";";
        if (!parts[i].empty()) value += Escaped(parts[i]);
    }
    return value;
}

std::string ComHead(const Record& record, std::size_t slot) {
    const ComKind kind = KindOfLabel(record.ComLabel(slot));
    std::string head;
    switch (kind) {
        case ComKind::Email:
            head = "EMAIL";
            break;
        case ComKind::Website:
            head = "URL;VALUE=text";
            break;
        default:
            head = "TEL;VALUE=text";
    }
    switch (kind) {
        case ComKind::Work:
            head += ";TYPE=work,voice";
            break;
        case ComKind::Home:
            head += ";TYPE=home,voice";
            break;
        case ComKind::Mobile:
            head += ";TYPE=cell";
            break;
        case ComKind::Fax:
            head += ";TYPE=fax";
            break;
        case ComKind::Pager:
            head += ";TYPE=pager";
            break;
        default:
            break;
    }
    if (DisplayedSlot(record) == slot) head += ";PREF=1";
    head += ";" + std::string(kSlot) + "=" + std::to_string(slot + 1);
    return head + ";" + std::string(kKind) + "=" + std::to_string(static_cast<int>(kind));
}

}  // namespace

CardRecord RecordOfCard(const VCard& card) {
    return CardTaker(card).Take();
}

void AppendVCard(WipedText& out, const Record& record, std::string_view category) {
    AppendLine(out, "BEGIN:VCARD");
    AppendLine(out, "VERSION:4.0");
    AppendProperty(out, "FN", Escaped(record.fileAs));
    std::array<std::string_view, std::size(kNameParts)> name;
    for (std::size_t i = 0; i < name.size(); ++i)
        name[i] = record[kNameParts[i]];
    AppendProperty(out, "N", Structured(name));
    const std::array<std::string_view, 2> firm{record[FieldNumber::CompanyName],
                                               record[FieldNumber::Department]};
    AppendProperty(out, "ORG", Structured(firm));
    for (const auto& [base, head] :
         {std::pair(FieldNumber::HomeAddress, std::string("ADR;TYPE=home")),
          std::pair(FieldNumber::BusinessAddress, std::string("ADR;TYPE=work")),
          std::pair(FieldNumber::OtherAddress, "ADR;" + std::string(kAddress) + "=other")}) {
        if (!HasAddress(record, base)) continue;
        std::array<std::string_view, 7> parts;
        for (std::size_t i = 0; i < kAddressParts; ++i)
            parts[i + 2] = record[std::size_t{base} + kPostalParts[i]];
        AppendProperty(out, head, Structured(parts));
    }
    for (std::size_t slot = 0; slot < kComSlots; ++slot)
        if (!record.Com(slot).empty()) AppendProperty(out, ComHead(record, slot), Escaped(record.Com(slot)));
    if (record.birthday.serial != 0) {
        std::string day = IsoDate(DayOf(record.birthday));
        std::erase(day, '-');
        AppendProperty(out, "BDAY", day);
    }
    if (const WipedText& gender = record[FieldNumber::Gender]; gender == "M" || gender == "F")
        AppendProperty(out, "GENDER", gender);
    else if (!gender.empty())
        AppendProperty(out, "GENDER", Joined(";", Escaped(gender)));
    for (const TextProperty& text : std::span(kTexts).first(kWrittenTexts))
        if (!record[text.field].empty())
            AppendProperty(out, text.name == "ANNIVERSARY" ? "ANNIVERSARY;VALUE=text" : text.name,
                           Escaped(record[text.field]));
    AppendProperty(out, "RELATED;TYPE=spouse;VALUE=text", Escaped(record[FieldNumber::Spouse]));
    AppendProperty(out, "RELATED;TYPE=child;VALUE=text", Escaped(record[FieldNumber::Children]));
    AppendProperty(out, "CATEGORIES", Escaped(category));
    if (record.priority) AppendProperty(out, "X-BMR-PRIORITY", std::to_string(*record.priority));
    if (record.isPrivate) AppendProperty(out, "X-BMR-PRIVATE", "1");
    AppendProperty(out, "NOTE", Escaped(record[FieldNumber::Notes]));
    AppendLine(out, "END:VCARD");
}

}  // namespace bmr::address
