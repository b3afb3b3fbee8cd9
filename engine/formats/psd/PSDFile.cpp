#include "formats/psd/PSDFile.h"

#include "formats/common/StraightPixels.h"
#include "platform/Require.h"

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

} // namespace qirn
