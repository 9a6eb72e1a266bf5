#include "store/startvariables.h"

#include <cmath>
#include <limits>

#include "store/record_get.h"
#include "store/section_store.h"

namespace bmr::store {
namespace {

constexpr std::uint8_t kSettingsClass = 5;
constexpr std::uint8_t kSettingsSubclass = 1;
constexpr std::uint8_t kLabelsClass = 9;

// One list of the fields serves both ways. The order is that of the row; never change it.

template <class Visit>
void VisitFields(Settings& settings, std::int16_t& showPrivate, Visit&& visit) {
    visit(settings.Idle, FieldTag::Int16);
    for (auto& show : settings.BudgetShow)
        visit(show, FieldTag::Byte);
    visit(settings.StartSection, FieldTag::Byte);
    visit(settings.StartScreen, FieldTag::Byte);
    visit(settings.TodoShowCompleted, FieldTag::Byte);
    visit(settings.BudgetPrimary, FieldTag::Byte);
    visit(settings.DiaryShow, FieldTag::Byte);
    visit(settings.CatShow, FieldTag::Byte);
    visit(settings.calView, FieldTag::Byte);
    visit(settings.AppDuration, FieldTag::Int32);
    visit(settings.WorkdayStart, FieldTag::TimeOfDay);
    visit(settings.WorkdayEnd, FieldTag::TimeOfDay);
    visit(settings.DisplayFrom, FieldTag::TimeOfDay);
    for (auto& category : settings.LastCategory)
        visit(category, FieldTag::Int16);
    for (auto& category : settings.BudgetCategory)
        visit(category, FieldTag::Int16);
    visit(showPrivate, FieldTag::Int16);
}

Value ValueOf(DateValue time) {
    return time;
}
template <class Number>
Value ValueOf(Number number) {
    return static_cast<std::int32_t>(number);
}

bool Take(const Value& value, DateValue& variable) {
    const auto* time = std::get_if<DateValue>(&value);
    if (time == nullptr) return false;
    variable = *time;
    return true;
}
template <class Number>
bool Take(const Value& value, Number& variable) {
    const auto* number = std::get_if<std::int32_t>(&value);
    if (number == nullptr || *number < std::numeric_limits<Number>::min() ||
        *number > std::numeric_limits<Number>::max())
        return false;
    variable = static_cast<Number>(*number);
    return true;
}

/// A payload that breaks off, or holds nothing, is damaged or was written under other keys.
bool Decodes(std::string_view payload) {
    PayloadReader reader(payload);
    bool any = false;
    for (RawField field; reader.Next(field);)
        any = true;
    return any && reader.Clean();
}

}  // namespace

int ReadSettings(Session& session) {
    session.SettingsUnread = false;
    const auto payload = FetchSinglePayload(session, kSettingsClass, kSettingsSubclass);
    if (!payload) return payload.error().number;
    if (!*payload) return DefaultSettings(session);
    if (!Decodes((*payload)->view())) {
        session.settings = Settings();
        session.SettingsUnread = true;
        return 0;
    }
    std::vector<Value> fields;
    DecodeRecord(fields, (*payload)->view(), false, session.cipher);
    auto showPrivate = static_cast<std::int16_t>(session.ShowPrivate ? -1 : 0);
    std::size_t number = 0;
    VisitFields(session.settings, showPrivate, [&](auto& variable, FieldTag) {
        if (number < fields.size()) Take(fields[number], variable);
        ++number;
    });
    session.ShowPrivate = showPrivate != 0;
    return 0;
}

int WriteSettings(Session& session) {
    Bytes payload;
    auto showPrivate = static_cast<std::int16_t>(session.ShowPrivate ? -1 : 0);
    std::uint8_t number = 0;
    bool whole = true;
    VisitFields(session.settings, showPrivate, [&](auto& variable, FieldTag tag) {
        whole = AppendField(payload, number++, ValueOf(variable), tag, session.ports.random) && whole;
    });
    if (!whole) return engine::EngineNumber::Failed;
    const int error = StoreSinglePayload(session, kSettingsClass, kSettingsSubclass, payload);
    if (error == 0) session.SettingsUnread = false;
    return error;
}

int WriteSettingsAtClose(Session& session) {
    return session.SettingsUnread ? 0 : WriteSettings(session);
}

int DefaultSettings(Session& session) {
    session.settings = Settings();
    session.ShowPrivate = true;
    return session.ProgramDb->ReadOnly() ? 0 : WriteSettings(session);
}

UserLabels ReadUserLabels(Session& session, std::uint8_t user) {
    UserLabels labels = BuiltInUserLabels();
    const auto payload = FetchSinglePayload(session, kLabelsClass, user);
    if (!payload || !*payload) return labels;
    PayloadReader reader((*payload)->view());
    for (RawField field; reader.Next(field);)
        if (field.number < labels.size() && field.tag == static_cast<std::uint8_t>(FieldTag::Text))
            labels[field.number] = Bytes(field.value);
    return labels;
}

int WriteUserLabels(Session& session, std::uint8_t user, const UserLabels& labels) {
    Bytes payload;
    std::uint8_t number = 0;
    for (const Bytes& label : labels)
        if (!AppendField(payload, number++, label, FieldTag::Text, session.ports.random))
            return engine::EngineNumber::Failed;
    return StoreSinglePayload(session, kLabelsClass, user, payload);
}

int MinuteOfDay(DateValue time) {
    constexpr int kSecondsPerDay = 86400;
    const double fraction = time.serial - std::floor(time.serial);
    const auto seconds = static_cast<int>(std::lround(fraction * kSecondsPerDay));
    return seconds % kSecondsPerDay / 60;
}

}  // namespace bmr::store
