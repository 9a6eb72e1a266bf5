// Written from the platform's documentation. It has never been compiled or run by us: no such machine is at
// hand.
#include <Carbon/Carbon.h>

#include "kit/platform.h"

namespace bmr::kit {
namespace {

/// Secure event input is this platform's counterpart of a keyboard grab. Decoys are not sent: the platform
/// asks the user for the right to inject keys, and a prompt that asks for it would be worse than none.
class MacKeyPort final : public KeyPort {
  public:
    ~MacKeyPort() override { Grab(nullptr, false); }

    bool Usable() const override { return false; }
    bool InjectsIntoSystem() const override { return false; }
    bool Grab(QWindow*, bool on) override {
        if (on != secure_)
            secure_ = on ? EnableSecureEventInput() == noErr : DisableSecureEventInput() != noErr;
        return secure_;
    }
    unsigned ScanFor(int) override { return 0; }
    void Look() override {}
    bool IsDown(unsigned) const override { return false; }
    bool ShiftHeld() const override { return false; }
    bool CommandHeld() const override { return false; }
    std::optional<bool> CapsLock() override { return (GetCurrentKeyModifiers() & alphaLock) != 0; }
    void Aim(QObject*) override {}
    void Key(unsigned, bool) override {}
    void Flush() override {}
    bool Fence(QWindow*, std::function<void()>) override { return false; }
    std::string Describe() const override {
        return "macOS: secure event input is asked for while the dialog is in front. No decoys are sent. "
               "This means "
               "has not been tried by its makers.";
    }

  private:
    bool secure_ = false;
};

}  // namespace

std::unique_ptr<KeyPort> MakeMacKeyPort() {
    return std::make_unique<MacKeyPort>();
}

}  // namespace bmr::kit
