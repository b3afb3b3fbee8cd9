#pragma once
#include "operations/Floating.h"

#include <array>
#include <cstdint>
#include <memory>

#include <QPointF>
#include <QTransform>

namespace qirn {

/// Lifted pixels on their way to another place: what the Move tool's handles change. Canvas coordinates, y down.
struct TransformState {
    std::shared_ptr<const Floating> floating;
    QPointF
        center; ///< Of the box, as exactly as the hand has it; while the pixels are only moved they lie whole
                ///< pixels from where they were.
    double scaleX = 1;
    double scaleY = 1;
    double angle = 0; ///< Degrees, clockwise on an unturned screen.
    bool flipH = false;
    bool flipV = false;

    explicit TransformState(std::shared_ptr<const Floating> lifted);

    double width() const; ///< Of the lifted pixels, unscaled.
    double height() const;
    QTransform matrix() const; ///< From buffer to canvas coordinates.
    /// The box's corners: of the buffer's (0, 0), (w, 0), (w, h), (0, h). A scale handle has its corner's index.
    std::array<QPointF, 4> corners() const;
    QPointF topMiddle() const; ///< Of the edge between corners 0 and 1.
    /// Beyond the top edge's middle, `distance` canvas pixels further from the centre.
    QPointF rotateHandle(double distance) const;
    /// Moved only: neither scaled, turned nor flipped.
    bool isTranslation() const { return scaleX == 1 && scaleY == 1 && angle == 0 && !flipH && !flipV; }
    struct WholeWay {
        int64_t dx, dy;
    };
    WholeWay wholeWay() const;   ///< From where the pixels were lifted, to the nearest whole pixel.
    QPointF shownCenter() const; ///< Where pixels, box and handles have their middle.
};

inline constexpr double kLeastTransformScale = 0.01;

/// The state after dragging a corner from one point to another: proportions kept, or with `freeAxes` each axis of
/// the box for itself. A drag that begins within half a pixel of the centre changes nothing.
TransformState scaledBy(const TransformState& base, QPointF from, QPointF to, bool freeAxes);
/// The state after dragging the rotate handle; `steps` rounds the angle to multiples of 15 degrees.
TransformState turnedBy(const TransformState& base, QPointF from, QPointF to, bool steps);

} // namespace qirn
