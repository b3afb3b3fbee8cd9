#include "formats/psd/PSDFile.h"

#include "core/PaintDocument.h"
#include "formats/common/StraightPixels.h"
#include "formats/psd/read/LayeredReader.h"
#include "formats/psd/write/PSDWriter.h"
#include "platform/Require.h"

#include <cstdlib>
#include <utility>

namespace qirn {

PSDFile::PSDError PSDFile::PSDError::unsupported(const QString& feature) {
    PSDError error(
        QStringLiteral("This Photoshop file uses a feature Qirn Paint can't read (%1).").arg(feature));
    error.feature_ = feature;
    return error;
}

PSDFile::PSDError PSDFile::PSDError::noMergedPicture() {
    return PSDError(QStringLiteral(
        "This Photoshop file was saved without a flattened picture, and its layers use a feature "
        "Qirn Paint can't read. Save it again with \"Maximize compatibility\" on."));
}

std::array<std::vector<uint8_t>, 4> PSDFile::planes(const RGBABuffer& buffer, const IRect& rect) {
    require(rect.isEmpty() || rect.intersection({0, 0, buffer.width(), buffer.height()}) == rect);
    std::array<std::vector<uint8_t>, 4> planes;
    for (int64_t y = rect.y; y < rect.maxY(); ++y) {
        for (int64_t x = rect.x; x < rect.maxX(); ++x) {
            const PixelBytes pixel = buffer.pixel(x, y);
            for (std::size_t channel = 0; channel < 3; ++channel)
                planes[channel].push_back(straight(pixel[channel], pixel[3]));
            planes[3].push_back(pixel[3]);
        }
    }
    return planes;
}

QByteArray PSDFile::write(const PaintDocument& doc, Layered layered, const Progress& progress) {
    const bool hasLayers = layered == Layered::yes;
    BEWriter out;
    writeHead(out, doc);
    PlanePacker packer(doc);
    // As if the finished picture were one more layer.
    const auto layers = static_cast<double>(hasLayers ? doc.layerCount() : 0);
    const double layersDone = layers / (layers + 1);
    if (hasLayers)
        writeLayers(out, doc, packer, progress.part(0, layersDone));
    else
        out.u32(0);
    // In files with layers readers remove white from the colors of the merged picture, as Photoshop does.
    writeFinishedPicture(out, packer, hasLayers ? Matte::white : Matte::none, progress.part(layersDone, 1));
    return out.take();
}

std::unique_ptr<PaintDocument> PSDFile::read(std::span<const uint8_t> file, ImportRemarks* remarks,
                                             const Progress& progress) {
    BEReader in(file);
    const PSDHeader head = readLayeredHeader(in);
    const PSDResources resources = readPSDResources(in);
    Losses losses = lossesOfProfile(resources.profile);
    const TileGrid grid(head.width, head.height);

    std::vector<LayerRef> layers;
    const int64_t length = in.u32();
    const int64_t end = in.pos() + length;
    if (length >= 5 && in.u32() != 0) {
        const int64_t count = in.i16(); // negative where the finished picture has its own transparency
        layers = readLayers(in, std::abs(count), grid, losses, progress);
    }
    if (layers.empty()) {
        in.moveTo(end);
        layers.push_back(readFinishedPicture(in, head, grid, progress));
    }
    if (remarks) *remarks = remarksOf(losses);
    const auto top = static_cast<int64_t>(layers.size()) - 1;
    return std::make_unique<PaintDocument>(head.width, head.height, resources.dpi, std::move(layers), top);
}

} // namespace qirn
