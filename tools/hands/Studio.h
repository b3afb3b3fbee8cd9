#pragma once
#include "Devices.h"
#include "support/Window.h"

#include <cstdint>
#include <map>
#include <vector>

#include <QHash>

namespace qirn::hands {

/// The main window over the whole screen, and the hands at it. Points are those of the canvas. Calls return when the window
/// has heard of it.
struct Studio : test::Window, QObject {
    Devices& devices;
    QHash<QEvent::Type, int> received; ///< By the canvas.
    std::vector<Devices::Pen> moves;   ///< Of the pen over the canvas, in its widget.
    bool eraser = false;               ///< The end of the pen that points down.

    explicit Studio(Devices& devices);
    ~Studio() override { touch({}); }

    /// Lets a device do something that the window hears of as such an event, however the fingers' is called.
    template <class Deed> void hear(QEvent::Type type, Deed deed) {
        const int before = heard(type);
        deed();
        if (!QTest::qWaitFor([&] { return heard(type) > before; }, 5000))
            QTest::qFail("The window has not heard of what a hand did", __FILE__, __LINE__);
    }
    /// A second passes: no pen is near any more.
    void waitForHands() {
        canvas().clock = [before = canvas().clock] { return before() + 1; };
    }
    QPointF onScreen(QPointF canvasPoint) {
        return canvas().mapToGlobal(test::widgetPoint(canvas(), canvasPoint)) * view.devicePixelRatioF();
    }
    Devices::Pen penAt(const StrokePoint& point) {
        return {onScreen({point.x, point.y}), point.pressure, point.tiltX, point.tiltY, eraser};
    }
    void movePen(const StrokePoint& point) {
        hear(QEvent::TabletMove, [&] { devices.movePen(penAt(point)); });
    }
    void pressPen(bool down, Qt::MouseButton button = Qt::LeftButton) {
        hear(down ? QEvent::TabletPress : QEvent::TabletRelease, [&] { devices.pressPen(down, button); });
    }
    void paint(const std::vector<StrokePoint>& points); ///< The pen stays down.
    void moveMouse(QPointF canvasPoint) {
        hear(QEvent::MouseMove, [&] { devices.moveMouse(onScreen(canvasPoint)); });
    }
    void
    touch(const std::map<int, QPointF>& fingers); ///< Those that lie on the screen now; others are lifted.
    ViewState& shown() { return session().view; }
    QImage screen() {
        QTest::qWait(200); // until the view has come to rest
        return devices.screen();
    }
    /// Between the picture on this canvas and that which the engine paints of such strokes without a window.
    QString differenceFromEngine(const std::vector<std::vector<StrokePoint>>& strokes);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int& heard(QEvent::Type type);

    std::map<int, QPointF> fingers_;
    QHash<QEvent::Type, int> heard_;
};

} // namespace qirn::hands
