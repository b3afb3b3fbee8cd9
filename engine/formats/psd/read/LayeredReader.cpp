#include "formats/psd/read/LayeredReader.h"

#include "core/PaintEngine.h"
#include "formats/common/FormatErrors.h"
#include "formats/psd/PSDFile.h"
#include "formats/psd/read/LayerRecords.h"
#include "formats/psd/read/LayerTiles.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace qirn {

using namespace PSDFile;

namespace {

constexpr int kAlpha = -1; // a layer channel's identifier

std::span<const uint8_t> rawRows(BEReader& in, int64_t w, int64_t h) {
    if (h > in.remaining() / w) throw BEReader::Short(); // the product may not fit 64 bits
    return in.slice(w * h);
}

std::span<const uint8_t> packedRows(BEReader& in, std::span<const uint8_t> counts) {
    BEReader numbers(counts);
    int64_t length = 0;
    while (numbers.remaining()) length += numbers.u16();
    return in.slice(length);
}

/// The pixels of layers, which follow the records in the same order.
class LayerData {
public:
    explicit LayerData(BEReader in) : in_(in), at_(in.pos()) {}

    /// The pixels of the next record; nothing where it has no color.
    std::optional<StoredPicture> next(const Rec& rec) {
        StoredPicture picture{rec.rect, {}};
        for (const auto& [identifier, length] : rec.chans) {
            const bool isKnown = identifier >= kAlpha && identifier <= 2;
            if (isKnown && rec.rect.w >= 1 && rec.rect.h >= 1 && length >= 2) {
                auto& plane = picture.planes[identifier == kAlpha ? 3 : checkedSize(identifier)];
                if (plane) unused_.push_back(*plane);
                plane = planeAt(at_, length, rec.rect);
            }
            at_ += length;
        }
        const auto& planes = picture.planes;
        if (planes[0] && planes[1] && planes[2] && !rec.isSection) return picture;
        for (const auto& plane : planes) {
            if (plane) unused_.push_back(*plane);
        }
        return std::nullopt;
    }

    const std::vector<StoredPlane>& unused() const { return unused_; }

private:
    /// A channel may run on beyond the length that it states. No more of that than the whole file once, so that the same
    /// rows cannot be named again and again.
    StoredPlane planeAt(int64_t at, int64_t length, const IRect& rect) {
        in_.moveTo(at);
        StoredPlane plane{{}, {}, rect.w};
        switch (in_.u16()) {
        case 0:
            plane.rows = rawRows(in_, rect.w, rect.h);
            break;
        case 1:
            plane.counts = in_.slice(2 * rect.h);
            plane.rows = packedRows(in_, plane.counts);
            break;
        default:
            throw PSDError::unsupported(QStringLiteral("ZIP-compressed layers"));
        }
        beyond_ += std::max<int64_t>(in_.pos() - at - length, 0);
        if (beyond_ > in_.size()) throw BEReader::Short();
        return plane;
    }

    BEReader in_;
    int64_t at_; // of the next channel; may lie beyond the file as long as nothing is read there
    int64_t beyond_ = 0;
    std::vector<StoredPlane> unused_;
};

LayerRef emptyLayer(const Rec& rec, std::size_t position, const TileGrid& grid) {
    const QString name = rec.name.isEmpty() ? QStringLiteral("Layer %1").arg(position) : rec.name;
    auto layer = std::make_shared<Layer>(name, grid);
    layer->opacity = rec.opacity;
    layer->blendMode = rec.mode;
    layer->isClipping = rec.isClipping;
    layer->isVisible = !rec.isHidden();
    layer->alphaLocked = rec.alphaLocked();
    return layer;
}

} // namespace

PSDHeader PSDFile::readLayeredHeader(BEReader& in) {
    const auto header = readPSDHeader(in);
    if (!header || header->isLarge) throw PaintFileError::notPaintFile();
    if (header->depth != 8) throw PSDError::unsupported(QStringLiteral("%1-bit color").arg(header->depth));
    if (header->mode != PSDColorMode::rgb)
        throw PSDError::unsupported(
            QStringLiteral("color mode %1; only RGB").arg(static_cast<int>(header->mode)));
    const auto [least, most] = std::minmax(header->width, header->height);
    if (least < 1 || most > PaintEngine::maxCanvasSide) throw PaintFileError::tooLarge();
    in.skip(in.u32()); // color mode data
    return *header;
}

std::vector<LayerRef> PSDFile::readLayers(BEReader in, int64_t count, const TileGrid& grid, Losses& losses,
                                          const Progress& progress) {
    std::vector<Rec> recs;
    for (int64_t i = 0; i < count; ++i) {
        recs.push_back(readRecord(in));
        losses.merge(recs.back().losses);
    }

    LayerData data(in);
    std::vector<LayerRef> layers;
    std::vector<StoredPicture> pictures;
    std::vector<Layer*> painted; // the layer of each picture
    for (const Rec& rec : recs) {
        const auto picture = data.next(rec);
        if (rec.isSection) continue;
        layers.push_back(emptyLayer(rec, layers.size() + 1, grid));
        if (!picture) continue;
        pictures.push_back(*picture);
        painted.push_back(layers.back().get());
    }
    const auto tiles = decodePictures(pictures, data.unused(), grid, progress);
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        for (const auto& [slot, tile] : tiles[i]) painted[i]->setTile(slot, tile);
    }
    return layers;
}

LayerRef PSDFile::readFinishedPicture(BEReader& in, const PSDHeader& head, const TileGrid& grid,
                                      const Progress& progress) {
    std::vector<StoredPlane> planes(checkedSize(head.channels), {{}, {}, head.width});
    switch (in.u16()) {
    case 0:
        for (StoredPlane& plane : planes) plane.rows = rawRows(in, head.width, head.height);
        break;
    case 1:
        for (StoredPlane& plane : planes) plane.counts = in.slice(2 * head.height);
        for (StoredPlane& plane : planes) plane.rows = packedRows(in, plane.counts);
        break;
    default:
        throw PSDError::unsupported(QStringLiteral("ZIP-compressed picture"));
    }
    StoredPicture picture{grid.bounds(), {}};
    if (planes.size() < 3) throw PaintFileError::damaged(QStringLiteral("channels"));
    const std::size_t used = std::min<std::size_t>(planes.size(), 4);
    std::copy_n(planes.begin(), used, picture.planes.begin());
    const auto tiles = decodePictures({&picture, 1}, std::span(planes).subspan(used), grid, progress);
    auto layer = std::make_shared<Layer>(QStringLiteral("Background"), grid);
    for (const auto& [slot, tile] : tiles[0]) layer->setTile(slot, tile);
    return layer;
}

} // namespace qirn
