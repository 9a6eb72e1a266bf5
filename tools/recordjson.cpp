#include "recordjson.h"

#include <array>
#include <cmath>

#include "address/addressbook.h"
#include "address/contact.h"
#include "calendar/calendar.h"
#include "recordkinds.h"
#include "sitting.h"
#include "store/categories.h"
#include "store/record_get.h"
#include "store/startvariables.h"
#include "store/words.h"

namespace bmr::tools {
namespace {

using store::FieldRule;
using store::FieldTag;
using store::Kind;

std::string Padded(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string TimeText(int minute) {
    return Padded(minute / 60) + ":" + Padded(minute % 60);
}

/// A whole day as its date, a bare fraction as its time, both otherwise.
Json DateJson(DateValue date) {
    const Day day = DayOf(date);
    const int minute = store::MinuteOfDay({date.serial - std::floor(date.serial)});
    if (day.serial == 0) return TimeText(minute);
    return minute == 0 ? IsoDate(day) : IsoDate(day) + "T" + TimeText(minute);
}

Json MinutesJson(std::int32_t count) {
    const calendar::Minutes minutes{count};
    return IsoDate(calendar::DayOf(minutes)) + "T" + TimeText(calendar::MinuteOfDay(minutes));
}

Json ValueJson(const Value& value, Kind kind = Kind::Plain) {
    if (const auto* text = std::get_if<Bytes>(&value))
        return kind == Kind::Hex ? ToHex(*text) : ToUtf8(*text);
    if (const auto* flag = std::get_if<bool>(&value)) return *flag;
    if (const auto* number = std::get_if<std::int32_t>(&value))
        return kind == Kind::Minutes ? MinutesJson(*number) : Json(*number);
    if (const auto* real = std::get_if<double>(&value)) return *real;
    if (const auto* money = std::get_if<Money>(&value)) return FormatAmount(*money);
    if (const auto* date = std::get_if<DateValue>(&value)) return DateJson(*date);
    return nullptr;
}

bool SameForm(std::uint8_t tag, FieldTag expected) {
    const auto plain = [](std::uint8_t t) { return t == static_cast<std::uint8_t>(FieldTag::Memo) ? 10 : t; };
    return plain(tag) == plain(static_cast<std::uint8_t>(expected));
}

/// How the whole text of a word field stands to the text that the field itself holds.
store::CompanionState JudgeCompanionOf(const Row& row, std::string_view payload, const FieldRule& owner,
                                       const store::RawField& companion) {
    if (companion.tag != static_cast<std::uint8_t>(FieldTag::Memo)) return store::CompanionState::Malformed;
    const Bytes told = owner.kind == Kind::ColumnName ? Bytes(TrimBlanks(row.listText))
                                                      : TextOf(store::GetPayloadField(payload, owner.number));
    return store::JudgeCompanion(companion.value, told);
}

void AddCategoryList(Json& json, std::string_view payload) {
    Json list = Json::array();
    store::PayloadReader reader(payload);
    store::RawField field;
    while (reader.Next(field)) {
        const Value value = store::DecodeRaw(field);
        if (field.number % 2 == 0)
            list.push_back({{"number", nullptr}, {"name", ToUtf8(TextOf(value))}});
        else if (!list.empty())
            list.back()["number"] = NumberOf(value);
    }
    json["categories"] = std::move(list);
}

/// The word field whose whole text stands in the field `number`; nothing for any other field.
std::optional<FieldRule> CompanionedBy(const RecordKind& kind, std::uint8_t number) {
    if (!kind.section || number < store::CompanionOf(0)) return std::nullopt;
    const auto owner = std::ranges::find(kind.fields, number - store::CompanionOf(0), &FieldRule::number);
    return owner == kind.fields.end() || !owner->IsWords() ? std::nullopt : std::optional(*owner);
}

void AddFields(Json& json, const RecordKind& kind, const Row& row, std::string_view payload) {
    // Some leave what is empty out of the payload; a reader of the JSON finds the same fields everywhere.
    const auto* order = kind.section ? kind.section->order : nullptr;
    if (order && order->blanks == store::Blanks::LeaveOut)
        for (const FieldRule& rule : kind.fields)
            json[std::string(rule.name)] = rule.IsText() ? Json("") : Json();
    store::PayloadReader reader(payload);
    for (store::RawField field; reader.Next(field);) {
        const auto rule = RuleOf(kind, field.number);
        if (rule && rule->kind == Kind::Secret && !field.value.empty()) continue;
        if (CompanionedBy(kind, field.number)) continue;
        const std::string name =
            rule && !rule->name.empty() ? std::string(rule->name) : "field" + std::to_string(field.number);
        json[name] = rule && rule->IsWords()
                         ? Json(store::ReadWords(payload, field.number))
                         : ValueJson(store::DecodeRaw(field), rule ? rule->kind : Kind::Plain);
    }
    for (const FieldRule& rule : kind.fields)
        if (rule.kind == Kind::ColumnName)
            json[std::string(rule.name)] = store::ReadWords(payload, rule.number, row.listText);
}

/// What the list shows of an address beside its name; only its payload knows a contact of another script.
void AddContact(Json& json, const Row& row, std::string_view payload) {
    json["contact"] = store::IsMarked(row.contact)
                          ? address::AddressContactText(address::DecodeAddressRecord(payload, row.listText))
                          : WipedText(ToUtf8(TrimBlanks(row.contact)));
    json["private"] = json["Private"];
}

void AddGroup(Json& json, const store::SectionFacts& section, const Row& row, CategoryNames& names) {
    const std::int32_t number = row.fG1.value_or(0);
    if (section.kindName)
        json["kind"] = {{"number", number}, {"caption", section.kindName(number)}};
    else if (section.grouped)
        json["category"] = {{"number", number}, {"name", names.Name(row.fSec, number)}};
}

void AddCurrentUser(Json& json, const store::Session& session, const Row& row) {
    if (row.fPK != session.user.fPK) return;
    json["UserNumber"] = session.user.UserNumber;
    json["UserName"] = ToUtf8(session.user.UserName);
    json["UserFlag1"] = session.user.UserFlag1;
    json["UserFlag2"] = session.user.UserFlag2;
    json["UserValue"] = session.user.UserValue;
}

}  // namespace

std::string CategoryNames::Name(std::int32_t section, std::int32_t number) {
    auto found = names_.find(section);
    if (found == names_.end()) {
        found = names_.try_emplace(section).first;
        for (const auto& entry :
             store::FillCategories(session_, static_cast<std::uint8_t>(section), false, false, false))
            found->second[entry.number] = ToUtf8(TrimBlanks(entry.text));
    }
    const auto name = found->second.find(number);
    return name == found->second.end() ? "Unfiled" : name->second;
}

std::int32_t CategoryByName(store::Session& session, std::uint8_t section, const std::string& name) {
    const auto wanted = ToBytes(name);
    for (const auto& entry : store::FillCategories(session, section, false, true, false))
        if (wanted && CompareNoCase(TrimBlanks(entry.text), TrimBlanks(*wanted)) == 0) return entry.number;
    throw Failure("There is no category \"" + name + "\".");
}

std::string FaultOf(const Row& row, std::string_view payload) {
    const auto kind = KindOf(row.fSec, row.fSub);
    if (!kind) return "the class is unknown";
    if (!IsFieldCiphered(row)) return row.fEtx.empty() ? "the payload is missing" : "";
    const store::SectionFacts* section = kind->section;
    bool flagged = !section || !section->Rule(section->FlagField());
    int fields = 0;
    store::PayloadReader reader(payload);
    for (store::RawField field; reader.Next(field); ++fields) {
        const auto rule = RuleOf(*kind, field.number);
        if (rule && !SameForm(field.tag, rule->tag))
            return "field " + std::to_string(field.number) + " has the tag " + std::to_string(field.tag);
        if (const auto owner = CompanionedBy(*kind, field.number);
            owner && JudgeCompanionOf(row, payload, *owner, field) == store::CompanionState::Malformed)
            return "field " + std::to_string(field.number) + ", the whole text of " +
                   std::string(owner->name) + ", is malformed";
        if (section && field.number == section->FlagField()) flagged = true;
    }
    if (!reader.Clean()) return "the payload does not decode";
    if (fields == 0 && section) return "the payload is empty";
    return flagged ? "" : "the private flag is missing";
}

std::vector<std::string> NotesOf(const Row& row, std::string_view payload) {
    std::vector<std::string> notes;
    const auto kind = KindOf(row.fSec, row.fSub);
    store::PayloadReader reader(payload);
    for (store::RawField field; kind && reader.Next(field);) {
        const auto owner = CompanionedBy(*kind, field.number);
        if (owner && JudgeCompanionOf(row, payload, *owner, field) == store::CompanionState::Stale)
            notes.push_back("the whole text of " + std::string(owner->name) +
                            " belongs to an earlier one (another program has changed the record; the next "
                            "store drops it)");
    }
    return notes;
}

Json RecordJson(store::Session& session, const Row& row, std::string_view payload, CategoryNames& names) {
    Json json;
    json["fPK"] = row.fPK;
    const auto kind = KindOf(row.fSec, row.fSub);
    json["section"] = TitleOf(row.fSec, row.fSub);
    json["fSec"] = row.fSec;
    json["fSub"] = row.fSub;
    if (!IsFieldCiphered(row)) {
        if (row.fSec == 2) AddCurrentUser(json, session, row);
        return json;
    }
    if (const std::string fault = FaultOf(row, payload); !fault.empty()) {
        json["decodes"] = false;
        json["fault"] = fault;
        return json;
    }
    if (row.fSec == 10)
        AddCategoryList(json, payload);
    else
        AddFields(json, *kind, row, payload);
    if (!kind->section) return json;
    if (kind->section->columns)
        for (const store::ColumnValue& column : kind->section->columns(row))
            json[std::string(column.name)] = ValueJson(column.value);
    if (row.fSec == store::Section::Address) AddContact(json, row, payload);
    if (kind->section->inText)
        for (const store::ColumnValue& told : kind->section->inText(row.listText))
            json[std::string(told.name)] = ValueJson(told.value);
    AddGroup(json, *kind->section, row, names);
    return json;
}

std::string DumpLine(const Json& json, int indent) {
    const std::string text = json.dump(indent, ' ', false, Json::error_handler_t::replace);
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned code = ByteAt(text, i);
        const unsigned next = i + 1 < text.size() ? ByteAt(text, i + 1) : 0;
        if (code == 127) {
            out += "\\u007f";
        } else if (code == 0xC2 && next >= 0x80 && next < 0xA0) {
            out += "\\u00" + ToHex({&text[++i], 1});
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace bmr::tools
