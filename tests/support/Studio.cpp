#include "support/Studio.h"

#include "core/selection/Selection.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTabletEvent>
#include <QWheelEvent>

namespace qirn::test {

namespace {

constexpr auto kCapabilities = QInputDevice::Capability::Position | QInputDevice::Capability::Pressure;

}

void OwnWorld::fill(const IRect& rect, const PixelBytes& pixel) {
    paintRect(doc(), layer(), rect, pixel);
    doc().commit(QStringLiteral("Dot"));
}

void OwnWorld::select(const QRectF& rect) {
    QPainterPath path;
    path.addRect(rect);
    doc().selection = Selection::make(path, SelectionOp::replace, nullptr, doc().grid().width,
                                      doc().grid().height, Antialias::yes);
    doc().commit(QStringLiteral("Select"));
}

Studio::Studio()
    : penTip(QStringLiteral("pen"), 1, QInputDevice::DeviceType::Stylus, QPointingDevice::PointerType::Pen,
             kCapabilities, 1, 1),
      eraserEnd(QStringLiteral("eraser"), 2, QInputDevice::DeviceType::Stylus,
                QPointingDevice::PointerType::Eraser, kCapabilities, 1, 1) {
    canvas.strokeSeed = [] { return uint64_t{1}; };
    model.pictures().newDocument(400, 300, 72, PaintColor::white(), QStringLiteral("Test"));
    canvas.resize(800, 600);
    canvas.show();
    canvas.actualPixels();
}

void showActive(QWidget& window) {
    window.show();
    window.activateWindow();
    // Qt Test's own wait for this knows no Wayland.
    [[maybe_unused]] const bool active =
        QTest::qWaitFor([&] { return window.isActiveWindow() && window.windowHandle()->isExposed(); });
}

QPointF widgetPoint(const CanvasView& canvas, QPointF canvasPoint) {
    const double ratio = canvas.devicePixelRatioF();
    const QPointF view = canvas.viewPoint(canvasPoint);
    return QPointF(view.x(), canvas.height() * ratio - view.y()) / ratio;
}

void sendMouse(QWidget& widget, QEvent::Type type, QPointF widgetPoint, Qt::KeyboardModifiers modifiers,
               uint64_t milliseconds) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, widgetPoint, widget.mapToGlobal(widgetPoint), button, held, modifiers);
    event.setTimestamp(milliseconds);
    QApplication::sendEvent(&widget, &event);
}

void sendWheel(QWidget& widget, QPointF widgetPoint, QPoint angle, QPoint pixels, Qt::ScrollPhase phase) {
    QWheelEvent event(widgetPoint, widget.mapToGlobal(widgetPoint), pixels, angle, Qt::NoButton, {}, phase,
                      false);
    QApplication::sendEvent(&widget, &event);
}

void sendPen(CanvasView& canvas, const QPointingDevice& device, QEvent::Type type, QPointF canvasPoint,
             double pressure, Qt::KeyboardModifiers modifiers) {
    const QPointF at = widgetPoint(canvas, canvasPoint);
    const bool up = type == QEvent::TabletRelease;
    const Qt::MouseButton button = type == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton;
    QTabletEvent event(type, &device, at, canvas.mapToGlobal(at), up ? 0 : pressure, 0, 0, 0, 0, 0, modifiers,
                       button, up ? Qt::NoButton : Qt::LeftButton);
    QApplication::sendEvent(&canvas, &event);
}

void sendStroke(CanvasView& canvas, const QPointingDevice& device, const std::vector<StrokePoint>& points) {
    const auto send = [&](QEvent::Type type, const StrokePoint& point) {
        sendPen(canvas, device, type, {point.x, point.y}, point.pressure);
    };
    send(QEvent::TabletPress, points.front());
    for (std::size_t i = 1; i < points.size(); ++i) send(QEvent::TabletMove, points[i]);
    send(QEvent::TabletRelease, points.back());
}

void Studio::penStroke(const std::vector<QPointF>& points, double pressure) {
    std::vector<StrokePoint> stroke;
    for (const QPointF& point : points) stroke.emplace_back(point.x(), point.y(), pressure, 0, 0, 0);
    sendStroke(canvas, penTip, stroke);
}

void Studio::mouseDrag(QPointF from, QPointF to, Qt::KeyboardModifiers modifiers) {
    mouseEvent(QEvent::MouseButtonPress, from, modifiers);
    mouseEvent(QEvent::MouseMove, (from + to) / 2, modifiers);
    mouseEvent(QEvent::MouseMove, to, modifiers);
    mouseEvent(QEvent::MouseButtonRelease, to, modifiers);
}

void Studio::key(int key, const QString& text, Qt::KeyboardModifiers modifiers) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(&canvas, &press);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QApplication::sendEvent(&canvas, &release);
}

void Studio::pointerLeaves() {
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&canvas, &leave);
}

void Studio::waitForPenEcho() {
    canvas.clock = [before = canvas.clock] { return before() + 1; };
}

} // namespace qirn::test
