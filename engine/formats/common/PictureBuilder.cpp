#include "formats/common/PictureBuilder.h"

#include "core/MappedRect.h"
#include "core/PaintEngine.h"
#include "formats/common/FlatTiles.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/Require.h"

#include <algorithm>
#include <cstring>

namespace qirn {

namespace {

constexpr int64_t kBlockBytes = 4 << 20;
constexpr int64_t kHarmlessPixels = 1 << 20;
constexpr int64_t kStripRows = 32; // of a tile, converted at a time: they fit the L1 cache

/// Rotation and mirroring from the upright to the stored picture, in the order of EXIF's numbers.
struct Turn {
    int xx, xy, yx, yy;
};
constexpr Turn kTurns[] = {
    {1, 0, 0, 1},   // upright
    {-1, 0, 0, 1},  // mirrored left to right
    {-1, 0, 0, -1}, // half a turn
    {1, 0, 0, -1},  // upside down
    {0, 1, 1, 0},   // rows as columns
    {0, 1, -1, 0},  // a quarter turn clockwise makes it upright
    {0, -1, -1, 0}, // rows as columns, half a turn
    {0, -1, 1, 0},  // a quarter turn counterclockwise
};

void premultiply(uint8_t* rgba, int64_t count) {
    for (int64_t i = 0; i < count; ++i, rgba += 4) {
        if (rgba[3] == 255) continue;
        for (int c = 0; c < 3; ++c) rgba[c] = static_cast<uint8_t>((rgba[c] * rgba[3] + 127) / 255);
    }
}

} // namespace

bool isReadableSize(int64_t width, int64_t height) {
    return std::min(width, height) >= 1 && std::max(width, height) <= PaintEngine::maxCanvasSide;
}

bool backs(std::size_t file, double pixelsAByte, int64_t width, int64_t height) {
    const auto pixels = static_cast<double>(width) * static_cast<double>(height);
    return pixels <= kHarmlessPixels || pixels <= static_cast<double>(file) * pixelsAByte;
}

PixelMap Orientation::toStored(int64_t storedWidth, int64_t storedHeight) const {
    const auto [xx, xy, yx, yy] = kTurns[number_ - 1];
    return {xx, xy, yx, yy, xx + xy < 0 ? storedWidth - 1 : 0, yx + yy < 0 ? storedHeight - 1 : 0};
}

PictureBuilder::PictureBuilder(int64_t width, int64_t height, ColorProfile profile, Orientation orientation,
                               const Progress& progress)
    : PictureBuilder(width, height, std::move(profile), orientation.toStored(width, height),
                     orientation.swapsSides() ? TileGrid(height, width) : TileGrid(width, height), progress) {
}

PictureBuilder::PictureBuilder(const OnCanvas& place, int64_t width, int64_t height, ColorProfile profile,
                               const Progress& progress)
    : PictureBuilder(width, height, std::move(profile), PixelMap::moved(place.x, place.y), place.canvas,
                     progress) {}

PictureBuilder::PictureBuilder(int64_t width, int64_t height, ColorProfile profile, const PixelMap& toStored,
                               const TileGrid& grid, const Progress& progress)
    : width_(width),
      height_(height),
      profile_(std::move(profile)),
      toStored_(toStored),
      toUpright_(toStored_.inverse()),
      grid_(grid),
      growing_(checkedSize(grid_.count())),
      progress_(progress) {
    require(isReadableSize(width, height));
    rowBytes_ = (width * profile_.layout().pixelBytes() + 7) / 8 * 8;
    rowsAtOnce_ = std::clamp<int64_t>(kBlockBytes / rowBytes_, 1, height);
    block_.resize(checkedSize(rowsAtOnce_ * rowBytes_ / 8));
}

void* PictureBuilder::row() {
    require(rowsGiven_ < height_);
    if (rowsGiven_ - rowsDone_ == rowsAtOnce_) convertRows();
    return block_.data() + (rowsGiven_ - rowsDone_) * rowBytes_ / 8;
}

LayerRef PictureBuilder::finish() {
    if (rowsGiven_ == 0) return nullptr;
    convertRows();
    auto layer = std::make_shared<Layer>(QStringLiteral("Background"), grid_);
    FlatTiles flats;
    const IRect given = mapped(toUpright_, {0, 0, width_, rowsGiven_});
    for (const int64_t slot : grid_.tilesIn(given)) {
        Growing& growing = growing_[checkedSize(slot)];
        layer->setTile(slot, growing.tile ? std::move(growing.tile)
                                          : flats.tile(partOfTile(slot, {0, 0, width_, rowsGiven_}),
                                                       growing.pixel.value_or(PixelBytes{})));
    }
    return layer;
}

void PictureBuilder::convertRows() {
    if (rowsDone_ == rowsGiven_) return;
    const IRect block{0, rowsDone_, width_, rowsGiven_ - rowsDone_};
    const std::vector<int64_t> slots = grid_.tilesIn(mapped(toUpright_, block));
    concurrentPerform(std::ssize(slots), [&](int64_t i) {
        const int64_t slot = slots[checkedSize(i)];
        const IRect part = mapped(toStored_, grid_.rectOf(slot)).intersection(block);
        for (int64_t y = part.y; y < part.maxY(); y += kStripRows)
            addPart(slot, {part.x, y, part.w, std::min(kStripRows, part.maxY() - y)});
    });
    rowsDone_ = rowsGiven_;
}

/// `stored` lies in the slot and is at most `kStripRows` high.
void PictureBuilder::addPart(int64_t slot, const IRect& stored) {
    Growing& growing = growing_[checkedSize(slot)];
    uint8_t rgba[kStripRows * kTileRowBytes];
    std::optional<PixelBytes> flat = flatPixel(stored);
    if (!flat) {
        convert(stored, rgba);
        if (allAlike(rgba, stored.w * stored.h, 4)) std::memcpy(flat.emplace().data(), rgba, 4);
    }
    if (flat && !growing.tile && growing.pixel.value_or(*flat) == *flat) {
        growing.pixel = flat;
        return;
    }
    const IRect part = partOfTile(slot, stored);
    if (!growing.tile) {
        growing.tile = std::make_shared<Tile>();
        if (growing.pixel)
            fillPart(*growing.tile, partOfTile(slot, {0, 0, width_, stored.y}), *growing.pixel);
    }
    if (flat) return fillPart(*growing.tile, part, *flat);
    const IRect place = grid_.rectOf(slot);
    const int64_t x = toStored_.sourceX(place.x + part.x, place.y + part.y) - stored.x;
    const int64_t y = toStored_.sourceY(place.x + part.x, place.y + part.y) - stored.y;
    toStored_.copy(rgba + (y * stored.w + x) * 4, stored.w * 4,
                   growing.tile->writableRow(part.y) + part.x * 4, kTileRowBytes, part.w, part.h);
}

/// The part of the slot's tile that the stored pixels of a rectangle fall on.
IRect PictureBuilder::partOfTile(int64_t slot, const IRect& stored) const {
    const IRect place = grid_.rectOf(slot);
    if (stored.isEmpty()) return {};
    const IRect part = mapped(toUpright_, stored).intersection(place);
    return {part.x - place.x, part.y - place.y, part.w, part.h};
}

const uint8_t* PictureBuilder::storedPixel(int64_t x, int64_t y) const {
    return reinterpret_cast<const uint8_t*>(block_.data()) + (y - rowsDone_) * rowBytes_ +
           x * profile_.layout().pixelBytes();
}

/// The converted pixel if all pixels are stored as the same bytes.
std::optional<PixelBytes> PictureBuilder::flatPixel(const IRect& stored) const {
    const int64_t pixelBytes = profile_.layout().pixelBytes();
    const uint8_t* const first = storedPixel(stored.x, stored.y);
    for (int64_t y = stored.y; y < stored.maxY(); ++y) {
        const uint8_t* const row = storedPixel(stored.x, y);
        if (std::memcmp(row, first, checkedSize(pixelBytes)) != 0 || !allAlike(row, stored.w, pixelBytes))
            return std::nullopt;
    }
    PixelBytes pixel;
    convert({stored.x, stored.y, 1, 1}, pixel.data());
    return pixel;
}

void PictureBuilder::convert(const IRect& stored, uint8_t* rgba) const {
    for (int64_t y = stored.y; y < stored.maxY(); ++y) {
        profile_.convert(storedPixel(stored.x, y), rgba, stored.w);
        premultiply(rgba, stored.w);
        rgba += stored.w * 4;
    }
}

} // namespace qirn
