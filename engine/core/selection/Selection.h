#pragma once
#include "core/IRect.h"
#include "core/selection/MaskTiles.h"
#include "platform/PathCoverage.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <QPainterPath>

namespace qirn {

enum class SelectionOp { replace, add, subtract, intersect };

class Selection;
using SelectionRef = std::shared_ptr<const Selection>;

/// An 8-bit coverage mask of the whole canvas, immutable once made, so that the document, undo states and
/// background work share it. At least one byte is not 0: where nothing would be selected there is no object, and
/// a document without one has everything selected. A selection made of another one shares the tiles that are alike.
class Selection {
    struct Key {}; // only the functions below can construct a selection

public:
    /// Rasterizes a path (canvas coordinates) and combines it with what is selected. `subtract` and `intersect` with
    /// nothing selected give null, as does an empty result. The outline is always the union of both paths: it is
    /// shown to the user and does not say what is selected.
    static SelectionRef make(const QPainterPath& path, SelectionOp op, const SelectionRef& existing,
                             int64_t width, int64_t height, Antialias antialias);
    /// The bytes as given, `width` x `height` of them, otherwise null; outlined by their bounds.
    static SelectionRef fromMask(std::span<const uint8_t> mask, int64_t width, int64_t height);
    static SelectionRef all(int64_t width, int64_t height);
    /// The path's coverage as a mask of the canvas size.
    static std::vector<uint8_t> rasterize(const QPainterPath& path, int64_t width, int64_t height,
                                          Antialias antialias);

    Selection(Key, MaskTiles tiles, const IRect& bounds, QPainterPath outline);

    int64_t width() const { return tiles_.grid().width; }
    int64_t height() const { return tiles_.grid().height; }
    const MaskTiles& tiles() const { return tiles_; } ///< 255 is fully selected.
    /// Row `y` of a tile of the canvas; 256 bytes, those beyond the canvas edge of any value.
    const uint8_t* row(int64_t index, int64_t y) const { return tiles_.row(index, y); }
    const IRect& bounds() const { return bounds_; } ///< Tight box of all bytes that are not 0.
    const QPainterPath& outline() const { return outline_; }
    uint8_t value(int64_t x, int64_t y) const; ///< 0 outside the canvas.

    SelectionRef offsetBy(int64_t dx,
                          int64_t dy) const; ///< What leaves the canvas is lost; null when all does.
    SelectionRef inverted() const;           ///< Null for a selection of the whole canvas.

private:
    static SelectionRef fromTiles(MaskTiles tiles, QPainterPath outline);

    const MaskTiles tiles_;
    const IRect bounds_;
    const QPainterPath outline_;
};

} // namespace qirn
