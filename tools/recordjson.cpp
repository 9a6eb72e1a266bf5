#include "recordjson.h"

#include <array>
#include <cmath>

#include "base/buckets.h"
#include "calendar/calendar.h"
#include "confidential/kinds.h"
#include "recordkinds.h"
#include "sitting.h"
#include "store/categories.h"
#include "store/record_get.h"

namespace bmr::tools {
namespace {

using store::FieldTag;
using store::Section;

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

Json ValueJson(const Value& value, Shape shape) {
    if (const auto* text = std::get_if<Bytes>(&value))
        return shape == Shape::Hex ? ToHex(*text) : ToUtf8(*text);
    if (const auto* flag = std::get_if<bool>(&value)) return *flag;
    if (const auto* number = std::get_if<std::int32_t>(&value))
        return shape == Shape::Minutes ? MinutesJson(*number) : Json(*number);
    if (const auto* real = std::get_if<double>(&value)) return *real;
    if (const auto* money = std::get_if<Money>(&value)) return FormatAmount(*money);
    if (const auto* date = std::get_if<DateValue>(&value)) return DateJson(*date);
    return nullptr;
}

bool SameForm(std::uint8_t tag, FieldTag expected) {
    const auto plain = [](std::uint8_t t) { return t == static_cast<std::uint8_t>(FieldTag::Memo) ? 10 : t; };
    return plain(tag) == plain(static_cast<std::uint8_t>(expected));
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

void AddFields(Json& json, const RecordKind& kind, std::string_view payload) {
    // These leave empty texts out of the payload; a reader of the JSON finds the same fields everywhere.
    if (kind.fSec == Section::Confidential)
        for (const FieldRule& rule : kind.fields)
            if (rule.tag == FieldTag::Text || rule.tag == FieldTag::Memo) json[std::string(rule.name)] = "";
    store::PayloadReader reader(payload);
    store::RawField field;
    while (reader.Next(field)) {
        const auto rule = RuleOf(kind, field.number);
        if (rule && rule->shape == Shape::Secret && !field.value.empty()) continue;
        const std::string name =
            rule && !rule->name.empty() ? std::string(rule->name) : "field" + std::to_string(field.number);
        json[name] = ValueJson(store::DecodeRaw(field), rule ? rule->shape : Shape::Plain);
    }
}

void AddTaskColumns(Json& json, const Row& row) {
    const auto date = [](bool set, std::int32_t value, DateKind kind) {
        return set ? Json(IsoDate(UnpackDate(value, kind))) : Json(nullptr);
    };
    json["priority"] = SlotOf(row.fR1, 3, 0, kMaxLong);
    json["dueDate"] = date(row.fF1, row.fR3, DateKind::First);
    json["completed"] = row.fF3;
    json["completedDate"] = date(row.fF3, row.fR2, DateKind::Last);
    json["hasNote"] = row.fF2;
}

void AddCategory(Json& json, const Row& row, CategoryNames& names) {
    const std::int32_t number = row.fG1.value_or(0);
    if (row.fSec == Section::Confidential) {
        const auto* kind = confidential::ConfidentialKindFields(number);
        json["kind"] = {{"number", number}, {"caption", kind == nullptr ? "" : std::string(kind->caption)}};
    } else if (row.fSec != Section::Calendar && row.fSec != Section::Diary) {
        json["category"] = {{"number", number}, {"name", names.Name(row.fSec, number)}};
    }
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
    const RecordKind* kind = KindOf(row.fSec, row.fSub);
    if (kind == nullptr) return "the class is unknown";
    if (!IsFieldCiphered(row)) return row.fEtx.empty() ? "the payload is missing" : "";
    store::PayloadReader reader(payload);
    store::RawField field;
    const bool section = row.fSec >= Section::Address && row.fSec != Section::Diary;
    bool flagged = !section;
    int fields = 0;
    for (; reader.Next(field); ++fields) {
        const auto rule = RuleOf(*kind, field.number);
        if (rule && !SameForm(field.tag, rule->tag))
            return "field " + std::to_string(field.number) + " has the tag " + std::to_string(field.tag);
        if (section && field.number == store::PrivateFieldOf(static_cast<std::uint8_t>(row.fSec)))
            flagged = true;
    }
    if (!reader.Clean()) return "the payload does not decode";
    if (fields == 0 && row.fSec >= Section::Address) return "the payload is empty";
    return flagged ? "" : "the private flag is missing";
}

Json RecordJson(store::Session& session, const Row& row, std::string_view payload, CategoryNames& names) {
    Json json;
    json["fPK"] = row.fPK;
    const RecordKind* kind = KindOf(row.fSec, row.fSub);
    json["section"] = kind == nullptr ? "Unknown" : std::string(kind->title);
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
        AddFields(json, *kind, payload);
    if (row.fSec == Section::Todo) AddTaskColumns(json, row);
    if (row.fSec >= Section::Address) AddCategory(json, row, names);
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
