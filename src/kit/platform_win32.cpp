// Written in the platform's own terms, without Qt, so that it compiles wherever a cross compiler is.
#include "kit/platform.h"
#include "shell/keyrules.h"

// The order matters: this header wants no other before it and defines the types of the rest.
#include <windows.h>

#include <array>
#include <utility>

namespace bmr::kit {
namespace {

bool HighBit(int virtualKey) {
    return (GetKeyState(virtualKey) & 0x8000) != 0;
}

/// The character of a key by the layout in use. Dead keys give nothing until their letter comes.
std::u16string KeyToText(unsigned virtualKey, unsigned scan, bool upperCase, bool altGr) {
    std::array<BYTE, 256> state{};
    if (upperCase) state[VK_SHIFT] = 0x80;
    if (altGr) state[VK_CONTROL] = state[VK_MENU] = 0x80;
    std::array<wchar_t, 8> text{};
    const int count =
        ToUnicode(virtualKey, scan, state.data(), text.data(), static_cast<int>(text.size()), 0);
    std::u16string typed;
    for (int i = 0; i < count; ++i)
        typed += static_cast<char16_t>(text[static_cast<std::size_t>(i)]);
    return typed;
}

/// The low-level hook takes typing before any hook that was set earlier; decoys go through the ordinary queue
/// while it is off.
class Win32KeyPort final : public KeyPort {
  public:
    Win32KeyPort() { atWork_ = this; }
    ~Win32KeyPort() override {
        Unhook();
        atWork_ = nullptr;
    }
    Win32KeyPort(const Win32KeyPort&) = delete;
    Win32KeyPort& operator=(const Win32KeyPort&) = delete;

    bool Usable() const override { return true; }
    bool InjectsIntoSystem() const override { return true; }
    bool Grab(QWindow*, bool on) override;
    bool NoiseNeedsRelease() const override { return true; }
    unsigned ScanFor(int virtualKey) override {
        return MapVirtualKeyW(static_cast<UINT>(virtualKey), MAPVK_VK_TO_VSC);
    }
    void Look() override {}
    bool IsDown(unsigned scan) const override {
        return (GetAsyncKeyState(static_cast<int>(MapVirtualKeyW(scan, MAPVK_VSC_TO_VK))) & 0x8000) != 0;
    }
    bool ShiftHeld() const override { return HighBit(VK_SHIFT); }
    bool CommandHeld() const override {
        return HighBit(VK_CONTROL) || HighBit(VK_MENU) || HighBit(VK_LWIN) || HighBit(VK_RWIN);
    }
    std::optional<bool> CapsLock() override { return (GetKeyState(VK_CAPITAL) & 1) != 0; }
    void Aim(QObject*) override {}
    void Key(unsigned scan, bool down) override {
        const UINT virtualKey = MapVirtualKeyW(scan, MAPVK_VSC_TO_VK);
        keybd_event(static_cast<BYTE>(virtualKey), static_cast<BYTE>(scan), down ? 0 : KEYEVENTF_KEYUP, 0);
    }
    void Flush() override {}
    bool Fence(QWindow*, std::function<void()>) override { return false; }
    void OnTyped(std::function<void(std::u16string, bool)> typed) override { typed_ = std::move(typed); }
    std::string Describe() const override {
        return "Windows: while the dialog is in front, a low-level hook takes typing before hooks that were "
               "set "
               "earlier. Hooks set later and drivers still see keys: decoys are mixed in for them.";
    }

  private:
    static LRESULT CALLBACK LowLevelKeys(int code, WPARAM message, LPARAM data);
    bool Take(int code, WPARAM message, const KBDLLHOOKSTRUCT& key);
    void Unhook() {
        if (HookHandle) UnhookWindowsHookEx(HookHandle);
        HookHandle = nullptr;
    }

    static inline Win32KeyPort* atWork_ = nullptr;  ///< the hook procedure gets no pointer of ours
    HHOOK HookHandle = nullptr;
    shell::KeyRules rules_;
    std::function<void(std::u16string, bool)> typed_;
};

bool Win32KeyPort::Grab(QWindow*, bool on) {
    if (!on) {
        Unhook();
    } else if (!HookHandle) {
        rules_.Reset();
        HookHandle = SetWindowsHookExA(WH_KEYBOARD_LL, &LowLevelKeys, GetModuleHandleA(nullptr), 0);
    }
    return HookHandle != nullptr;
}

LRESULT CALLBACK Win32KeyPort::LowLevelKeys(int code, WPARAM message, LPARAM data) {
    const auto* key = reinterpret_cast<const KBDLLHOOKSTRUCT*>(data);
    if (atWork_ && code == 0 && atWork_->Take(code, message, *key)) return -1;
    return CallNextHookEx(nullptr, code, message, data);
}

bool Win32KeyPort::Take(int code, WPARAM message, const KBDLLHOOKSTRUCT& key) {
    const shell::Modifiers held{.ctrl = HighBit(VK_CONTROL),
                                .alt = HighBit(VK_MENU),
                                .meta = HighBit(VK_LWIN) || HighBit(VK_RWIN),
                                .caps = (GetKeyState(VK_CAPITAL) & 1) != 0};
    const auto decision = rules_.LowLevelKeys(code, static_cast<unsigned>(message), key.vkCode, held);
    switch (decision.action) {
        case shell::KeyAction::Pass:
            return false;
        case shell::KeyAction::PassAndRearm:
            if (typed_) typed_({}, true);
            return false;
        case shell::KeyAction::Swallow:
            return true;
        case shell::KeyAction::Insert:
            break;
    }
    if (!typed_) return false;
    const auto text = KeyToText(key.vkCode, key.scanCode, decision.UpperCase, held.ctrl && held.alt);
    if (!text.empty()) typed_(text, false);
    return true;
}

}  // namespace

std::unique_ptr<KeyPort> MakeWin32KeyPort() {
    return std::make_unique<Win32KeyPort>();
}

}  // namespace bmr::kit
