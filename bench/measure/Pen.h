#pragma once
#include "app/canvas/CanvasView.h"
#include "brush/StrokePoint.h"

#include <QApplication>
#include <QPointingDevice>
#include <QTabletEvent>

namespace qirn::bench {

/// A pen over the canvas of a window, which it borrows.
class Pen {
public:
    explicit Pen(CanvasView& canvas) : canvas_(canvas) {}

    /// The event at a point of the canvas, and whatever the window then has left to do.
    void send(QEvent::Type type, const StrokePoint& point) {
        const double ratio = canvas_.devicePixelRatioF();
        const QPointF view = canvas_.viewPoint({point.x, point.y});
        const QPointF at = QPointF(view.x(), canvas_.height() * ratio - view.y()) / ratio;
        const bool up = type == QEvent::TabletRelease;
        QTabletEvent event(type, &device_, at, canvas_.mapToGlobal(at), up ? 0 : point.pressure, 0, 0, 0, 0,
                           0, {}, type == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton,
                           up ? Qt::NoButton : Qt::LeftButton);
        QApplication::sendEvent(&canvas_, &event);
        QApplication::processEvents();
    }

private:
    CanvasView& canvas_;
    const QPointingDevice device_{QStringLiteral("pen"),
                                  1,
                                  QInputDevice::DeviceType::Stylus,
                                  QPointingDevice::PointerType::Pen,
                                  QInputDevice::Capability::Pressure,
                                  1,
                                  1};
};

} // namespace qirn::bench
