#include "CanvasPresentation.h"

#include "CanvasShadow.h"
#include "compositing/CompositeInputs.h"
#include "core/PaintDocument.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace qirn {

namespace {

constexpr double kNearestFromZoom = 2.0;
// Two thousand tiles: eight 4K canvases. Beyond it, tiles out of sight are let go and made again when seen.
constexpr int64_t kMostTileImages = 512LL * 1024 * 1024 / kTileBytes;
constexpr quint32 kCheckerLight = 219, kCheckerDark = 179; // white 0.86 and 0.7

/// The level at which the painter has to shrink by at most a half.
int levelFor(double zoom) {
    int level = 0;
    while (zoom * static_cast<double>(1 << level) < 0.5) ++level;
    return level;
}

quint32 overGrey(const uint8_t* pixel, quint32 grey) {
    const quint32 rest = 255u - pixel[3];
    const auto channel = [&](int c) { return pixel[c] + (grey * rest + 127) / 255; };
    return 0xFF000000u | channel(0) << 16 | channel(1) << 8 | channel(2);
}

} // namespace

void CanvasPresentation::show(const PaintDocument* document) {
    document_ = document;
    const TileGrid grid = document ? document->grid() : TileGrid();
    states_.assign(static_cast<std::size_t>(grid.count()), TileState::stale);
    images_.assign(states_.size(), QImage());
    heldImages_ = 0;
    tilesComposited_ = 0;
    visible_ = {};
    window_.reset(grid);
}

void CanvasPresentation::setCheckerSize(double canvasPixels) {
    checkerSize_ = std::max(canvasPixels, 2.0);
    if (document_) show(document_);
}

void CanvasPresentation::look(const ViewTransform& view, double zoom) {
    canvasToWidget_ = view.canvasToWidget();
    zoom_ = zoom;
    quarterTurn_ = canvasToWidget_.m12() == 0 || std::abs(canvasToWidget_.m11()) < 1e-9;
    if (!document_) return;
    const TileGrid& grid = document_->grid();
    const QRectF seen = canvasToWidget_.inverted().mapRect(QRectF(QPointF(), view.viewSize()));
    const IRect part = IRect::covering(seen & grid.bounds().rectF()).intersection(grid.bounds());
    if (part.isEmpty()) {
        visible_ = {};
        return;
    }
    visible_ = {part.x / kTileSize, part.y / kTileSize, (part.maxX() + kTileSize - 1) / kTileSize,
                (part.maxY() + kTileSize - 1) / kTileSize};
    const int level = levelFor(zoom);
    if (level != window_.level() || !window_.range().contains(visible_)) {
        // A tile more on each side, so that a slow pan does not rebuild the window at each step.
        window_.cover({std::max<int64_t>(visible_.firstCol - 1, 0),
                       std::max<int64_t>(visible_.firstRow - 1, 0), std::min(visible_.endCol + 1, grid.cols),
                       std::min(visible_.endRow + 1, grid.rows)},
                      level);
    }
    makeVisibleTiles();
}

std::vector<IRect> CanvasPresentation::update(const std::vector<int64_t>& dirty) {
    std::vector<IRect> changed;
    if (!document_) return changed;
    for (int64_t index : dirty) {
        const auto place = static_cast<std::size_t>(index);
        if (place >= states_.size()) continue;
        states_[place] = TileState::stale;
        window_.drop(index);
        const int64_t col = index % document_->grid().cols, row = index / document_->grid().cols;
        if (visible_.contains({col, row, col + 1, row + 1}))
            changed.push_back(document_->grid().rectOf(index));
    }
    makeVisibleTiles();
    return changed;
}

void CanvasPresentation::makeVisibleTiles() {
    std::vector<int64_t> missing, stale;
    for (int64_t row = visible_.firstRow; row < visible_.endRow; ++row) {
        for (int64_t col = visible_.firstCol; col < visible_.endCol; ++col) {
            const int64_t index = row * document_->grid().cols + col;
            if (window_.holds(index)) continue;
            missing.push_back(index);
            if (states_[static_cast<std::size_t>(index)] == TileState::stale) stale.push_back(index);
        }
    }
    if (missing.empty()) return;
    tilesComposited_ += static_cast<int64_t>(stale.size());
    const std::map<int64_t, QImage> finished = displayImages(*document_, stale);
    for (int64_t index : stale) {
        const auto place = static_cast<std::size_t>(index);
        const bool made = finished.contains(index);
        heldImages_ += (made ? 1 : 0) - (images_[place].isNull() ? 0 : 1);
        states_[place] = made ? TileState::made : TileState::empty;
        if (!made) images_[place] = {};
    }
    // Empty tiles show the bare checkerboard, which is drawn into the window and kept nowhere else.
    std::vector<QImage> bare(missing.size());
    std::vector<CanvasWindowImage::TilePicture> pictures(missing.size());
    concurrentPerform(static_cast<int64_t>(missing.size()), [&](int64_t i) {
        const auto slot = static_cast<std::size_t>(i);
        const auto place = static_cast<std::size_t>(missing[slot]);
        const auto fresh = finished.find(missing[slot]);
        if (states_[place] == TileState::empty)
            bare[slot] = displayTile(missing[slot], {});
        else if (fresh != finished.end())
            images_[place] = displayTile(missing[slot], fresh->second);
        pictures[slot] = {missing[slot], bare[slot].isNull() ? &images_[place] : &bare[slot]};
    });
    window_.put(pictures);
    if (heldImages_ > kMostTileImages) dropUnseenTiles();
}

QImage CanvasPresentation::displayTile(int64_t index, const QImage& composited) const {
    const IRect part = document_->grid().rectOf(index);
    QImage tile(static_cast<int>(part.w), static_cast<int>(part.h), QImage::Format_RGB32);
    const auto squareOf = [this](int64_t pixel) {
        return static_cast<int64_t>(static_cast<double>(pixel) / checkerSize_);
    };
    std::vector<int64_t> columns(static_cast<std::size_t>(part.w));
    for (int64_t x = 0; x < part.w; ++x) columns[static_cast<std::size_t>(x)] = squareOf(part.x + x) & 1;
    static constexpr uint8_t kNothing[4] = {};
    for (int y = 0; y < tile.height(); ++y) {
        auto* out = reinterpret_cast<quint32*>(tile.scanLine(y));
        const uint8_t* in = composited.isNull() ? nullptr : composited.constScanLine(y);
        const int64_t rowParity = squareOf(part.y + y) & 1;
        for (int x = 0; x < tile.width(); ++x) {
            const quint32 grey =
                columns[static_cast<std::size_t>(x)] == rowParity ? kCheckerDark : kCheckerLight;
            out[x] = overGrey(in ? in + x * 4 : kNothing, grey);
        }
    }
    return tile;
}

void CanvasPresentation::dropUnseenTiles() {
    for (std::size_t place = 0; place < images_.size() && heldImages_ > kMostTileImages; ++place) {
        const auto col = static_cast<int64_t>(place) % document_->grid().cols;
        const auto row = static_cast<int64_t>(place) / document_->grid().cols;
        // At a high zoom the tiles in sight are few; far out their reduced pixels stand in the window already.
        if (images_[place].isNull() ||
            (window_.level() == 0 && visible_.contains({col, row, col + 1, row + 1})))
            continue;
        images_[place] = {};
        states_[place] = TileState::stale;
        --heldImages_;
    }
}

int64_t CanvasPresentation::tileImageBytes() const {
    return heldImages_ * kTileBytes;
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
        painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom_ < kNearestFromZoom && !exact);
        painter.setRenderHint(QPainter::Antialiasing, false);
        window_.draw(painter);
    }
    painter.setTransform(device);
}

} // namespace qirn
