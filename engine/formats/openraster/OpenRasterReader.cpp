#include "core/PaintDocument.h"
#include "core/PaintEngine.h"
#include "formats/common/ByteReader.h"
#include "formats/common/PictureBuilder.h"
#include "formats/openraster/LayerStack.h"
#include "formats/openraster/OpenRaster.h"
#include "formats/openraster/ZipArchive.h"
#include "formats/pictures/PngReader.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

namespace qirn {

using namespace OpenRaster;

namespace {

constexpr int64_t kPngHead = 24; // to behind the size
// An entry may be unpacked to so much: PNG is packed already, but blank pictures pack again.
// Beyond what a layer's pixels need, all of them share that.
constexpr int64_t kUnpackedBytes = 16 << 20, kUnpackedAByte = 64;
constexpr int64_t kNeededAPixel = 8, kNeededAPicture = 4096; // of 16 bits; with a profile
constexpr std::size_t kProfiles = 4, kBytesAProfile = 256 << 10;
// The layers of a file may need so much: one layer of the largest canvas, and for each byte what it can hold in a PNG.
constexpr int64_t kMostColumns = (PaintEngine::maxCanvasSide + kTileSize - 1) / kTileSize;
constexpr int64_t kBytesAByte = 4 * 1040;
constexpr int64_t kSlotBytes = 16;
constexpr int64_t kHarmlessBytes = kMostColumns * kMostColumns * (kTileBytes + kSlotBytes);
constexpr int64_t kLayersAtOnce = 4; // each decoder has rows of its own, 4 MB

int64_t mostUnpacked(std::span<const uint8_t> file) {
    return kUnpackedBytes + kUnpackedAByte * std::ssize(file);
}

/// The archive, unless it says that it is something else: some programs leave out what it is, or put it elsewhere.
std::optional<ZipReader> archiveIn(std::span<const uint8_t> file) {
    auto archive = isArchive(file) ? ZipReader::open(file) : std::nullopt;
    if (!archive) return std::nullopt;
    const auto type = archive->unpacked("mimetype", 64);
    if (type && type->bytes.trimmed() != "image/openraster") return std::nullopt;
    return archive;
}

/// What a PNG says of its size; zeros for what is none.
IRect sizeOfPng(const ZipReader& archive, const QByteArray& source) {
    const auto head = archive.unpacked(source, kPngHead);
    if (!head || head->bytes.size() < kPngHead || !isPng(bytesOf(head->bytes))) return {};
    BEReader in(bytesOf(head->bytes));
    in.skip(16);
    const int64_t width = in.u32(), height = in.u32();
    return isReadableSize(width, height) ? IRect{0, 0, width, height} : IRect{};
}

/// Where each layer lies, empty for one without pixels; nothing where together they claim more than the file can hold.
/// Looked at before any is unpacked, as nothing is refused from then on.
std::optional<std::vector<IRect>> placesOf(const LayerStack& stack, const ZipReader& archive,
                                           std::span<const uint8_t> file) {
    const int64_t most = kHarmlessBytes + kBytesAByte * std::ssize(file);
    const TileGrid grid(stack.width, stack.height);
    std::map<QByteArray, IRect> sizes;
    std::vector<IRect> places;
    int64_t decoded = 0, held = 0; // bytes
    for (const StackLayer& layer : stack.layers) {
        const auto [size, isNew] = sizes.try_emplace(layer.source);
        if (isNew) size->second = sizeOfPng(archive, layer.source);
        places.push_back({layer.x, layer.y, size->second.w, size->second.h});
        const IRect seen = places.back().intersection(grid.bounds());
        if (seen.isEmpty()) continue;
        const int64_t columns = (seen.maxX() - 1) / kTileSize - seen.x / kTileSize + 1;
        const int64_t rows = (seen.maxY() - 1) / kTileSize - seen.y / kTileSize + 1;
        decoded += 4 * size->second.w * size->second.h;
        held += columns * rows * kTileBytes + grid.count() * kSlotBytes;
        if (std::max(decoded, held) > most) return std::nullopt;
    }
    return places;
}

/// A layer's PNG, empty where nothing of it shows.
struct Packed {
    ZipReader::Unpacked png;
    bool isMissing = false; ///< There is none.
    std::shared_ptr<const ColorProfile> colors;
};

/// Unpacks the layers one after the other. What that takes grows with the file and the pixels only, whatever many layers
/// name one entry: behind a picture, and in a profile, there may be much that is packed into next to nothing.
class Unpacker {
public:
    Unpacker(const ZipReader& archive, std::span<const uint8_t> file, const TileGrid& grid)
        : archive_(archive),
          grid_(grid),
          most_(mostUnpacked(file)),
          profiles_(kProfiles + file.size() / kBytesAProfile) {}

    Packed unpacked(const StackLayer& layer, const IRect& place) {
        if (place.isEmpty()) return {{}, true, nullptr};
        if (place.intersection(grid_.bounds()).isEmpty()) return {};
        const int64_t needed = kNeededAPicture + kNeededAPixel * place.w * place.h;
        auto png = archive_.unpacked(layer.source, std::min(most_, needed + spare_));
        if (!png) return {{}, true, nullptr};
        spare_ -= std::max<int64_t>(0, png->bytes.size() - needed);
        auto colors = profiles_.of(bytesOf(png->bytes));
        return {*std::move(png), false, std::move(colors)};
    }

private:
    const ZipReader& archive_;
    TileGrid grid_;
    int64_t most_;          // of one
    int64_t spare_ = most_; // beyond what pixels need
    PngProfiles profiles_;
};

} // namespace

bool OpenRaster::isArchive(std::span<const uint8_t> file) {
    return file.size() >= 4 && std::memcmp(file.data(), "PK\3\4", 4) == 0;
}

std::unique_ptr<PaintDocument> OpenRaster::read(std::span<const uint8_t> file, ImportRemarks* remarks,
                                                const Progress& progress) {
    const auto archive = archiveIn(file);
    const auto xml = archive ? archive->unpacked("stack.xml", kMostStackBytes) : std::nullopt;
    auto stack = xml ? readStack(xml->bytes) : std::nullopt;
    const auto places = stack ? placesOf(*stack, *archive, file) : std::nullopt;
    if (!places) return nullptr;

    const TileGrid grid(stack->width, stack->height);
    std::vector<LayerRef> layers(places->size());
    Unpacker unpacker(*archive, file, grid);
    for (std::size_t next = 0; next < layers.size();) {
        // A few at a time, as far as their packed pictures take little memory.
        std::vector<Packed> batch;
        int64_t bytes = 0;
        for (; next < layers.size() && std::ssize(batch) < kLayersAtOnce && bytes < kUnpackedBytes; ++next) {
            batch.push_back(unpacker.unpacked(stack->layers[next], (*places)[next]));
            bytes += batch.back().png.bytes.size();
            if (batch.back().isMissing) stack->losses.insert(Loss::missingLayers);
        }
        const std::size_t first = next - batch.size();
        const auto behind = [&](std::size_t layer) {
            return static_cast<double>(layer) / static_cast<double>(layers.size());
        };
        const Progress decoding = progress.part(behind(first), behind(next));
        concurrentPerform(std::ssize(batch), [&](int64_t i) {
            const Packed& packed = batch[checkedSize(i)];
            const std::size_t at = first + checkedSize(i);
            const IRect& place = (*places)[at];
            if (!packed.png.bytes.isEmpty())
                layers[at] = readPngOnto({grid, place.x, place.y}, bytesOf(packed.png.bytes),
                                         packed.colors.get(), decoding);
        });
        for (std::size_t i = 0; i < batch.size(); ++i) {
            if (batch[i].png.bytes.isEmpty()) continue;
            if (!layers[first + i])
                stack->losses.insert(Loss::missingLayers);
            else if (!batch[i].png.isWhole)
                stack->losses.insert(Loss::damagedLayers);
        }
        progress.done(static_cast<int64_t>(next), std::ssize(layers));
    }
    for (std::size_t i = 0; i < layers.size(); ++i) {
        if (!layers[i]) layers[i] = std::make_shared<Layer>(QString(), grid);
        layers[i]->settings() = std::move(stack->layers[i].settings);
        if (layers[i]->name.isEmpty()) layers[i]->name = QStringLiteral("Layer %1").arg(i + 1);
    }
    if (remarks) *remarks = remarksOf(stack->losses);
    const auto top = std::max<int64_t>(std::ssize(layers) - 1, 0);
    return std::make_unique<PaintDocument>(stack->width, stack->height, stack->dpi, std::move(layers),
                                           stack->active.value_or(top));
}

std::optional<DecodedPicture> OpenRaster::finishedPicture(std::span<const uint8_t> file,
                                                          const Progress& progress) {
    const auto archive = archiveIn(file);
    const auto png = archive ? archive->unpacked("mergedimage.png", mostUnpacked(file)) : std::nullopt;
    return png && isPng(bytesOf(png->bytes)) ? readPng(bytesOf(png->bytes), progress) : std::nullopt;
}

} // namespace qirn
