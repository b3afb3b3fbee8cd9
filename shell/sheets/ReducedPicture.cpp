#include "shell/sheets/ReducedPicture.h"

#include "app/canvas/ReducedTile.h"
#include "compositing/CompositeInputs.h"
#include "compositing/ScreenTiles.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <memory>

namespace qirn {

ReducedPicture::ReducedPicture(const PaintDocument& doc)
    : grid_(doc.grid()),
      layers_(compositeInputs(doc, ForDisplay::no)) {}

ReducedPicture::Part ReducedPicture::part(const IRect& region, int level, double square) {
    if (level != level_) tiles_.clear();
    level_ = level;
    std::vector<int64_t> shown = grid_.tilesIn(region), missing;
    if (shown.empty()) return {};
    for (const int64_t tile : shown)
        if (!tiles_.contains(tile)) missing.push_back(tile);
    composite(missing, square);

    const IRect first = grid_.rectOf(shown.front()), last = grid_.rectOf(shown.back());
    const IRect all{first.x, first.y, last.maxX() - first.x, last.maxY() - first.y};
    QImage image(static_cast<int>(reducedLength(all.w, level)), static_cast<int>(reducedLength(all.h, level)),
                 QImage::Format_RGB32);
    if (image.isNull()) throw std::bad_alloc();
    for (const int64_t tile : shown) {
        const IRect place = grid_.rectOf(tile);
        const QImage& pixels = tiles_.at(tile);
        uint8_t* corner =
            image.scanLine(static_cast<int>((place.y - all.y) >> level)) + ((place.x - all.x) >> level) * 4;
        copyPixels(corner, image.bytesPerLine(), pixels.constBits(), pixels.bytesPerLine(), pixels.width(),
                   pixels.height());
    }
    return {image, all};
}

void ReducedPicture::composite(const std::vector<int64_t>& tiles, double square) {
    std::vector<QImage> made(tiles.size());
    concurrentPerform(static_cast<int64_t>(tiles.size()), [&](int64_t i) {
        const int64_t tile = tiles[checkedSize(i)];
        const IRect place = grid_.rectOf(tile);
        const auto pixels = std::make_unique_for_overwrite<uint8_t[]>(kTileBytes);
        drawForScreen({tile, place}, layers_, grid_, {square}, pixels.get(), kTileRowBytes);
        QImage image(static_cast<int>(reducedLength(place.w, level_)),
                     static_cast<int>(reducedLength(place.h, level_)), QImage::Format_RGB32);
        if (image.isNull()) throw std::bad_alloc();
        reduceTile(pixels.get(), {0, 0, place.w, place.h}, level_, image.bits(), image.bytesPerLine());
        made[checkedSize(i)] = std::move(image);
    });
    for (std::size_t i = 0; i < tiles.size(); ++i) tiles_[tiles[i]] = std::move(made[i]);
}

} // namespace qirn
