#pragma once
#include "core/BlendMode.h"
#include "core/IRect.h"
#include "core/RGBABuffer.h"
#include "core/TileArray.h"
#include "core/TileGrid.h"

#include <cstdint>
#include <memory>
#include <optional>

#include <QString>
#include <QUuid>

namespace qirn {

/// Everything about a layer except its id and its pixels.
struct LayerSettings {
    QString name;
    double opacity = 1;
    BlendMode blendMode = BlendMode::normal;
    bool isVisible = true;
    bool isLocked = false;
    bool alphaLocked = false;
    bool isClipping = false; ///< Shows only inside the nearest unclipped layer below.

    bool operator==(const LayerSettings&) const = default;
};

/// The frozen copy of one layer, of which undo states and snapshots are built. Its grid is that of the state
/// that holds it; all its tiles are frozen.
struct LayerState : LayerSettings {
    QUuid id;
    TileArray tiles;
};

/// One layer of the picture: settings that callers change directly, and tiles that they change through it.
///
/// An absent tile and a tile of zeros are the same picture. Pixels are written only through `writableTile`,
/// which copies a frozen tile first, so that whoever shares it keeps the old pixels. Nobody keeps a `Layer`
/// across an undo, a redo or a reshape: it is found again by its id.
class Layer : public LayerSettings {
public:
    Layer(QString name, const TileGrid& grid, QUuid id = QUuid::createUuid());
    Layer(const LayerSettings& settings, const TileGrid& grid, QUuid id); ///< Without tiles.
    Layer(const LayerState& state, const TileGrid& grid); ///< Shares the state's frozen tiles.
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;

    const QUuid id;

    LayerSettings& settings() { return *this; }
    const LayerSettings& settings() const { return *this; }
    const TileGrid& grid() const { return grid_; }
    const TileArray& tiles() const { return tiles_; }
    const Tile* tile(int64_t index) const { return tiles_.at(index); }

    PixelBytes pixel(int64_t x, int64_t y) const; ///< Premultiplied; zeros outside or without a tile.
    bool isEmpty() const;                         ///< No alpha in any tile, also beyond the canvas edge.
    std::optional<IRect> contentBounds() const;   ///< Smallest box of all alpha inside the canvas.
    std::shared_ptr<RGBABuffer> toBuffer() const; ///< The whole canvas with this layer's pixels.
    uint64_t fingerprint() const;                 ///< Pixels and settings, opacity to three decimals.
    /// A nearest-neighbor reduction (or enlargement) whose larger side is `maxSide` pixels.
    std::shared_ptr<RGBABuffer> thumbnail(int64_t maxSide) const;

    /// The only way to write pixels: creates an absent tile, copies a frozen one, returns one that is not frozen.
    Tile& writableTile(int64_t index);
    /// Puts a tile or an absence in the slot. The caller keeps the sharing rule: a tile held elsewhere is frozen.
    void setTile(int64_t index, TileRef tile) { tiles_.set(index, std::move(tile)); }
    void removeAllTiles() { tiles_.clear(); }
    /// Replaces all tiles from a buffer of exactly the canvas size; tiles without alpha become absent.
    void load(const RGBABuffer& buffer);
    void freezeTiles() { tiles_.freezeAll(); }
    /// Takes the tiles of another layer of the same grid; both then share them, frozen.
    void shareTilesOf(Layer& other);
    LayerState captureState(); ///< Freezes every tile.

private:
    TileGrid grid_;
    TileArray tiles_;
};

using LayerRef = std::shared_ptr<Layer>;

} // namespace qirn
