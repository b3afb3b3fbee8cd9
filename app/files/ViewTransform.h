#pragma once
#include <array>
#include <optional>

#include <QPointF>
#include <QSizeF>
#include <QTransform>

namespace qirn {

/// How one picture is looked at. A view point is one device pixel, with y up.
struct ViewState {
    double zoom = 1;       ///< Device pixels on a canvas pixel, 0.01 to 64.
    QPointF pan;           ///< From the middle of the view to the middle of the picture, y up.
    double rotation = 0;   ///< Degrees, clockwise on screen.
    bool flipView = false; ///< Mirrored left to right.

    bool operator==(const ViewState&) const = default;
};

inline constexpr double kMinZoom = 0.01;
inline constexpr double kMaxZoom = 64;

/// The arithmetic between canvas coordinates (pixels, y down), view coordinates (device pixels, origin at the
/// bottom left, y up) and widget coordinates (device pixels, origin at the top left, y down).
class ViewTransform {
public:
    ViewTransform() = default;
    ViewTransform(QSizeF viewSize, QSizeF canvasSize, const ViewState& state);

    QPointF viewPoint(QPointF canvasPoint) const { return canvasToView_.map(canvasPoint); }
    QPointF canvasPoint(QPointF viewPoint) const { return viewToCanvas_.map(viewPoint); }
    const QTransform& canvasToWidget() const { return canvasToWidget_; }
    /// Between view and widget points, both ways.
    QPointF flippedVertically(QPointF point) const { return {point.x(), viewSize_.height() - point.y()}; }
    QSizeF viewSize() const { return viewSize_; }
    QPointF viewMiddle() const { return {viewSize_.width() / 2, viewSize_.height() / 2}; }

    /// The state after zooming to `zoom` (clamped). The canvas point under `around` stays where it is; by default that
    /// of the view's center.
    ViewState zoomedTo(double zoom, std::optional<QPointF> around) const;
    /// The state turned to `rotation` and mirrored or not. The canvas point under the view's middle stays there.
    ViewState turnedTo(double rotation, bool flipView) const;
    /// The state in which two canvas points lie under two view points, mirrored as it is. Where that is beyond the zoom's
    /// limits, the middle of the one pair lies under that of the other.
    ViewState gripped(const std::array<QPointF, 2>& canvas, const std::array<QPointF, 2>& view) const;
    /// The whole picture in the view, upright, with `margin` view points free in both directions together.
    ViewState fitted(double margin) const;

private:
    /// Moved so that the canvas point under a view point stays there.
    ViewState holding(QPointF viewPoint, ViewState next) const;
    ViewState moved(QPointF canvasPoint, QPointF viewPoint,
                    ViewState next) const; ///< The one under the other.

    QSizeF viewSize_{1, 1};
    QSizeF canvasSize_{1, 1};
    ViewState state_;
    QTransform canvasToView_;
    QTransform viewToCanvas_;
    QTransform canvasToWidget_;
};

/// The next zoom stop above or below; 64 and 0.05 at the ends.
double nextZoomStop(double zoom, bool in);

} // namespace qirn
