#include "shell/draftoffer.h"

#include <cstdio>
#include <cstring>

#include "base/shortdate.h"
#include "shell/navigator.h"
#include "store/startvariables.h"

namespace bmr::shell {

namespace {

constexpr std::size_t kMostWords = 60;
constexpr const char* kEllipsis = "\xE2\x80\xA6";

std::string ClockTime(DateValue when) {
    const int minute = store::MinuteOfDay(when);
    char text[8];
    std::snprintf(text, sizeof text, "%02d:%02d", minute / 60 % 24, minute % 60);
    return text;
}

bool IsBlankByte(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

}  // namespace

WipedText FirstWords(std::string_view text, std::size_t most) {
    WipedText line;
    line.reserve(text.size() + 1 + std::strlen(kEllipsis));
    std::size_t count = 0;
    std::size_t wordEnd = 0;  // behind the last word that stands whole
    for (const char c : text) {
        const bool blank = IsBlankByte(c);
        if (blank && (line.empty() || line.back() == ' ')) continue;
        const bool starts = (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
        if (blank) wordEnd = line.size();
        if (starts && ++count > most) {
            // A single word as long as the line is cut where the line ends.
            line.resize(wordEnd > 0 ? wordEnd : line.size());
            return Joined(line, wordEnd > 0 ? " " : "", kEllipsis);
        }
        line.push_back(blank ? ' ' : c);
    }
    if (!line.empty() && line.back() == ' ') line.pop_back();
    return line;
}

Box DraftOffer(const store::Session& session, const custody::Draft& draft, custody::DraftBase base,
               const std::string& section, const LocaleFacts& facts) {
    Box box;
    box.title = "Unfinished writing";
    box.icon = BoxIcon::Question;
    box.buttons = Buttons::YesNoCancel;
    box.words = {"Continue writing", "Discard", "Later"};
    box.standard = Answer::Yes;
    box.text = "On " + FormatShortDate(DayOf(draft.when), facts.shortDate) + " at " + ClockTime(draft.when) +
               " the database was closed while you were writing in " + section + ".";
    const WipedText words = FirstWords(draft.title.view(), kMostWords);
    const bool shown = !draft.isPrivate && !NeedsPin(session, draft.section);
    if (shown && !words.empty()) box.text += Joined("\n\n\xE2\x80\x9C", words, "\xE2\x80\x9D");
    if (draft.isPrivate)
        box.text += session.ShowPrivate
                        ? "\n\nIt is private."
                        : "\n\nIt is private, and private records are hidden: to continue, the passphrase is "
                          "asked for.";
    if (base == custody::DraftBase::Changed)
        box.text += "\n\nThe record was changed since then. Saving this would replace that change.";
    if (base == custody::DraftBase::Gone)
        box.text += "\n\nThe record was deleted since then. Saving this would make a new one.";
    if (draft.cut) box.text += "\n\nIt was too long to be kept whole: the end of it is missing.";
    return box;
}

}  // namespace bmr::shell
