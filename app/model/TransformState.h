#pragma once
#include "operations/Floating.h"

#include <array>
#include <cstdint>
#include <memory>

#include <QPointF>
#include <QTransform>

namespace qirn {

/// Where floating pixels are to be put down, as the handles of the Move tool set it. Canvas coordinates, y down.
struct TransformState {
    std::shared_ptr<const Floating> floating;
    /// Middle of the box, unrounded. A mere translation places the pixels by `wholeOffset` all the same.
    QPointF center;
    double scaleX = 1;
    double scaleY = 1;
    double angle = 0; ///< Degrees, clockwise in the canvas.
    bool flipH = false;
    bool flipV = false;

    explicit TransformState(std::shared_ptr<const Floating> lifted);

    double width() const; ///< Of the lifted pixels, unscaled.
    double height() const;
    QTransform matrix() const; ///< From buffer to canvas coordinates.
    /// The box's corners: of the buffer's (0, 0), (w, 0), (w, h), (0, h). A scale handle has its corner's index.
    std::array<QPointF, 4> corners() const;
    QPointF topMiddle() const; ///< Of the edge between corners 0 and 1.
    /// Beyond the top edge's middle, `distance` canvas pixels further from the center.
    QPointF rotateHandle(double distance) const;
    /// Neither scaled, turned nor flipped.
    bool isTranslation() const { return scaleX == 1 && scaleY == 1 && angle == 0 && !flipH && !flipV; }
    struct Offset {
        int64_t dx, dy;
    };
    Offset wholeOffset() const; ///< From where the pixels were lifted, rounded to whole pixels.
    QPointF
    shownCenter() const; ///< The middle of pixels, box and handles: rounded while it is a translation.
};

inline constexpr double kLeastTransformScale = 0.01;

/// The state after dragging a corner from one point to another. Proportions are kept; with `freeAxes` each axis of the
/// box scales by itself. A drag that begins within half a pixel of the center changes nothing.
TransformState scaledBy(const TransformState& base, QPointF from, QPointF to, bool freeAxes);
/// The state after dragging the rotate handle; `steps` rounds the angle to multiples of 15 degrees.
TransformState turnedBy(const TransformState& base, QPointF from, QPointF to, bool steps);

} // namespace qirn
