#include "app/canvas/FloatingImage.h"

#include "app/model/PendingTransform.h"
#include "core/PaintEngine.h"
#include "operations/Floating.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cmath>
#include <new>

#include <QPainter>

namespace qirn {

namespace {

constexpr int kMostLevel = 5;
constexpr int64_t kBandRows = 256; // of lifted pixels, reduced at a time; whole blocks of every level

/// The highest level at which a pixel of the image is not larger than a device pixel.
int levelFor(const QTransform& toDevice) {
    const double scale =
        std::max(std::hypot(toDevice.m11(), toDevice.m12()), std::hypot(toDevice.m21(), toDevice.m22()));
    int level = 0;
    while (level < kMostLevel && scale * (2 << level) <= 1) ++level;
    return level;
}

/// The mean of each block of 2^level x 2^level pixels; a block at the band's edge is filled up with transparent ones.
void reduce(const RGBABuffer& band, int level, int64_t firstRow, QImage& image) {
    const int64_t side = int64_t{1} << level;
    const uint32_t half = 1u << (2 * level) >> 1;
    concurrentPerform((band.height() + side - 1) >> level, [&, bits = image.bits()](int64_t row) {
        uint8_t* out = bits + (firstRow + row) * image.bytesPerLine();
        for (int64_t x = 0; x < band.width(); x += side, out += 4) {
            uint32_t sums[4] = {half, half, half, half};
            for (int64_t y = row * side; y < std::min((row + 1) * side, band.height()); ++y) {
                const uint8_t* pixel = band.row(y) + x * 4;
                for (int64_t i = 0; i < std::min(side, band.width() - x) * 4; ++i) sums[i & 3] += pixel[i];
            }
            for (int c = 0; c < 4; ++c) out[c] = static_cast<uint8_t>(sums[c] >> (2 * level));
        }
    });
}

} // namespace

void FloatingImage::render(const Floating& floating, const IRect& part, int level) {
    const int64_t side = int64_t{1} << level;
    QImage image(static_cast<int>((part.w + side - 1) >> level),
                 static_cast<int>((part.h + side - 1) >> level), PaintEngine::imageFormat);
    if (image.isNull()) throw std::bad_alloc();
    for (int64_t y = 0; y < part.h; y += kBandRows) {
        const IRect band{part.x, part.y + y, part.w, std::min(kBandRows, part.h - y)};
        reduce(*floating.picture(band), level, y >> level, image);
    }
    image_ = std::move(image);
    part_ = part;
    level_ = level;
}

void FloatingImage::paint(QPainter& painter, const Floating& floating, const QTransform& toDevice) {
    const IRect& origin = floating.origin;
    const QRectF device = painter.transform().inverted().mapRect(QRectF(painter.viewport()));
    const QRectF seen = toDevice.inverted().mapRect(device);
    const auto partWithin = [&](const QRectF& box) {
        const QRectF part =
            box.intersected(QRectF(0, 0, static_cast<double>(origin.w), static_cast<double>(origin.h)));
        return IRect::covering(part.translated(static_cast<double>(origin.x), static_cast<double>(origin.y)));
    };
    const IRect needed = partWithin(seen.adjusted(-1, -1, 1, 1)); // neighbors that smoothing looks at
    if (needed.isEmpty()) return;
    const int level = levelFor(toDevice);
    if (image_.isNull() || level != level_ || !(part_.united(needed) == part_)) {
        // With a margin, so that not every step of a drag renders again.
        const double x = seen.width() / 4, y = seen.height() / 4;
        render(floating, partWithin(seen.adjusted(-x, -y, x, y)).united(needed), level);
    }
    const double side = 1 << level_;
    painter.setTransform(toDevice, true);
    painter.translate(static_cast<double>(part_.x - origin.x), static_cast<double>(part_.y - origin.y));
    painter.scale(side, side);
    painter.drawImage(0, 0, image_);
}

} // namespace qirn
