#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>
#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>
#include <string_view>
#include <vector>

#include "kit/platform.h"

namespace bmr::kit {
namespace {

struct Freed {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, Freed>;

/// Asks the owner for the list of kinds and takes the answer when it comes; one that never answers costs
/// nothing.
class XcbClipboardProbe final : public ClipboardProbe, public QAbstractNativeEventFilter {
  public:
    explicit XcbClipboardProbe(xcb_connection_t* connection)
        : connection_(connection), window_(xcb_generate_id(connection)) {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        xcb_create_window(connection_, 0, window_, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        clipboard_ = Atom("CLIPBOARD");
        targets_ = Atom("TARGETS");
        answer_ = Atom("_BRINDLEMERE_KINDS");
        for (const std::string_view name : {"UTF8_STRING", "STRING", "TEXT", "COMPOUND_TEXT", "text/plain",
                                            "text/plain;charset=utf-8", "text/html"})
            texts_.push_back(Atom(name));
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
    ~XcbClipboardProbe() override {
        if (!QCoreApplication::instance()) return;
        QCoreApplication::instance()->removeNativeEventFilter(this);
        xcb_destroy_window(connection_, window_);
    }
    XcbClipboardProbe(const XcbClipboardProbe&) = delete;
    XcbClipboardProbe& operator=(const XcbClipboardProbe&) = delete;

    void Ask() override {
        holdsText_.reset();
        xcb_convert_selection(connection_, window_, clipboard_, targets_, answer_, XCB_CURRENT_TIME);
        xcb_flush(connection_);
    }
    std::optional<bool> HoldsText() const override { return holdsText_; }

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override {
        if (type != "xcb_generic_event_t") return false;
        const auto* event = static_cast<const xcb_generic_event_t*>(message);
        if ((event->response_type & 0x7FU) != XCB_SELECTION_NOTIFY) return false;
        const auto* notify = reinterpret_cast<const xcb_selection_notify_event_t*>(event);
        if (notify->requestor != window_) return false;
        if (notify->property != XCB_NONE) Read();
        return true;
    }

  private:
    xcb_atom_t Atom(std::string_view name) const {
        const auto cookie =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
        return reply ? reply->atom : 0U;
    }
    void Read() {
        const auto cookie = xcb_get_property(connection_, 1, window_, answer_, XCB_ATOM_ATOM, 0, 1024);
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, cookie, nullptr));
        if (!reply || reply->format != 32) return;
        const std::span kinds(static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get())),
                              reply->value_len);
        holdsText_ =
            std::find_first_of(kinds.begin(), kinds.end(), texts_.begin(), texts_.end()) != kinds.end();
    }

    xcb_connection_t* connection_;
    xcb_window_t window_;
    xcb_atom_t clipboard_ = 0, targets_ = 0, answer_ = 0;
    std::vector<xcb_atom_t> texts_;
    std::optional<bool> holdsText_;
};

}  // namespace

std::unique_ptr<ClipboardProbe> MakeXcbClipboardProbe() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = x11 ? x11->connection() : nullptr;
    if (!connection) return nullptr;
    return std::make_unique<XcbClipboardProbe>(connection);
}

}  // namespace bmr::kit
