#include "sample.h"

#include <array>

#include "base/bytes.h"

namespace bmr::tools {
namespace {

constexpr std::array<std::string_view, 24> kSentences = {
    "Ask for a written offer first.",
    "The number is on the fridge door.",
    "Last time it took two hours.",
    "Bring the blue folder.",
    "Not before ten in the morning.",
    "Costs about €35, cash only.",
    "Compare with what we paid last year.",
    "The key lies under the flower pot.",
    "Mrs. Okoye said that any day but Monday is fine.",
    "Remember the receipt, it is worth money.",
    "Call ahead – they close early in winter.",
    "Half of it is done already.",
    "If it rains, do it in the shed.",
    "Two copies, signed on the last page.",
    "Take measurements: width, height and depth.",
    "Jürgen has the ladder.",
    "The old one may be thrown away.",
    "Look up the opening hours.",
    "Needs a second pair of hands.",
    "Write down the serial number before it goes.",
    "Leave the door of the cellar open.",
    "See the letter of the fourteenth.",
    "Pay by transfer, not by card.",
    "Good enough if it holds until spring.",
};

constexpr std::array<std::string_view, 16> kScripts = {
    "Łukasz Żółciński",    "Zażółć gęślą jaźń", "Dvořák: Novosvětská", "Szőlő és dió",
    "Η αυλή το φθινόπωρο", "Λάδι από τον θείο", "Дача, список дел",    "Щи по-бабушкиному",
    "Ďakujem, škôlka",     "北京的茶馆",        "大阪の地図",          "서울 여행",
    "مواعيد الطبيب",       "מתכון לחלה",        "Đà Nẵng, chợ đêm",    "Party 🎉 bei Ülkü",
};

constexpr SampleSection kSections[] = {
    {store::Section::Memo, "memo", FillMemos},
    {store::Section::Todo, "todo", FillTasks},
    {store::Section::Confidential, "confidential", FillConfidential},
    {store::Section::Calendar, "calendar", FillCalendar},
    {store::Section::Address, "address", FillAddresses},
    {store::Section::Diary, "diary", FillDiary},
    {store::Section::Budget1, "budget", FillBudgets},
};

}  // namespace

std::string_view Pick(SampleContext& context, std::span<const std::string_view> list) {
    return list[static_cast<std::size_t>(DrawBelow(context.random, static_cast<std::int32_t>(list.size())))];
}

bool Chance(SampleContext& context, int percent) {
    return DrawBelow(context.random, 100) < percent;
}

std::int32_t Between(SampleContext& context, std::int32_t low, std::int32_t high) {
    return low + DrawBelow(context.random, high - low + 1);
}

std::string SampleNote(SampleContext& context) {
    std::string note;
    for (std::int32_t left = Between(context, 1, 3); left > 0; --left) {
        if (!note.empty()) note += Chance(context, 30) ? "\r\n" : " ";
        note += Pick(context, kSentences);
    }
    return note;
}

std::string AnyScript(SampleContext& context, std::string text) {
    if (!context.unicode || !Chance(context, 40)) return text;
    std::string other(Pick(context, kScripts));
    return Chance(context, 50) ? other + ", " + text : other;
}

Bytes Page(std::string_view utf8) {
    return ToBytes(utf8).value_or(Bytes());
}

std::span<const SampleSection> SampleSections() {
    return kSections;
}

}  // namespace bmr::tools
