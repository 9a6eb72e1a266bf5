#include "shell/navigator.h"

#include "base/languageus.h"
#include "base/ports.h"
#include "custody/users.h"
#include "store/sections.h"
#include "store/session.h"

namespace bmr::shell {

namespace {

using store::Section;

/// `StartScreen` of the settings.
constexpr std::uint8_t kGotoSection = 1;
constexpr std::uint8_t kLastSectionUsed = 2;

/// The PIN rule. True lets the person in.
bool PassPin(store::Session& session, std::uint8_t section) {
    if (!NeedsPin(session, section)) return true;
    // What the PIN is cannot be read, nor which sections it guards.
    if (session.pin.Unread) return custody::VerifyUser(session, Msg(159));
    const std::string title(store::FactsOf(section)->name);
    if (custody::PinPrompt(session, title) != custody::PinAnswer::Right) return false;
    if (!session.pin.PINeveryaccess) session.PinPassed |= static_cast<std::int32_t>(SectionBit(section));
    return true;
}

}  // namespace

bool NeedsPin(const store::Session& session, std::uint8_t section) {
    if (section < Section::Address || section > Section::Confidential) return false;
    if (session.pin.Unread) return true;
    const auto bit = static_cast<std::int32_t>(SectionBit(section));
    if ((session.pin.PinApp & bit) == 0) return false;
    return session.pin.PINeveryaccess || (session.PinPassed & bit) == 0;
}

bool optSection_Click(store::Session& session, const SectionScreen& screen, SectionSet available,
                      std::uint8_t index) {
    screen.HideShow(false);
    const bool exists = index == Section::None || (SectionBit(index) & available) != 0;
    if (!exists || !PassPin(session, index)) {
        // The idle end may have closed everything while the prompt stood.
        if (!session.DatabaseOpen) return false;
        screen.PressButton(session.SectionCode);
        screen.HideShow(true);
        return false;
    }
    if (index == Section::Diary && !session.ShowPrivate) session.ports.prompter.Ask(MessageBox(143));
    if (!session.DatabaseOpen) return false;
    if (session.SectionCode != Section::None) screen.CloseSection();
    session.SectionCode = index;
    // The last section used is kept where the chosen one stands: only one of the two is ever asked for.
    if (index != Section::None && session.settings.StartScreen == kLastSectionUsed)
        session.settings.StartSection = index;
    screen.PressButton(index);
    screen.ShowSection(index);
    screen.HideShow(true);
    return true;
}

std::uint8_t StartSectionOf(const store::Session& session, SectionSet available) {
    const auto& settings = session.settings;
    if (settings.StartScreen != kGotoSection && settings.StartScreen != kLastSectionUsed)
        return Section::None;
    return (SectionBit(settings.StartSection) & available) != 0 ? settings.StartSection : Section::None;
}

bool mnuViewShowPrivate_Switch(store::Session& session) {
    if (session.ShowPrivate)
        session.ShowPrivate = false;
    else if (!custody::VerifyUser(session, Msg(159) + " to show the private records"))
        return false;
    else
        session.ShowPrivate = true;
    return true;
}

std::string ShowPrivateCaption(const store::Session& session) {
    return session.ShowPrivate ? "Hide Private Records" : "Show Private Records";
}

}  // namespace bmr::shell
