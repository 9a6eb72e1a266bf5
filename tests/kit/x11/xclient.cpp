#include "kit/x11/xclient.h"

#include <poll.h>
#include <xcb/xcbext.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace bmr::test {
namespace {

struct Freed {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, Freed>;

void Sleep(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

/// The next event, or nothing after a moment.
Reply<xcb_generic_event_t> NextEvent(xcb_connection_t* connection) {
    if (auto* event = xcb_poll_for_event(connection)) return Reply<xcb_generic_event_t>(event);
    pollfd ready{xcb_get_file_descriptor(connection), POLLIN, 0};
    poll(&ready, 1, 2);
    return Reply<xcb_generic_event_t>(xcb_poll_for_event(connection));
}

bool IsPress(const xcb_generic_event_t& event) {
    return (event.response_type & 0x7FU) == XCB_KEY_PRESS;
}

}  // namespace

XClient::XClient() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_)) throw std::runtime_error("no display");
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

XClient::~XClient() {
    xcb_disconnect(connection_);
}

xcb_atom_t XClient::Atom(const std::string& name) const {
    const auto cookie =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    return Reply<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(connection_, cookie, nullptr))->atom;
}

void XClient::Sync() const {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

xcb_window_t XClient::NewWindow() const {
    const xcb_window_t window = xcb_generate_id(connection_);
    const std::uint32_t values[] = {1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 900, 10, 40, 40, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    Sync();
    return window;
}

std::string XClient::Property(xcb_window_t window, const std::string& name) const {
    const auto cookie = xcb_get_property(connection_, 0, window, Atom(name), XCB_ATOM_ANY, 0, 256);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

xcb_window_t XClient::FindBelow(xcb_window_t window, const std::string& title) const {
    const Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
    if (!tree) return 0;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        if (Property(children[i], "_NET_WM_NAME") == title) return children[i];
        if (const xcb_window_t found = FindBelow(children[i], title)) return found;
    }
    return 0;
}

xcb_window_t XClient::Find(const std::string& title) const {
    return FindBelow(root_, title);
}

xcb_window_t XClient::Active() const {
    const std::string value = Property(root_, "_NET_ACTIVE_WINDOW");
    xcb_window_t window = 0;
    if (value.size() >= sizeof window) std::memcpy(&window, value.data(), sizeof window);
    return window;
}

std::uint8_t Typist::CodeOf(xcb_keysym_t keysym) const {
    const xcb_setup_t* setup = xcb_get_setup(connection());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Reply<xcb_get_keyboard_mapping_reply_t> map(xcb_get_keyboard_mapping_reply(
        connection(), xcb_get_keyboard_mapping(connection(), setup->min_keycode, count), nullptr));
    const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(map.get());
    for (int code = 0; code < count; ++code) {
        if (keysyms[code * map->keysyms_per_keycode] == keysym)
            return static_cast<std::uint8_t>(code + setup->min_keycode);
    }
    throw std::runtime_error("no such key");
}

void Typist::Press(xcb_keysym_t keysym, bool down) {
    xcb_test_fake_input(connection(), down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, CodeOf(keysym),
                        XCB_CURRENT_TIME, root(), 0, 0, 0);
    xcb_flush(connection());
}

void Typist::Tap(char c, int downMs) {
    const bool shifted = c >= 'A' && c <= 'Z';
    const auto keysym = static_cast<xcb_keysym_t>(shifted ? c + 32 : c);
    if (shifted) Press(kKeyShift, true);
    Press(keysym, true);
    Sleep(downMs);
    Press(keysym, false);
    if (shifted) Press(kKeyShift, false);
}

void Typist::Type(const std::string& text, int everyMs) {
    const int down = everyMs / 3;
    for (const char c : text) {
        Tap(c, down);
        Sleep(everyMs - down);
    }
    Sync();
}

Listener::~Listener() = default;

void Listener::Start() {
    thread_ = std::thread([this] {
        while (!stop_)
            Look();
    });
}

void Listener::Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
}

void Listener::Hear(std::uint8_t code) {
    const std::lock_guard lock(mutex_);
    heard_.push_back(code);
}

std::vector<std::uint8_t> Listener::Heard() {
    const std::lock_guard lock(mutex_);
    return heard_;
}

void Listener::Forget() {
    const std::lock_guard lock(mutex_);
    heard_.clear();
}

WindowSnooper::WindowSnooper(xcb_window_t window) {
    const std::uint32_t mask = XCB_EVENT_MASK_KEY_PRESS;
    xcb_change_window_attributes(client_.connection(), window, XCB_CW_EVENT_MASK, &mask);
    client_.Sync();
    Start();
}

void WindowSnooper::Look() {
    const auto event = NextEvent(client_.connection());
    if (event && IsPress(*event)) Hear(reinterpret_cast<xcb_key_press_event_t*>(event.get())->detail);
}

Recorder::Recorder() : context_(xcb_generate_id(control_.connection())) {
    const xcb_record_client_spec_t who = XCB_RECORD_CS_ALL_CLIENTS;
    xcb_record_range_t what{};
    what.device_events = {XCB_KEY_PRESS, XCB_KEY_PRESS};
    xcb_record_create_context(control_.connection(), context_, 0, 1, 1, &who, &what);
    control_.Sync();
    sequence_ = xcb_record_enable_context(data_.connection(), context_).sequence;
    xcb_flush(data_.connection());
    Start();
}

Recorder::~Recorder() {
    Stop();
    xcb_record_disable_context(control_.connection(), context_);
    control_.Sync();
}

void Recorder::Look() {
    void* found = nullptr;
    if (!xcb_poll_for_reply(data_.connection(), sequence_, &found, nullptr) || !found) {
        pollfd ready{xcb_get_file_descriptor(data_.connection()), POLLIN, 0};
        poll(&ready, 1, 2);
        return;
    }
    const Reply<xcb_record_enable_context_reply_t> reply(
        static_cast<xcb_record_enable_context_reply_t*>(found));
    if (reply->category != 0) return;  // 0: from the server
    const std::uint8_t* data = xcb_record_enable_context_data(reply.get());
    const int size = xcb_record_enable_context_data_length(reply.get());
    for (int at = 0; at + 32 <= size; at += 32) {
        if ((data[at] & 0x7FU) == XCB_KEY_PRESS) Hear(data[at + 1]);
    }
}

RawListener::RawListener() {
    struct {
        xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
        std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS;
    } select;
    std::free(xcb_input_xi_query_version_reply(
        client_.connection(), xcb_input_xi_query_version(client_.connection(), 2, 2), nullptr));
    xcb_input_xi_select_events(client_.connection(), client_.root(), 1, &select.head);
    client_.Sync();
    Start();
}

void RawListener::Look() {
    const auto event = NextEvent(client_.connection());
    if (!event || (event->response_type & 0x7FU) != XCB_GE_GENERIC) return;
    const auto* raw = reinterpret_cast<xcb_input_raw_key_press_event_t*>(event.get());
    if (raw->event_type == XCB_INPUT_RAW_KEY_PRESS) Hear(static_cast<std::uint8_t>(raw->detail));
}

void KeymapPoller::Look() {
    const Reply<xcb_query_keymap_reply_t> keys(
        xcb_query_keymap_reply(client_.connection(), xcb_query_keymap(client_.connection()), nullptr));
    for (unsigned code = 0; code < 256; ++code) {
        const unsigned bit = 1U << (code % 8);
        if ((keys->keys[code / 8] & bit) && !(last_[code / 8] & bit)) Hear(static_cast<std::uint8_t>(code));
    }
    std::memcpy(last_, keys->keys, sizeof last_);
    Sleep(2);
}

FocusThief::FocusThief() : window_(client_.NewWindow()) {
    xcb_map_window(client_.connection(), window_);
    client_.Sync();
    Start();
}

void FocusThief::Steal() {
    xcb_set_input_focus(client_.connection(), XCB_INPUT_FOCUS_PARENT, window_, XCB_CURRENT_TIME);
    xcb_flush(client_.connection());
}

void FocusThief::GiveTo(xcb_window_t window) {
    xcb_set_input_focus(client_.connection(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    xcb_flush(client_.connection());
}

void FocusThief::Look() {
    const auto event = NextEvent(client_.connection());
    if (event && IsPress(*event)) Hear(reinterpret_cast<xcb_key_press_event_t*>(event.get())->detail);
}

bool ClipboardClient::HasOwner(const std::string& selection) const {
    const auto cookie = xcb_get_selection_owner(connection(), Atom(selection));
    const Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection(), cookie, nullptr));
    return reply->owner != XCB_NONE;
}

std::optional<std::string> ClipboardClient::Read(const std::string& selection,
                                                 const std::string& target) const {
    const xcb_window_t window = NewWindow();
    const xcb_atom_t property = Atom("BMR_TEST");
    xcb_convert_selection(connection(), window, Atom(selection), Atom(target), property, XCB_CURRENT_TIME);
    xcb_flush(connection());
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (std::chrono::steady_clock::now() < end) {
        const auto event = NextEvent(connection());
        if (!event || (event->response_type & 0x7FU) != XCB_SELECTION_NOTIFY) continue;
        if (reinterpret_cast<xcb_selection_notify_event_t*>(event.get())->property == XCB_NONE)
            return std::nullopt;
        const auto cookie = xcb_get_property(connection(), 1, window, property, XCB_ATOM_ANY, 0, 4096);
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(), cookie, nullptr));
        const auto* bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
        return std::string(bytes, static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    }
    return std::nullopt;
}

void ClipboardClient::OwnAndHang(const std::string& selection) {
    xcb_set_selection_owner(connection(), NewWindow(), Atom(selection), XCB_CURRENT_TIME);
    Sync();
}

void ClipboardClient::OwnAndOffer(const std::string& kind) {
    const xcb_atom_t offered = Atom(kind);
    OwnAndHang("CLIPBOARD");
    answers_ = std::thread([this, offered] {
        while (!stop_) {
            const auto event = NextEvent(connection());
            if (!event || (event->response_type & 0x7FU) != XCB_SELECTION_REQUEST) continue;
            const auto* asked = reinterpret_cast<xcb_selection_request_event_t*>(event.get());
            xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, asked->requestor, asked->property,
                                XCB_ATOM_ATOM, 32, 1, &offered);
            xcb_selection_notify_event_t answer{};
            answer.response_type = XCB_SELECTION_NOTIFY;
            answer.requestor = asked->requestor;
            answer.selection = asked->selection;
            answer.target = asked->target;
            answer.property = asked->property;
            xcb_send_event(connection(), 0, asked->requestor, 0, reinterpret_cast<const char*>(&answer));
            xcb_flush(connection());
        }
    });
}

ClipboardClient::~ClipboardClient() {
    stop_ = true;
    if (answers_.joinable()) answers_.join();
}

}  // namespace bmr::test
