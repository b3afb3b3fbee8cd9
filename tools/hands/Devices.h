#pragma once
#include <QImage>
#include <QPointF>
#include <QSize>

namespace qirn::hands {

constexpr QSize kScreen(1480, 920); // pixels

/// A pen, fingers, a mouse and its wheel that a test moves, and the screen that the window fills; each window system has its
/// own. Calls return before the window has heard of it. Places are pixels of the screen.
class Devices {
public:
    virtual ~Devices() = default;

    struct Pen {
        QPointF place;
        double pressure = 0;         ///< 0 to 1; fifths arrive as they are.
        double tiltX = 0, tiltY = 0; ///< Whole degrees, up to `mostTilt()`.
        bool eraser = false;         ///< Which end points down.
    };
    virtual int mostTilt() const = 0; ///< 0 where the pen feels none.
    virtual void movePen(const Pen& pen) = 0;
    /// Its tip is the left button, its upper side button the right one.
    virtual void pressPen(bool down, Qt::MouseButton button) = 0;

    enum class Touch { begin, update, end };
    virtual void touch(Touch what, int finger, QPointF place) = 0;

    virtual void moveMouse(QPointF place) = 0;
    virtual void pressMouse(bool down) = 0;
    virtual void turnWheel(int notches) = 0; ///< Away from the hand.

    virtual QImage screen() = 0;
    virtual QRgb pixel(QPoint place) = 0;
};

} // namespace qirn::hands
