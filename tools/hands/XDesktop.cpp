#include "XDesktop.h"

#include "program/X11Activation.h"

#include <cstdlib>
#include <memory>

#include <QWidget>
#include <QtTest>
#include <xcb/xcb.h>

namespace qirn::hands {

void XDesktop::aClickInAnotherWindowPutsTheStudioInFront() {
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> desktop(xcb_connect(nullptr, nullptr),
                                                                               xcb_disconnect);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(desktop.get())).data;
    const uint32_t watched = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(desktop.get(), screen->root, XCB_CW_EVENT_MASK, &watched);
    std::free(xcb_get_input_focus_reply(desktop.get(), xcb_get_input_focus(desktop.get()), nullptr)); // done
    QWidget window;
    QVERIFY(!comeForwardOnX11(window, "a token of another kind"));
    const QByteArray token = "files-12 \"Sea\\Sun.qirnpaint\"_TIME4294967295";
    QVERIFY(comeForwardOnX11(window, token));
    QByteArray words;
    uint32_t time = 0;
    while (!words.contains('\0')) {
        const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(
            xcb_wait_for_event(desktop.get()), &std::free);
        QVERIFY(event);
        if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) continue;
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
        QCOMPARE(message.window, window.winId());
        if (message.format == 32) time = message.data.data32[1];
        if (message.format == 8) words.append(reinterpret_cast<const char*>(message.data.data8), 20);
    }
    QCOMPARE(time, 4294967295U);
    words.truncate(words.indexOf('\0'));
    QCOMPARE(words, QByteArray(R"(remove: ID="files-12 \"Sea\\Sun.qirnpaint\"_TIME4294967295")"));
}

} // namespace qirn::hands
