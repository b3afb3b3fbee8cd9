#include "app/canvas/CanvasPresentation.h"

#include "app/canvas/CanvasShadow.h"
#include "app/canvas/ReducedTile.h"
#include "compositing/AlikeTiles.h"
#include "compositing/CompositeInputs.h"
#include "core/PaintDocument.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include <QPainter>

namespace qirn {

namespace {

constexpr double kNearestFromZoom = 2.0;
constexpr int64_t kBandRows = 32; // of a tile, drawn by one thread
// Four 4K canvases: 160 MB. Tiles beyond that are composited again when they are seen again, or at another reduction.
constexpr int64_t kMostTileImages = 640;

/// The level of reduction at which the painter shrinks by at most a half.
int levelFor(double zoom) {
    int level = 0;
    while (zoom * static_cast<double>(1 << level) < 0.5) ++level;
    return level;
}

} // namespace

void CanvasPresentation::show(const PaintDocument* document) {
    document_ = document;
    states_.clear();
    images_.clear();
    heldImages_ = 0;
    tilesComposited_ = 0;
    visible_ = {};
    window_.reset(document ? document->grid() : TileGrid());
}

bool CanvasPresentation::setCheckerSize(double canvasPixels) {
    if (std::exchange(board_.side, std::max(canvasPixels, 2.0)) == board_.side) return false;
    if (document_) show(document_);
    return true;
}

void CanvasPresentation::prepare(const ViewTransform& view, double zoom) {
    canvasToWidget_ = view.canvasToWidget();
    zoom_ = zoom;
    quarterTurn_ = canvasToWidget_.m12() == 0 || std::abs(canvasToWidget_.m11()) < 1e-9;
    if (!document_) return;
    const TileGrid& grid = document_->grid();
    if (states_.empty()) {
        images_.resize(checkedSize(grid.count()));
        states_.assign(images_.size(), TileState::stale);
    }
    const QRectF seen = canvasToWidget_.inverted().mapRect(QRectF(QPointF(), view.viewSize()));
    const IRect part = IRect::covering(seen & grid.bounds().rectF()).intersection(grid.bounds());
    if (part.isEmpty()) {
        visible_ = {};
        return;
    }
    const TileRange seenTiles{part.x / kTileSize, part.y / kTileSize,
                              (part.maxX() + kTileSize - 1) / kTileSize,
                              (part.maxY() + kTileSize - 1) / kTileSize};
    const int level = levelFor(zoom);
    if (level != window_.level() || !window_.range().contains(seenTiles)) {
        // One tile more on each side, so that a slow pan does not move the window image at each step.
        coverWindow({std::max<int64_t>(seenTiles.firstCol - 1, 0),
                     std::max<int64_t>(seenTiles.firstRow - 1, 0), std::min(seenTiles.endCol + 1, grid.cols),
                     std::min(seenTiles.endRow + 1, grid.rows)},
                    level);
    }
    visible_ = seenTiles;
    compositeVisibleTiles();
}

bool CanvasPresentation::isVisible(int64_t index) const {
    const int64_t col = index % document_->grid().cols, row = index / document_->grid().cols;
    return visible_.contains({col, row, col + 1, row + 1});
}

std::vector<IRect> CanvasPresentation::update(const std::vector<DirtyTile>& dirty) {
    std::vector<IRect> changed;
    if (!document_) return changed;
    std::vector<DirtyTile> parts;
    for (const DirtyTile& tile : dirty) {
        const auto place = checkedSize(tile.index);
        if (place >= states_.size()) continue;
        const bool visible = isVisible(tile.index);
        if (visible) changed.push_back(tile.part);
        // A tile that is dirty as a whole may have become empty: it is stale. A dirty part is drawn over what is shown.
        const bool partly = tile.part != document_->grid().rectOf(tile.index);
        if (partly && visible && states_[place] == TileState::ready && window_.holds(tile.index)) {
            parts.push_back(tile);
        } else {
            states_[place] = TileState::stale;
            window_.drop(tile.index);
        }
    }
    drawIntoWindow(parts);
    compositeVisibleTiles();
    return changed;
}

void CanvasPresentation::compositeVisibleTiles() {
    std::vector<DirtyTile> missing;
    for (int64_t row = visible_.firstRow; row < visible_.endRow; ++row) {
        for (int64_t col = visible_.firstCol; col < visible_.endCol; ++col) {
            const int64_t index = row * document_->grid().cols + col;
            if (!window_.holds(index)) missing.push_back({index, document_->grid().rectOf(index)});
        }
    }
    drawIntoWindow(missing);
    if (heldImages_ > kMostTileImages) dropTilesOutOfView();
}

/// Moves the window image to other tiles. Ready tiles that leave it get images of their own.
void CanvasPresentation::coverWindow(const TileRange& range, int level) {
    std::vector<int64_t> leaving;
    if (window_.level() == 0) {
        for (int64_t row = window_.range().firstRow; row < window_.range().endRow; ++row) {
            for (int64_t col = window_.range().firstCol; col < window_.range().endCol; ++col) {
                const int64_t index = row * document_->grid().cols + col;
                const bool stays = level == 0 && range.contains({col, row, col + 1, row + 1});
                const auto place = checkedSize(index);
                if (!stays && window_.holds(index) && states_[place] == TileState::ready)
                    leaving.push_back(index);
            }
        }
    }
    std::vector<BlockPool::Block> copies(leaving.size());
    concurrentPerform(static_cast<int64_t>(leaving.size()), [&](int64_t i) {
        const auto place = checkedSize(i);
        copies[place] = BlockPool::take();
        window_.copyTo(leaving[place], copies[place].get());
    });
    window_.cover(range, level);
    for (std::size_t i = 0; i < leaving.size(); ++i) {
        dropImage(leaving[i]);
        images_[checkedSize(leaving[i])] = std::move(copies[i]);
        ++heldImages_;
    }
}

void CanvasPresentation::drawIntoWindow(const std::vector<DirtyTile>& tiles) {
    if (tiles.empty()) return;
    try {
        drawTiles(tiles);
    } catch (...) {
        // Any of them may have been drawn in part.
        for (const DirtyTile& tile : tiles) {
            states_[checkedSize(tile.index)] = TileState::stale;
            window_.drop(tile.index);
        }
        throw;
    }
}

void CanvasPresentation::drawTiles(const std::vector<DirtyTile>& tiles) {
    const std::vector<CompositeInput> layers = compositeInputs(*document_, ForDisplay::yes);
    const TileGrid& grid = document_->grid();
    std::optional<AlikeTiles> alike;
    std::vector<CanvasWindowImage::Copy> copies;
    std::vector<DirtyTile> drawn;
    std::vector<Source> sources; // one for each of them
    for (const DirtyTile& tile : tiles) {
        const bool isWhole = tile.part == grid.rectOf(tile.index);
        if (isWhole && tiles.size() > 1 && !hasImage(tile.index)) {
            if (!alike) alike.emplace(grid, layers, board_);
            const int64_t first = alike->firstLike(tile.index);
            if (first != tile.index) {
                copies.push_back({tile.index, first});
                continue;
            }
        }
        drawn.push_back(tile);
        sources.push_back(sourceOf(tile, isWhole, layers));
    }
    drawParts(drawn, sources, layers);
    window_.copy(copies);
    for (const auto& [index, like] : copies) {
        states_[checkedSize(index)] = states_[checkedSize(like)];
        dropImage(index);
    }
    if (window_.level() > 0) return;
    for (const DirtyTile& tile : drawn) dropImage(tile.index);
}

void CanvasPresentation::drawParts(const std::vector<DirtyTile>& tiles, const std::vector<Source>& sources,
                                   std::span<const CompositeInput> layers) {
    const int level = window_.level();
    const TileGrid& grid = document_->grid();
    // Few tiles are cut into bands, so that every core gets a share.
    const bool few = static_cast<int>(tiles.size()) < 2 * concurrency();
    const int64_t bandRows = few ? std::max<int64_t>(kBandRows, int64_t{1} << level) : kTileSize;
    std::vector<DirtyTile> parts;
    std::vector<Source> partSources;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        const DirtyTile& tile = tiles[i];
        const IRect place = grid.rectOf(tile.index);
        for (int64_t y = place.y; y < place.maxY(); y += bandRows) {
            const IRect band = tile.part.intersection({place.x, y, place.w, bandRows});
            if (band.isEmpty()) continue;
            parts.push_back({tile.index, band});
            partSources.push_back(sources[i]);
        }
    }
    window_.put(parts, [&](std::size_t i, uint8_t* out, int64_t rowBytes) {
        const DirtyTile& part = parts[i];
        const IRect place = grid.rectOf(part.index), blocks = blocksOf(part.part, place, level);
        uint8_t* const first = out + (blocks.y >> level) * rowBytes + (blocks.x >> level) * 4;
        if (partSources[i] == Source::board) {
            const IRect onCanvas{place.x + blocks.x, place.y + blocks.y, blocks.w, blocks.h};
            drawBoard(board_, onCanvas, level, first, rowBytes);
        } else if (partSources[i] == Source::image) {
            const uint8_t* const image = images_[checkedSize(part.index)].get();
            reduceTile(image + blocks.y * kTileRowBytes, blocks, level, first, rowBytes);
        } else if (level == 0) {
            drawForScreen(part, layers, grid, board_, out + blocks.y * rowBytes, rowBytes);
        } else {
            const auto draw = [&](const IRect& rows, uint8_t* pixels) {
                const IRect onCanvas{place.x + rows.x, place.y + rows.y, rows.w, rows.h};
                drawForScreen({part.index, onCanvas}, layers, grid, board_, pixels, kTileRowBytes);
            };
            drawReduced(blocks, level, draw, images_[checkedSize(part.index)].get(), first, rowBytes);
        }
    });
}

bool CanvasPresentation::hasImage(int64_t index) const {
    return states_[checkedSize(index)] == TileState::ready && images_[checkedSize(index)];
}

/// Chooses what a part of a tile is made from. At a reduced level a tile is composited into an image of its own where few
/// are in view, for which this allocates.
CanvasPresentation::Source CanvasPresentation::sourceOf(const DirtyTile& tile, bool isWhole,
                                                        std::span<const CompositeInput> layers) {
    if (isWhole && hasImage(tile.index)) return Source::image;
    const bool isEmpty = isWhole && !showsAnything(tile.index, layers);
    states_[checkedSize(tile.index)] = isEmpty ? TileState::empty : TileState::ready;
    if (isEmpty) {
        dropImage(tile.index);
        return Source::board;
    }
    if (isWhole) ++tilesComposited_;
    const int64_t inView = (visible_.endCol - visible_.firstCol) * (visible_.endRow - visible_.firstRow);
    if (isWhole && window_.level() > 0 && inView <= kMostTileImages) ensureImage(tile.index);
    return Source::layers;
}

void CanvasPresentation::ensureImage(int64_t index) {
    BlockPool::Block& image = images_[checkedSize(index)];
    if (image) return;
    image = BlockPool::take();
    ++heldImages_;
}

void CanvasPresentation::dropImage(int64_t index) {
    BlockPool::Block& image = images_[checkedSize(index)];
    if (!image) return;
    image.reset();
    --heldImages_;
}

void CanvasPresentation::dropTilesOutOfView() {
    for (std::size_t place = 0; place < images_.size() && heldImages_ > kMostTileImages; ++place) {
        dropImage(static_cast<int64_t>(place));
    }
}

void CanvasPresentation::draw(QPainter& painter, const QRectF& exposed) const {
    if (!document_) return;
    const QRectF canvas = document_->grid().bounds().rectF();
    const bool onlyPicture = quarterTurn_ && canvasToWidget_.mapRect(canvas).contains(exposed);
    const QTransform device = painter.transform();
    painter.setTransform(canvasToWidget_, true);
    if (!onlyPicture) drawCanvasShadow(painter, canvas);
    if (!visible_.isEmpty()) {
        const bool exact = zoom_ == 1 && quarterTurn_;
        const bool smooth = zoom_ < kNearestFromZoom && !exact && !inMotion_;
        painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
        painter.setRenderHint(QPainter::Antialiasing, false);
        window_.draw(painter);
    }
    painter.setTransform(device);
}

} // namespace qirn
