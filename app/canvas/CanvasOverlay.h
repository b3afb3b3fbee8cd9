#pragma once
#include "app/canvas/FloatingImage.h"
#include "app/model/TransformState.h"
#include "core/selection/Selection.h"

#include <optional>

#include <QPainterPath>
#include <QRegion>
#include <QTransform>

class QPainter;

namespace qirn {

/// What is drawn over the picture: marching ants, the preview of a gesture, the brush ring. Paths are kept in canvas
/// coordinates and drawn in device pixels, so that every line keeps its width at any zoom. Lengths are logical
/// points times the display's ratio.
class CanvasOverlay {
public:
    struct Ring {
        QPointF center; ///< Device pixels, y down.
        double diameter = 2;

        bool operator==(const Ring&) const = default;
    };

    // Logical points on screen, whatever the zoom.
    static constexpr double kHandleReach = 9;           ///< A press this near to a corner takes it.
    static constexpr double kRotateHandleDistance = 28; ///< Beyond the top edge.

    void setView(const QTransform& canvasToWidget, double zoom, double pixelRatio);
    void setSelection(SelectionRef selection); ///< Null: no ants.
    void setPreview(const QPainterPath& path); ///< Empty: none.
    /// Lifted pixels, their box and handles.
    void setTransform(const std::optional<TransformState>& transform);
    void setRing(std::optional<Ring> ring) { ring_ = ring; }
    const std::optional<Ring>& ring() const { return ring_; }

    bool hasAnts() const { return selection_ != nullptr; }
    /// Milliseconds between two steps; more for a long outline, which takes longer to paint.
    int antsInterval() const;
    void advanceAnts(double seconds);

    void paint(QPainter& painter) const; ///< In device pixels, y down.

    // The device pixels that each covers. That of the ring is an annulus: inside, a wide ring covers nothing.
    QRegion ringRegion() const;
    QRegion antsRegion() const;
    QRegion previewRegion() const;
    QRegion transformRegion() const;

private:
    const QPainterPath& antsPath() const;
    QPainterPath handlesPath() const; ///< In device pixels.
    void paintTransform(QPainter& painter) const;
    QRegion outlineRegion(const QPainterPath& devicePath) const;

    QTransform canvasToWidget_;
    double zoom_ = 1;
    double ratio_ = 1;
    SelectionRef selection_;
    mutable std::optional<QPainterPath> antsPath_; // device pixels; nothing until it is needed in this view
    double antsPhase_ = 0;                         // logical points
    QPainterPath preview_;
    std::optional<TransformState> transform_;
    mutable FloatingImage floatingImage_;
    std::optional<Ring> ring_;
};

} // namespace qirn
