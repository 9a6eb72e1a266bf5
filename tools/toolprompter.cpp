#include "toolprompter.h"

#include <chrono>
#include <thread>

#include "base/languageus.h"
#include "custody/passphrase.h"
#include "shell/passcheck.h"

namespace bmr::tools {

Answer ToolPrompter::Ask(const Box& box) {
    last_ = box;
    if (box.buttons == Buttons::Ok && box.icon == BoxIcon::Warning) warnings_.push_back(box.text);
    switch (box.buttons) {
        case Buttons::Ok:
            return Answer::Ok;
        case Buttons::YesNo:
            return Answer::No;
        case Buttons::OkCancel:
        case Buttons::YesNoCancel:
        case Buttons::RetryCancel:
            break;
    }
    return Answer::Cancel;
}

bool ToolPrompter::AskNew(const PassphraseRequest& request, Secret& typed) {
    if (!input_.Read(request.prompt + " ", typed)) {
        problem_ = input_.Problem();
        return false;
    }
    // Who asked refuses one that is too short; nobody need judge it or type it twice.
    if (!input_.Interactive() || typed.size() < custody::kShortestPassphrase) return true;
    if (request.checkQuality && shell::IsWeak(typed.view()) && !input_.Confirm(Msg(158))) {
        problem_ = Msg(45);
        return false;
    }
    Secret again;
    if (!input_.Read(Msg(42) + " ", again)) {
        problem_ = input_.Problem();
        return false;
    }
    if (again.view() != typed.view()) {
        problem_ = "The two passphrases differ.";
        return false;
    }
    return true;
}

bool ToolPrompter::AskSecret(const PassphraseRequest& request, Secret& typed) {
    if (request.confirm) return AskNew(request, typed);
    if (!current_.empty()) {
        typed = current_.Copy();
        return true;
    }
    if (!input_.Read(request.prompt + ": ", typed)) {
        problem_ = input_.Problem();
        return false;
    }
    if (keep_) current_ = typed.Copy();
    return true;
}

void ToolPrompter::PauseAfterFailure() {
    // The same price for a guess as in the window.
    std::this_thread::sleep_for(std::chrono::milliseconds(2000));
}

}  // namespace bmr::tools
