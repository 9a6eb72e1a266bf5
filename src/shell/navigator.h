#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace bmr::store {
struct Session;
}

namespace bmr::shell {

/// Sections that have a screen in this build: bit k for section 11 + k.
using SectionSet = std::uint32_t;

constexpr SectionSet SectionBit(std::uint8_t section) {
    return section >= 11 && section <= 19 ? 1u << (section - 11) : 0;
}

/// What the main window does for a switch of section.
struct SectionScreen {
    std::function<void(bool show)> HideShow;
    /// Closes the form of the open section; its end stores what is pending.
    std::function<void()> CloseSection;
    /// Shows the form of `section`; 0 is the splash.
    std::function<void(std::uint8_t section)> ShowSection;
    /// Makes the button of `section` the pressed one; 0 presses none.
    std::function<void(std::uint8_t section)> PressButton;
};

/// Whether the PIN is to be asked before `section` opens: the address book to the confidential records, where
/// the user set it, once a session or at each access. While the PIN record cannot be read, each of them at
/// each access, and by the passphrase.
bool NeedsPin(const store::Session& session, std::uint8_t section);

/// Switches to section `index`, 0 for none. False when the click was taken back: a section that this build
/// lacks, a PIN that was wrong or not given. Then the open section stays with its button pressed.
bool optSection_Click(store::Session& session, const SectionScreen& screen, SectionSet available,
                      std::uint8_t index);

/// The section that the settings name for after the login; 0 for the start screen, and for a section that
/// this build lacks.
std::uint8_t StartSectionOf(const store::Session& session, SectionSet available);

/// Shows or hides the private records; to show them the passphrase is asked. True when it changed.
bool mnuViewShowPrivate_Switch(store::Session& session);
/// What the menu entry reads.
std::string ShowPrivateCaption(const store::Session& session);

}  // namespace bmr::shell
