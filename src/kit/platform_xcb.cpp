#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>
#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMetaObject>
#include <QWindow>

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdlib>
#include <cstring>
#include <set>
#include <vector>

#include "kit/platform.h"

namespace bmr::kit {
namespace {

template <class T>
struct Freed {
    void operator()(T* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, Freed<T>>;

constexpr xcb_keysym_t kShiftLeft = 0xFFE1;
constexpr xcb_keysym_t kShiftRight = 0xFFE2;
constexpr xcb_keysym_t kCompose = 0xFF20;

/// Keys that begin a composed character: the next key would be eaten by it.
bool BeginsComposing(xcb_keysym_t keysym) {
    return keysym == kCompose || (keysym >= 0xFE50 && keysym <= 0xFE8F);
}

struct Position {
    int virtualKey;
    xcb_keysym_t keysym;
    xcb_keycode_t code;  ///< where the key lies on the keyboards that nearly everybody has
};

/// For layouts that have no such character without Shift (non-Latin ones, "=" of a German one).
constexpr std::array<Position, 42> kPositions = {{
    {'A', 'a', 38}, {'B', 'b', 56}, {'C', 'c', 54}, {'D', 'd', 40}, {'E', 'e', 26}, {'F', 'f', 41},
    {'G', 'g', 42}, {'H', 'h', 43}, {'I', 'i', 31}, {'J', 'j', 44}, {'K', 'k', 45}, {'L', 'l', 46},
    {'M', 'm', 58}, {'N', 'n', 57}, {'O', 'o', 32}, {'P', 'p', 33}, {'Q', 'q', 24}, {'R', 'r', 27},
    {'S', 's', 39}, {'T', 't', 28}, {'U', 'u', 30}, {'V', 'v', 55}, {'W', 'w', 25}, {'X', 'x', 53},
    {'Y', 'y', 29}, {'Z', 'z', 52}, {'0', '0', 19}, {'1', '1', 10}, {'2', '2', 11}, {'3', '3', 12},
    {'4', '4', 13}, {'5', '5', 14}, {'6', '6', 15}, {'7', '7', 16}, {'8', '8', 17}, {'9', '9', 18},
    {' ', ' ', 65}, {187, '=', 21}, {188, ',', 59}, {189, '-', 20}, {190, '.', 60}, {191, '/', 61},
}};

/// The keys of the server's present layout.
struct Layout {
    xcb_keycode_t first = 0;
    unsigned width = 0;  ///< keysyms of one key
    std::vector<xcb_keysym_t> keysyms;

    bool Has(xcb_keycode_t code) const {
        return code >= first && static_cast<std::size_t>(code - first + 1) * width <= keysyms.size();
    }
    xcb_keysym_t At(xcb_keycode_t code, unsigned column) const {
        return Has(code) && column < width ? keysyms[static_cast<std::size_t>(code - first) * width + column]
                                           : 0;
    }
    bool Composes(xcb_keycode_t code) const {
        for (unsigned column = 0; column < width; ++column) {
            if (BeginsComposing(At(code, column))) return true;
        }
        return false;
    }
    xcb_keycode_t CodeOf(xcb_keysym_t keysym) const {
        for (std::size_t i = 0; i < keysyms.size(); i += width) {
            if (keysyms[i] == keysym) return static_cast<xcb_keycode_t>(first + i / width);
        }
        return 0;
    }
};

/// Keyboard grab by Qt, decoys by the test extension over Qt's own connection, so that they stand in one
/// order with all that Qt asks of the server.
class XcbKeyPort final : public KeyPort, public QAbstractNativeEventFilter {
  public:
    explicit XcbKeyPort(xcb_connection_t* connection) : connection_(connection) {
        const xcb_setup_t* setup = xcb_get_setup(connection_);
        root_ = xcb_setup_roots_iterator(setup).data->root;
        const char name[] = "_BRINDLEMERE_FENCE";
        const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
            connection_, xcb_intern_atom(connection_, 0, sizeof name - 1, name), nullptr));
        fenceAtom_ = atom ? atom->atom : 0;
        ReadLayout();
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
    ~XcbKeyPort() override {
        if (QCoreApplication::instance()) QCoreApplication::instance()->removeNativeEventFilter(this);
    }
    XcbKeyPort(const XcbKeyPort&) = delete;
    XcbKeyPort& operator=(const XcbKeyPort&) = delete;

    bool Usable() const override { return fenceAtom_ != 0 && shift_ != 0; }
    bool InjectsIntoSystem() const override { return true; }
    bool Grab(QWindow* window, bool on) override;
    unsigned ScanFor(int virtualKey) override;
    void Look() override;
    bool IsDown(unsigned scan) const override { return down_[scan & 255U]; }
    bool ShiftHeld() const override { return (down_ & shifts_).any(); }
    bool CommandHeld() const override { return composing_ || (down_ & commands_).any(); }
    std::optional<bool> CapsLock() override;
    void Aim(QObject*) override {}
    void Key(unsigned scan, bool down) override;
    void Flush() override { xcb_flush(connection_); }
    bool Fence(QWindow* window, std::function<void()> reached) override;
    std::string Describe() const override {
        return "X11: the keyboard is taken while the dialog is in front, so other windows and hot keys get "
               "nothing. "
               "Programs that read raw input, record it or poll the key map still see keys: decoys are mixed "
               "in for "
               "them.";
    }

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override;

  private:
    void ReadLayout();
    void ReadModifiers();

    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
    xcb_atom_t fenceAtom_ = 0;
    std::uint32_t fenceNumber_ = 0;
    const QWindow* grabbed_ = nullptr;  ///< only compared
    std::function<void()> reached_;
    Layout layout_;
    xcb_keycode_t left_ = 0, right_ = 0;
    xcb_keycode_t shift_ = 0;  ///< the one of the two that the user does not use
    std::bitset<256> down_, shifts_, commands_;
    std::set<xcb_keycode_t> inFlight_;  ///< decoys that the fence has not yet confirmed
    bool composing_ = false;            ///< the user's dead key waits for its letter
};

bool XcbKeyPort::Grab(QWindow* window, bool on) {
    if (!window || !window->isVisible()) return false;
    if (on && window != grabbed_) ReadLayout();
    grabbed_ = on ? window : nullptr;
    return window->setKeyboardGrabEnabled(on) && on;
}

void XcbKeyPort::ReadLayout() {
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Reply<xcb_get_keyboard_mapping_reply_t> map(xcb_get_keyboard_mapping_reply(
        connection_, xcb_get_keyboard_mapping(connection_, setup->min_keycode, count), nullptr));
    if (!map || map->keysyms_per_keycode == 0) return;
    const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(map.get());
    layout_ = {setup->min_keycode,
               map->keysyms_per_keycode,
               {keysyms, keysyms + xcb_get_keyboard_mapping_keysyms_length(map.get())}};
    left_ = layout_.CodeOf(kShiftLeft);
    right_ = layout_.CodeOf(kShiftRight);
    if (right_ == 0) right_ = left_;
    if (shift_ != left_) shift_ = right_;
    ReadModifiers();
}

void XcbKeyPort::ReadModifiers() {
    shifts_.reset();
    commands_.reset();
    const Reply<xcb_get_modifier_mapping_reply_t> map(
        xcb_get_modifier_mapping_reply(connection_, xcb_get_modifier_mapping(connection_), nullptr));
    if (!map) return;
    const xcb_keycode_t* codes = xcb_get_modifier_mapping_keycodes(map.get());
    const unsigned each = map->keycodes_per_modifier;
    // In the protocol's order: Shift, Lock, Control, Mod1 to Mod5. Locks are no commands: nobody holds them.
    for (unsigned row = 0; row < 8; ++row) {
        for (unsigned i = 0; i < each; ++i) {
            const xcb_keycode_t code = codes[row * each + i];
            const xcb_keysym_t keysym = layout_.At(code, 0);
            const bool isLock = keysym == 0xFF7F || keysym == 0xFF14 || keysym == 0xFFE5;
            if (code == 0 || isLock || row == 1) continue;
            if (row == 0 || keysym == kShiftLeft || keysym == kShiftRight) {
                shifts_.set(code);
            } else {
                commands_.set(code);
            }
        }
    }
}

unsigned XcbKeyPort::ScanFor(int virtualKey) {
    if (virtualKey == kShift) return shift_;
    const auto* found = std::find_if(kPositions.begin(), kPositions.end(),
                                     [=](const Position& p) { return p.virtualKey == virtualKey; });
    if (found == kPositions.end()) return 0;
    xcb_keycode_t code = layout_.CodeOf(found->keysym);
    if (code == 0) code = found->code;
    return layout_.At(code, 0) != 0 && !layout_.Composes(code) ? code : 0;
}

void XcbKeyPort::Look() {
    const Reply<xcb_query_keymap_reply_t> keys(
        xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr));
    down_.reset();
    for (unsigned code = 0; keys && code < 256; ++code)
        down_.set(code, (keys->keys[code / 8] >> (code % 8)) & 1);
}

std::optional<bool> XcbKeyPort::CapsLock() {
    const Reply<xcb_query_pointer_reply_t> state(
        xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root_), nullptr));
    if (!state) return std::nullopt;
    return (state->mask & XCB_MOD_MASK_LOCK) != 0;
}

void XcbKeyPort::Key(unsigned scan, bool down) {
    const auto code = static_cast<xcb_keycode_t>(scan);
    inFlight_.insert(code);
    xcb_test_fake_input(connection_, down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code, XCB_CURRENT_TIME, root_, 0,
                        0, 0);
}

bool XcbKeyPort::Fence(QWindow* window, std::function<void()> reached) {
    if (!window) return false;
    reached_ = std::move(reached);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window->winId());
    message.type = fenceAtom_;
    message.data.data32[0] = ++fenceNumber_;
    xcb_send_event(connection_, 0, message.window, 0, reinterpret_cast<const char*>(&message));
    xcb_flush(connection_);
    return true;
}

bool XcbKeyPort::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (type != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const unsigned kind = event->response_type & 0x7FU;
    if (kind == XCB_MAPPING_NOTIFY) ReadLayout();
    if (kind == XCB_CLIENT_MESSAGE) {
        const auto* fence = reinterpret_cast<const xcb_client_message_event_t*>(event);
        if (fence->type != fenceAtom_) return false;
        if (fence->data.data32[0] != fenceNumber_ || !reached_) return true;
        inFlight_.clear();
        // Qt has read the keys that came before, but hands them out later: stand behind them once more.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [reached = std::move(reached_)] { reached(); },
            Qt::QueuedConnection);
        reached_ = nullptr;
        return true;
    }
    if (kind != XCB_KEY_PRESS && kind != XCB_KEY_RELEASE) return false;
    const xcb_keycode_t code = reinterpret_cast<const xcb_key_press_event_t*>(event)->detail;
    // The user began an accented letter in the middle of a burst: a decoy in between would end it, so those
    // on the way vanish here and no more are sent until the letter came.
    if (inFlight_.count(code)) return composing_ && code != shift_;
    if (kind == XCB_KEY_PRESS && shifts_[code]) shift_ = code == right_ ? left_ : right_;
    if (kind == XCB_KEY_PRESS && !shifts_[code] && !commands_[code]) composing_ = layout_.Composes(code);
    return false;
}

}  // namespace

std::unique_ptr<KeyPort> MakeXcbKeyPort() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = x11 ? x11->connection() : nullptr;
    if (!connection) return nullptr;
    const xcb_query_extension_reply_t* test = xcb_get_extension_data(connection, &xcb_test_id);
    if (!test || !test->present) return nullptr;
    return std::make_unique<XcbKeyPort>(connection);
}

}  // namespace bmr::kit
