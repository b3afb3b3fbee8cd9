#include "program/X11Activation.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include <QGuiApplication>
#include <QWidget>
#include <xcb/xcb.h>

namespace qirn {

namespace {

constexpr char kTime[] = "_TIME";
constexpr uint32_t kFromApplication = 1;

std::optional<xcb_timestamp_t> timeIn(const QByteArray& token) {
    const qsizetype at = token.lastIndexOf(kTime);
    bool isNumber = false;
    const uint time = at < 0 ? 0 : token.mid(at + qsizetype(std::strlen(kTime))).toUInt(&isNumber);
    return isNumber ? std::optional(time) : std::nullopt;
}

/// As the protocol has a value: in quotes, which a backslash takes back.
QByteArray quoted(QByteArray text) {
    return '"' + text.replace('\\', "\\\\").replace('"', "\\\"") + '"';
}

/// Messages about a window to all who watch the first screen.
class Messages {
public:
    Messages(xcb_connection_t* connection, WId window)
        : connection_(connection),
          window_(static_cast<xcb_window_t>(window)),
          root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {}

    xcb_client_message_event_t make(const char* type, uint8_t format) const {
        const auto cookie = xcb_intern_atom(connection_, 0, static_cast<uint16_t>(std::strlen(type)), type);
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
            xcb_intern_atom_reply(connection_, cookie, nullptr), &std::free);
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = format;
        message.window = window_;
        if (atom) message.type = atom->atom;
        return message;
    }
    void send(const xcb_client_message_event_t& message, uint32_t watchers) const {
        xcb_send_event(connection_, 0, root_, watchers, reinterpret_cast<const char*>(&message));
    }

private:
    xcb_connection_t* connection_;
    xcb_window_t window_;
    xcb_window_t root_;
};

} // namespace

bool comeForwardOnX11(const QWidget& window, const QByteArray& token) {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    const auto time = timeIn(token);
    if (!x11 || !time) return false;
    const Messages messages(x11->connection(), window.winId());
    auto forward = messages.make("_NET_ACTIVE_WINDOW", 32);
    forward.data.data32[0] = kFromApplication;
    forward.data.data32[1] = *time;
    messages.send(forward, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    const QByteArray done = "remove: ID=" + quoted(token) + '\0'; // in pieces, the zero with them
    const char* type = "_NET_STARTUP_INFO_BEGIN";
    for (qsizetype at = 0; at < done.size(); at += sizeof(xcb_client_message_data_t::data8)) {
        auto piece = messages.make(std::exchange(type, "_NET_STARTUP_INFO"), 8);
        const QByteArray part = done.mid(at, sizeof(piece.data.data8));
        std::memcpy(piece.data.data8, part.data(), std::size_t(part.size()));
        messages.send(piece, XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
    xcb_flush(x11->connection());
    return true;
}

} // namespace qirn
