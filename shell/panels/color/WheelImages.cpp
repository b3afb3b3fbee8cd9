#include "shell/panels/color/WheelImages.h"

#include "core/PaintColor.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qirn::WheelImages {

namespace {

int byteOf(double channel) {
    return static_cast<int>(channel * 255 + 0.5);
}

} // namespace

QImage ring(int side, double thickness) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return image; // without memory it is made when it is next drawn
    const double outer = side / 2.0, inner = outer - thickness;
    for (int y = 0; y < side; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        const double dy = y + 0.5 - outer;
        for (int x = 0; x < side; ++x) {
            const double dx = x + 0.5 - outer;
            const double distance = std::sqrt(dx * dx + dy * dy);
            // Half a pixel of transition on each side lies inside the square and the thickness.
            const double cover = std::clamp(std::min(outer - distance, distance - inner), 0.0, 1.0);
            row[x] = 0;
            if (cover == 0) continue;
            const PaintColor hue = PaintColor::fromHSV(std::atan2(dy, dx) / (2 * std::numbers::pi), 1, 1);
            row[x] =
                qRgba(byteOf(hue.r * cover), byteOf(hue.g * cover), byteOf(hue.b * cover), byteOf(cover));
        }
    }
    return image;
}

QImage tones(int side, double hue) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return image;
    const PaintColor full = PaintColor::fromHSV(hue, 1, 1);
    // The first pixel is white and the last the full hue, as the ends of a drag are.
    const double last = std::max(1, side - 1);
    for (int y = 0; y < side; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        const double v = 1 - y / last;
        for (int x = 0; x < side; ++x) {
            const double s = x / last;
            const auto channel = [&](double strongest) { return byteOf(v * (1 - s * (1 - strongest))); };
            row[x] = qRgb(channel(full.r), channel(full.g), channel(full.b));
        }
    }
    return image;
}

} // namespace qirn::WheelImages
