#pragma once
#include "core/PaintDocument.h"
#include "operations/Stamp.h"

#include <memory>
#include <optional>

#include <QTransform>
#include <QUuid>

namespace qirn {

/// Pixels lifted off a layer until they are placed elsewhere, as tiles at their old places: wholly lifted ones are
/// shared with the layer. Pixels outside of `origin` are ignored.
struct Floating {
    const LayerRef pixels; ///< A layer of the canvas's grid, never written.
    /// Where they were, in canvas pixels; with its corner at (0, 0) the box that is transformed.
    const IRect origin;
    const QUuid layerID;

    bool hasAlpha() const;
    std::shared_ptr<RGBABuffer> picture(const IRect& part) const; ///< Of a part of the canvas.
};

/// Takes the selected pixels of the active layer, or all of them without a selection, off the layer. Partly
/// selected pixels are divided: what stays and what floats add up to what was there. Null on a locked layer and
/// where there are neither a selection nor pixels; empty pixels under a selection are lifted too. Commits nothing.
std::shared_ptr<const Floating> liftFloating(PaintDocument& doc);

/// Lays lifted pixels on their layer under an affine transform from their box to canvas coordinates. The selection
/// plays no part: it cut the pixels already. Returns what was marked dirty: the covering pixels of the transformed
/// box, soft edges included, on the canvas; the zero rectangle when that is empty or the layer is gone.
IRect placeFloating(PaintDocument& doc, const Floating& floating, const QTransform& transform);

enum class Merged { no, yes };

/// A copy of the active layer's pixels, or of the finished picture, cut by the selection as a lift would. Without
/// a selection all pixels of the layer, or the canvas. Nothing where there are none.
std::optional<PlacedPixels> copyPixels(const PaintDocument& doc, Merged merged);

} // namespace qirn
