#include "formats/psd/read/MergedReader.h"

#include "core/PaintEngine.h"
#include "formats/common/ByteReader.h"
#include "formats/psd/PSDFile.h"
#include "formats/psd/read/MergedPixels.h"
#include "formats/psd/read/MergedPlanes.h"
#include "formats/psd/read/PSDSections.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <vector>

#include <QCoreApplication>

namespace qirn {

namespace {

constexpr int64_t kRowsATask = 16;
constexpr int64_t kCompressionCodeBytes = 2;

bool isOpenable(const PSDSections& sections) {
    const auto isSide = [](int64_t side) { return side >= 1 && side <= PaintEngine::maxCanvasSide; };
    return isSide(sections.header.width) && isSide(sections.header.height);
}

/// The tiles that some whole rows of a layer lie on.
class RowTiles {
public:
    RowTiles(Layer& layer, int64_t first, int64_t rows)
        : layer_(layer),
          firstRow_(first / kTileSize),
          end_(first + rows),
          slots_(layer.grid().tilesIn({0, first, layer.grid().width, rows})) {
        for (int64_t slot : slots_) tiles_.push_back(layer.writableTile(slot).writablePixels());
    }

    /// From any thread.
    void put(int64_t y, std::span<const uint8_t> row) const {
        const auto* tile = &tiles_[checkedSize((y / kTileSize - firstRow_) * layer_.grid().cols)];
        for (; !row.empty(); ++tile) {
            const std::size_t bytes = std::min<std::size_t>(row.size(), kTileRowBytes);
            std::copy_n(row.begin(), bytes, *tile + placeInTile(0, y));
            row = row.subspan(bytes);
        }
    }
    /// Removes tiles without alpha that no later row touches.
    void finish() {
        for (int64_t slot : slots_) {
            if (layer_.grid().rectOf(slot).maxY() <= end_ && layer_.tile(slot)->isEmpty())
                layer_.setTile(slot, nullptr);
        }
    }

private:
    Layer& layer_;
    const int64_t firstRow_; // of the grid
    const int64_t end_;      // of the picture's rows
    const std::vector<int64_t> slots_;
    std::vector<uint8_t*> tiles_;
};

/// Null if the colors cannot have been stored on this backdrop.
LayerRef pictureOn(MergedPixels::Backdrop backdrop, const PSDSections& sections, const Progress& progress) {
    const MergedPixels pixels(sections, backdrop);
    MergedPlanes planes(sections, pixels.channels(),
                        progress); // checks the size against the bytes before memory is taken
    auto picture = std::make_shared<Layer>(QStringLiteral("Background"),
                                           TileGrid(sections.header.width, sections.header.height));
    std::atomic<bool> fits = true;
    for (int64_t first = 0; first < sections.header.height && fits; first += planes.rowsAtOnce()) {
        const int64_t rows = std::min(planes.rowsAtOnce(), sections.header.height - first);
        planes.loadBand(first, rows);
        RowTiles tiles(*picture, first, rows);
        concurrentPerform((rows + kRowsATask - 1) / kRowsATask, [&](int64_t task) {
            const auto rowBytes = checkedSize(planes.rowBytes());
            std::vector<uint8_t> samples(rowBytes * checkedSize(pixels.channels()));
            std::vector<uint8_t> row(checkedSize(sections.header.width) * 4);
            const int64_t from = task * kRowsATask;
            for (int64_t y = first + from; y < first + std::min(from + kRowsATask, rows); ++y) {
                for (int c = 0; c < pixels.channels(); ++c)
                    planes.readRow(c, y, std::span(samples).subspan(checkedSize(c) * rowBytes, rowBytes));
                if (!pixels.convert(samples, row)) fits = false;
                tiles.put(y, row);
            }
        });
        tiles.finish();
        progress.done(first + rows, sections.header.height);
    }
    return fits ? picture : nullptr;
}

/// Photoshop stores transparent pictures of layered files as they look on white, and other programs do so or not.
LayerRef pictureOf(const PSDSections& sections, const Progress& progress) {
    if (sections.hasLayers && sections.hasAlpha) {
        if (auto picture = pictureOn(MergedPixels::Backdrop::white, sections, progress)) return picture;
    }
    return pictureOn(MergedPixels::Backdrop::none, sections, progress);
}

} // namespace

std::optional<DecodedPicture> MergedReader::decode(std::span<const uint8_t> file, const Progress& progress) {
    try {
        const auto sections = psdSectionsOf(file);
        if (!sections || !isOpenable(*sections)) return std::nullopt;
        const bool isThere = sections->resources.hasMergedPicture &&
                             std::ssize(sections->mergedPicture) > kCompressionCodeBytes;
        if (sections->hasLayers && !isThere) throw PSDFile::PSDError::noMergedPicture();
        return DecodedPicture{pictureOf(*sections, progress), sections->resources.dpi};
    } catch (const BEReader::Short&) {
        return std::nullopt;
    }
}

ImportRemarks MergedReader::remarks(std::span<const uint8_t> file, const QString& feature) {
    const auto because = [](const QString& what) {
        return ImportRemarks{{ImportRemark::Kind::asOneLayer, what}};
    };
    const auto word = [](const char* text) { return QCoreApplication::translate("ImportRemark", text); };
    try {
        const auto sections = psdSectionsOf(file);
        if (!sections) return {};
        if (sections->header.depth > 8) return because(feature);
        switch (sections->header.mode) {
        case PSDColorMode::bitmap:
        case PSDColorMode::gray:
        case PSDColorMode::indexed:
            return sections->hasLayers ? because(word("grayscale, indexed or bitmap color"))
                                       : ImportRemarks{};
        case PSDColorMode::rgb:
            if (!sections->hasLayers) return {};
            if (sections->header.isLarge) return because(word("large document format"));
            return because(feature.isEmpty() ? word("damaged layers") : feature);
        case PSDColorMode::cmyk:
            return because(word("CMYK color"));
        case PSDColorMode::lab:
            return because(word("Lab color"));
        case PSDColorMode::multichannel:
        case PSDColorMode::duotone:
            return because(word("spot color"));
        }
    } catch (const BEReader::Short&) {} // refused by `decode` as well
    return {};
}

} // namespace qirn
