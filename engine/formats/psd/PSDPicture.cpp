#include "formats/psd/PSDPicture.h"

#include "core/PaintEngine.h"
#include "core/RGBABuffer.h"
#include "formats/ByteReader.h"
#include "formats/psd/PSDFile.h"
#include "formats/psd/PSDPixels.h"
#include "formats/psd/PSDPlanes.h"
#include "formats/psd/PSDSections.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <vector>

namespace qirn {

namespace {

constexpr std::array<uint8_t, 4> kSignature{'8', 'B', 'P', 'S'};

constexpr int64_t kRowsATask = 16;
constexpr int64_t kCompressionCodeBytes = 2;

bool isOpenable(const PSDSections& sections) {
    const auto isSide = [](int64_t side) { return side >= 1 && side <= PaintEngine::maxCanvasSide; };
    return isSide(sections.width) && isSide(sections.height);
}

/// Null where the backdrop turns out to be another one.
std::shared_ptr<RGBABuffer> pictureOn(PSDPixels::Backdrop backdrop, const PSDSections& sections) {
    const PSDPixels pixels(sections, backdrop);
    PSDPlanes planes(sections, pixels.channels()); // checks the size against the bytes before memory is taken
    auto picture = std::make_shared<RGBABuffer>(sections.width, sections.height);
    std::atomic<bool> fits = true;
    for (int64_t first = 0; first < sections.height && fits; first += planes.rowsAtOnce()) {
        const int64_t rows = std::min(planes.rowsAtOnce(), sections.height - first);
        planes.loadBand(first, rows);
        concurrentPerform((rows + kRowsATask - 1) / kRowsATask, [&](int64_t task) {
            const auto rowBytes = static_cast<std::size_t>(planes.rowBytes());
            std::vector<uint8_t> samples(rowBytes * static_cast<std::size_t>(pixels.channels()));
            const int64_t from = task * kRowsATask;
            for (int64_t y = first + from; y < first + std::min(from + kRowsATask, rows); ++y) {
                for (int c = 0; c < pixels.channels(); ++c)
                    planes.readRow(
                        c, y, std::span(samples).subspan(static_cast<std::size_t>(c) * rowBytes, rowBytes));
                const std::span row(picture->row(y), static_cast<std::size_t>(sections.width) * 4);
                if (!pixels.convert(samples, row)) fits = false;
            }
        });
    }
    return fits ? picture : nullptr;
}

/// Photoshop stores transparent pictures of layered files as they look on white, and other programs do so or not.
std::shared_ptr<RGBABuffer> pictureOf(const PSDSections& sections) {
    if (sections.hasLayers && sections.hasAlpha) {
        if (auto picture = pictureOn(PSDPixels::Backdrop::white, sections)) return picture;
    }
    return pictureOn(PSDPixels::Backdrop::none, sections);
}

} // namespace

bool PSDPicture::isPhotoshopFile(std::span<const uint8_t> file) {
    return file.size() >= kSignature.size() && std::equal(kSignature.begin(), kSignature.end(), file.begin());
}

std::optional<DecodedPicture> PSDPicture::decode(std::span<const uint8_t> file) {
    try {
        const auto sections = psdSectionsOf(file);
        if (!sections || !isOpenable(*sections)) return std::nullopt;
        const bool isThere =
            sections->hasMergedPicture && std::ssize(sections->mergedPicture) > kCompressionCodeBytes;
        if (sections->hasLayers && !isThere) throw PSDFile::PSDError::noMergedPicture();
        const auto picture = pictureOf(*sections);
        auto layer = std::make_shared<Layer>(QStringLiteral("Background"),
                                             TileGrid(sections->width, sections->height));
        layer->load(*picture);
        return DecodedPicture{std::move(layer), sections->dpi};
    } catch (const BEReader::Short&) {
        return std::nullopt;
    }
}

} // namespace qirn
