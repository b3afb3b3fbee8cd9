// The hands on a Wayland compositor of their own. HandsOnWayland [FOLDER]: with a folder, pictures of the window are left in it.
#include "Hands.h"
#include "WaylandCompositor.h"
#include "tablet.h"

#include <cmath>
#include <utility>

#include <linux/input-event-codes.h>

namespace qirn::hands {

using namespace test;

namespace {

class WaylandHands : public Devices {
public:
    explicit WaylandHands(WaylandCompositor& world) : world_(world) {}

    int mostTilt() const override { return 60; }
    void movePen(const Pen& pen) override { movePen(pen, false); }
    void movePen(const Pen& pen, bool lands) { ///< Landing, it is pressed at once.
        world_.post([this, pen, lands] {
            wl_resource* const tool = world_.tools[pen.eraser];
            if (tool != world_.toolInReach) {
                world_.takeAway();
                zwp_tablet_tool_v2_send_proximity_in(tool, world_.serial(), world_.tablet, world_.window());
                world_.toolInReach = tool;
            }
            zwp_tablet_tool_v2_send_motion(tool, wl_fixed_from_double(pen.place.x()),
                                           wl_fixed_from_double(pen.place.y()));
            zwp_tablet_tool_v2_send_pressure(tool, static_cast<uint32_t>(std::lround(pen.pressure * 65535)));
            zwp_tablet_tool_v2_send_tilt(tool, wl_fixed_from_double(pen.tiltX),
                                         wl_fixed_from_double(pen.tiltY));
            if (lands) zwp_tablet_tool_v2_send_down(tool, world_.serial());
            zwp_tablet_tool_v2_send_frame(tool, millisecondsNow());
        });
    }
    void pressPen(bool down, Qt::MouseButton button) override {
        world_.post([this, down, button] {
            wl_resource* const tool = world_.toolInReach;
            if (button == Qt::RightButton)
                zwp_tablet_tool_v2_send_button(tool, world_.serial(), BTN_STYLUS2, down);
            else
                down ? zwp_tablet_tool_v2_send_down(tool, world_.serial()) : zwp_tablet_tool_v2_send_up(tool);
            zwp_tablet_tool_v2_send_frame(tool, millisecondsNow());
        });
    }
    void takeAway() {
        world_.post([this] { world_.takeAway(); });
    }

    void touch(Touch what, int finger, QPointF place) override {
        world_.post(
            [this, what, finger, x = wl_fixed_from_double(place.x()), y = wl_fixed_from_double(place.y())] {
                const uint32_t time = millisecondsNow();
                if (what == Touch::begin)
                    wl_touch_send_down(world_.touch, world_.serial(), time, world_.window(), finger, x, y);
                if (what == Touch::update) wl_touch_send_motion(world_.touch, time, finger, x, y);
                if (what == Touch::end) wl_touch_send_up(world_.touch, world_.serial(), time, finger);
                wl_touch_send_frame(world_.touch);
            });
    }

    void moveMouse(QPointF place) override {
        world_.post([this, x = wl_fixed_from_double(place.x()), y = wl_fixed_from_double(place.y())] {
            if (!std::exchange(world_.isPointerIn, true))
                wl_pointer_send_enter(world_.pointer, world_.serial(), world_.window(), x, y);
            wl_pointer_send_motion(world_.pointer, millisecondsNow(), x, y);
            wl_pointer_send_frame(world_.pointer);
        });
    }
    void pressMouse(bool down) override {
        world_.post([this, down] {
            wl_pointer_send_button(world_.pointer, world_.serial(), millisecondsNow(), BTN_LEFT,
                                   down ? WL_POINTER_BUTTON_STATE_PRESSED : WL_POINTER_BUTTON_STATE_RELEASED);
            wl_pointer_send_frame(world_.pointer);
        });
    }
    void turnWheel(int notches) override {
        world_.post([this, notches] {
            wl_resource* const mouse = world_.pointer;
            wl_pointer_send_axis_source(mouse, WL_POINTER_AXIS_SOURCE_WHEEL);
            if (wl_resource_get_version(mouse) < WL_POINTER_AXIS_VALUE120_SINCE_VERSION)
                wl_pointer_send_axis_discrete(mouse, WL_POINTER_AXIS_VERTICAL_SCROLL, -notches);
            else
                wl_pointer_send_axis_value120(mouse, WL_POINTER_AXIS_VERTICAL_SCROLL, -120 * notches);
            wl_pointer_send_axis(mouse, millisecondsNow(), WL_POINTER_AXIS_VERTICAL_SCROLL,
                                 wl_fixed_from_int(-15 * notches));
            wl_pointer_send_frame(mouse);
        });
    }
    /// In pixels; what is shown moves the other way. By nothing: the fingers are lifted.
    void scrollTouchpad(QPointF by) {
        world_.post([this, by] {
            wl_resource* const pad = world_.pointer;
            wl_pointer_send_axis_source(pad, WL_POINTER_AXIS_SOURCE_FINGER);
            for (const auto& [axis, way] : {std::pair(WL_POINTER_AXIS_VERTICAL_SCROLL, by.y()),
                                            {WL_POINTER_AXIS_HORIZONTAL_SCROLL, by.x()}}) {
                if (by.isNull())
                    wl_pointer_send_axis_stop(pad, millisecondsNow(), axis);
                else
                    wl_pointer_send_axis(pad, millisecondsNow(), axis, wl_fixed_from_double(way));
            }
            wl_pointer_send_frame(pad);
        });
    }
    void pressShift(bool down) {
        world_.post([this, down] {
            wl_keyboard_send_key(world_.keyboard, world_.serial(), millisecondsNow(), KEY_LEFTSHIFT,
                                 down ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
            wl_keyboard_send_modifiers(world_.keyboard, world_.serial(), down ? 1 : 0, 0, 0, 0);
        });
    }

    QImage screen() override { return world_.look({{}, kScreen}); }
    QRgb pixel(QPoint place) override { return world_.look({place, QSize(1, 1)}).pixel(0, 0); }

private:
    WaylandCompositor& world_;
};

} // namespace

class HandsOnWayland : public Hands {
    Q_OBJECT
public:
    HandsOnWayland(WaylandHands& devices, const QString& pictures)
        : Hands(devices, pictures),
          devices_(devices) {}

private Q_SLOTS:
    void theOtherEndOfThePenErases() {
        Studio studio(devices_);
        paintRect(studio.doc(), studio.layer(), {0, 0, 400, 300}, {0, 0, 200, 255});
        studio.eraser = true;
        studio.paint({{100, 100, 1}, {200, 120, 1}});
        studio.pressPen(false);
        QCOMPARE(studio.lastStep(), "1 Erase");
        QCOMPARE(studio.layer().pixel(150, 110)[3], uint8_t{0});
        studio.hear(QEvent::TabletLeaveProximity, [this] { devices_.takeAway(); });
        QCOMPARE(studio.model.tool(), Tool::brush);
        studio.movePen({100, 100, 0});
        QCOMPARE(studio.model.tool(), Tool::eraser);
        studio.eraser = false;
        studio.movePen({100, 100, 0});
        QCOMPARE(studio.model.tool(), Tool::brush);
    }

    void aPenOutOfReachHasEndedItsStroke() {
        const std::vector<StrokePoint> strokes[] = {{{50, 50, 1}, {150, 80, 1}},
                                                    {{50, 150, 1}, {150, 180, 1}}};
        for (const bool returnsDown : {true, false}) {
            Studio studio(devices_);
            studio.paint(strokes[0]);
            studio.hear(QEvent::TabletLeaveProximity, [this] { devices_.takeAway(); });
            QCOMPARE(studio.lastStep(), "1 Brush Stroke");
            const auto comes = [&] { devices_.movePen(studio.penAt(strokes[1][0]), returnsDown); };
            // Qt goes on where it has last heard of the pen: with a move, or with the release.
            studio.hear(returnsDown ? QEvent::TabletMove : QEvent::TabletRelease, comes);
            QCOMPARE(studio.canvas().isBusy(), returnsDown);
            if (!returnsDown) studio.pressPen(true);
            studio.movePen(strokes[1][1]);
            studio.pressPen(false);
            QCOMPARE(studio.lastStep(), "2 Brush Stroke");
            QCOMPARE(studio.differenceFromEngine({strokes[0], strokes[1]}), QString());
        }
    }

    void keysThatAreHeldCountForThePen() {
        Studio studio(devices_);
        const auto dab = [&](double x, double y) {
            studio.paint({{x, y, 1}});
            studio.pressPen(false);
        };
        dab(50, 50);
        studio.hear(QEvent::KeyPress, [this] { devices_.pressShift(true); });
        dab(250, 250);
        QCOMPARE(studio.layer().pixel(150, 150)[3], uint8_t{255}); // a straight line
        studio.hear(QEvent::KeyRelease, [this] { devices_.pressShift(false); });
        dab(250, 50);
        QCOMPARE(studio.layer().pixel(250, 150)[3], uint8_t{0});
    }

    void aTouchpadPans() {
        Studio studio(devices_);
        studio.moveMouse({200, 150});
        const QPointF before = studio.onScreen({200, 150});
        // As far as whole notches of a wheel.
        for (int i = 0; i < 4; ++i)
            studio.hear(QEvent::Wheel, [this] { devices_.scrollTouchpad({10, -20}); });
        studio.hear(QEvent::Wheel, [this] { devices_.scrollTouchpad({}); });
        QCOMPARE(studio.onScreen({200, 150}) - before, QPointF(-40, 80));
        QCOMPARE(studio.shown().zoom, 1.0);
    }

private:
    WaylandHands& devices_;
};

} // namespace qirn::hands

int main(int argc, char** argv) {
    using namespace qirn::hands;
    WaylandCompositor world;
    qputenv("QT_WAYLAND_DISABLE_WINDOWDECORATION", "1"); // the picture of the window is that of the screen
    const auto app = applicationOn("wayland", argv);
    WaylandHands devices(world);
    HandsOnWayland hands(devices, QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    return QTest::qExec(&hands, QStringList(app->arguments().first()));
}

#include "HandsOnWayland.moc"
