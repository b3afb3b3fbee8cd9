#pragma once
#include "app/canvas/CanvasWindowImage.h"
#include "app/files/ViewTransform.h"
#include "compositing/ScreenTiles.h"
#include "core/DirtyTiles.h"
#include "platform/BlockPool.h"

#include <cstdint>
#include <span>
#include <vector>

class QPainter;

namespace qirn {

class PaintDocument;

/// Brings tiles to the screen: each tile of the picture is composited when it first becomes visible or when it changed,
/// and kept as an opaque image with the checkerboard under it. Zoom, pan, rotation and flip composite nothing.
class CanvasPresentation {
public:
    /// Null shows nothing. The document is borrowed; all its tiles are stale from here on. Allocates nothing.
    void show(const PaintDocument* document);
    bool setCheckerSize(double canvasPixels); ///< Side of a square, at least 2. True when it changed.

    /// Sets the view that the next `draw` is for, and composites the stale tiles in it. Throws when memory is out: `draw`
    /// then shows the tiles that are done, and the next call continues.
    void prepare(const ViewTransform& view, double zoom);
    /// While the view turns or zooms it is drawn without smoothing, which takes a fraction of the time.
    void setInMotion(bool inMotion) { inMotion_ = inMotion; }
    bool isInMotion() const { return inMotion_; }
    /// Tiles whose pixels changed: those in view are composited at once, the others when they come into it. Returns what
    /// to repaint, in canvas pixels.
    std::vector<IRect> update(const std::vector<DirtyTile>& dirty);
    /// Paints shadow and picture; painter and `exposed` are in device pixels, y down.
    void draw(QPainter& painter, const QRectF& exposed) const;

    /// How many tiles were composited since `show`: of those that look the same, one; of blank ones, none.
    int64_t tilesComposited() const { return tilesComposited_; }
    /// Memory of the tiles' own images, beside the window image. An empty tile has none.
    int64_t tileImageBytes() const { return heldImages_ * kTileBytes; }

private:
    enum class TileState : uint8_t { stale, empty, ready };
    /// What pixels of the window image are made from.
    enum class Source : uint8_t { board, image, layers };

    void coverWindow(const TileRange& range, int level);
    void compositeVisibleTiles();
    /// Brings these parts of tiles to the window image; from the layers where the tile is stale.
    void drawIntoWindow(const std::vector<DirtyTile>& tiles);
    void drawTiles(const std::vector<DirtyTile>& tiles);
    void drawParts(const std::vector<DirtyTile>& tiles, const std::vector<Source>& sources,
                   std::span<const CompositeInput> layers);
    Source sourceOf(const DirtyTile& tile, bool isWhole, std::span<const CompositeInput> layers);
    bool hasImage(int64_t index) const;
    void ensureImage(int64_t index);
    void dropImage(int64_t index);
    bool isVisible(int64_t index) const;
    void dropTilesOutOfView();

    const PaintDocument* document_ = nullptr;
    Checkerboard board_;
    std::vector<TileState> states_;
    // Of ready tiles: 0xFFRRGGBB over the checkerboard, whole tiles. One that the window image holds at full size has no
    // image here, so that a pen point writes each pixel once.
    std::vector<BlockPool::Block> images_;
    int64_t heldImages_ = 0;
    TileRange visible_;
    CanvasWindowImage window_;
    QTransform canvasToWidget_;
    double zoom_ = 1;
    bool quarterTurn_ = true; // edges of the canvas are parallel to the screen's
    bool inMotion_ = false;
    int64_t tilesComposited_ = 0;
};

} // namespace qirn
