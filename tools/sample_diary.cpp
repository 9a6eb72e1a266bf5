#include <vector>

#include "diary/page.h"
#include "sample.h"

namespace bmr::tools {
namespace {

constexpr std::string_view kDays[] = {"Walked along the canal, herons again.",
                                      "Rain all day. Finished the second chapter.",
                                      "Mina lost her first tooth and would not let anybody see it.",
                                      "Long call with Aunt Nelly; she wants the recipe of the plum cake.",
                                      "Back late. The train stood an hour in front of the bridge.",
                                      "Heute endlich die Äpfel geerntet, zwei Körbe voll.",
                                      "Streit mit dem Vermieter wegen der Heizung – er kommt am Montag.",
                                      "Il a neigé toute la nuit; les enfants sont sortis avant le café.",
                                      "Dîner chez Élodie, on a parlé jusqu'à deux heures.",
                                      "Hoy por fin silencio. He leído toda la tarde en el patio.",
                                      "Mål: svømme hver uge. Første gang i dag, 600 meter.",
                                      "Oggi niente di nuovo, e va bene così."};
constexpr std::string_view kScriptDays[] = {"Spacer nad Wisłą, mgła tak gęsta, że nie było widać mostu.",
                                            "Σήμερα πρώτη φορά στη θάλασσα φέτος.",
                                            "Весь день шёл снег, вечером пили чай с вареньем.",
                                            "今天终于收到了外婆的信。",
                                            "雨の音を聞きながら手紙を書いた。",
                                            "오늘은 처음으로 김치를 담갔다.",
                                            "اليوم زرنا البحر وكان الجو جميلا.",
                                            "היום קראתי עד הלילה. 🎉"};

std::string SamplePage(SampleContext& context) {
    std::string text;
    for (std::int32_t left = Between(context, 1, 4); left > 0; --left) {
        if (!text.empty()) text += "\r\n\r\n";
        const bool script = context.unicode && Chance(context, 30);
        text += script ? Pick(context, kScriptDays) : Pick(context, kDays);
        if (Chance(context, 35)) text += " " + SampleNote(context);
    }
    return text;
}

}  // namespace

int FillDiary(SampleContext& context, std::int32_t records) {
    std::vector<diary::Page> pages(static_cast<std::size_t>(records));
    Day day = context.today;
    for (diary::Page& page : pages) {
        page.day = day;
        page.text = SamplePage(context);
        // Most days have a page, and now and then a holiday has none.
        day.serial -= Chance(context, 4) ? Between(context, 2, 12) : Chance(context, 25) ? 2 : 1;
    }
    return diary::AddRecords(context.session, pages);
}

}  // namespace bmr::tools
