#include "platform/qt/XEmbedTray.h"

#include <QByteArray>
#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace fernwick::platform {

namespace {

constexpr std::string_view kManager = "MANAGER";
constexpr std::string_view kSelection = "_NET_SYSTEM_TRAY_S0";
constexpr std::uint8_t kSentEvent = 0x80; // set in the type of an event that another client sent

struct Freed {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: libxcb allocates so
};

template <class Reply>
using Owned = std::unique_ptr<Reply, Freed>;

// The toolkit's connection to the X server, or null on another kind of display.
xcb_connection_t* connection() {
    const auto* native = qApp != nullptr ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return native != nullptr ? native->connection() : nullptr;
}

xcb_intern_atom_cookie_t askForAtom(xcb_connection_t* server, std::string_view name) {
    return xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data());
}

std::uint32_t atomOf(xcb_connection_t* server, xcb_intern_atom_cookie_t cookie) {
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server, cookie, nullptr));
    return reply ? reply->atom : std::uint32_t{XCB_ATOM_NONE};
}

} // namespace

XEmbedTray::~XEmbedTray() {
    unwatch();
}

void XEmbedTray::watch() {
    auto* server = connection();
    if (server == nullptr || watching_) {
        return;
    }
    const auto manager = askForAtom(server, kManager);
    const auto selection = askForAtom(server, kSelection);
    manager_ = atomOf(server, manager);
    selection_ = atomOf(server, selection);
    watching_ = true;
    qApp->installNativeEventFilter(this);
}

void XEmbedTray::unwatch() {
    if (watching_ && qApp != nullptr) {
        qApp->removeNativeEventFilter(this);
    }
    watching_ = false;
}

bool XEmbedTray::isPresent() const {
    auto* server = connection();
    if (server == nullptr || selection_ == XCB_ATOM_NONE) {
        return false;
    }
    const Owned<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, selection_), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

bool XEmbedTray::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & ~kSentEvent) == XCB_CLIENT_MESSAGE) {
        const auto* told = static_cast<const xcb_client_message_event_t*>(message);
        if (told->type == manager_ && told->data.data32[1] == selection_ && onAppeared) {
            onAppeared();
        }
    }
    return false;
}

} // namespace fernwick::platform
