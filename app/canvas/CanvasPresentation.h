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

/// Brings finished tiles to the screen: each tile of the picture is composited once, when it first becomes visible
/// or when it changed, and kept as an opaque image with the checkerboard under it. Zoom, pan, rotation and flip
/// composite nothing again.
class CanvasPresentation {
public:
    /// Null shows nothing; the document is borrowed, and all of it drawn anew. Asks for no memory.
    void show(const PaintDocument* document);
    bool
    setCheckerSize(double canvasPixels); ///< Side of a square, at least 2. True where it was another one.

    /// The view that the next `draw` is for; makes the tiles that it shows and that are not made yet. Where memory runs
    /// out it throws, `draw` shows what there is, and the next call goes on.
    void look(const ViewTransform& view, double zoom);
    /// While the view turns or zooms it is drawn without smoothing, which takes a fraction of the time.
    void setInMotion(bool inMotion) { inMotion_ = inMotion; }
    bool isInMotion() const { return inMotion_; }
    /// Tiles whose pixels changed. Those on screen are made at once, the others when they are seen. The result is
    /// what has to be painted again, in canvas pixels.
    std::vector<IRect> update(const std::vector<DirtyTile>& dirty);
    /// Shadow and picture inside `exposed`; both are in device pixels, y down.
    void draw(QPainter& painter, const QRectF& exposed) const;

    /// How many tiles were composited since the document came in.
    int64_t tilesComposited() const { return tilesComposited_; }
    /// Held for tiles that were made, beside the window's own pixels; empty tiles hold none.
    int64_t tileImageBytes() const { return heldImages_ * kTileBytes; }

private:
    enum class TileState : uint8_t { stale, empty, made };
    /// Where pixels of the window come from.
    enum class Source : uint8_t { board, image, layers };

    void coverWindow(const TileRange& range, int level);
    void makeVisibleTiles();
    /// Brings these parts to the window, from the layers where they are out of date.
    void drawIntoWindow(const std::vector<DirtyTile>& tiles);
    void drawTiles(const std::vector<DirtyTile>& tiles);
    Source sourceOf(const DirtyTile& tile, std::span<const CompositeInput> layers);
    void takeImage(int64_t index);
    void dropImage(int64_t index);
    bool isVisible(int64_t index) const;
    void dropUnseenTiles();

    const PaintDocument* document_ = nullptr;
    Checkerboard board_;
    std::vector<TileState> states_;
    // 0xFFRRGGBB over the checkerboard, whole tiles. What is made stands here, or in the window if that holds it at
    // full size: once, so that a pen point writes each pixel once.
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
