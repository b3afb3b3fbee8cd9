#include "support/Pictures.h"

#include "core/SeededRandom.h"

#include <cstring>

namespace qirn::test {

void paintRect(PaintDocument& doc, Layer& layer, const IRect& rect, const PixelBytes& pixel) {
    for (int64_t index : doc.grid().tilesIn(rect)) {
        const IRect tile = doc.grid().rectOf(index);
        const IRect part = tile.intersection(rect);
        uint8_t* pixels = layer.writableTile(index).writablePixels();
        for (int64_t y = part.y; y < part.maxY(); ++y) {
            for (int64_t x = part.x; x < part.maxX(); ++x) {
                std::memcpy(pixels + (y - tile.y) * kTileRowBytes + (x - tile.x) * 4, pixel.data(), 4);
            }
        }
    }
    doc.markDirty(rect);
}

std::shared_ptr<RGBABuffer> noise(int64_t width, int64_t height, uint64_t seed) {
    auto buffer = std::make_shared<RGBABuffer>(width, height);
    SeededRandom random(seed);
    for (int64_t i = 0; i < width * height; ++i) {
        const uint64_t bits = random.next();
        const uint8_t kind = bits & 3;
        const auto a = static_cast<uint8_t>(kind == 0 ? 0 : kind == 1 ? 255 : (bits >> 8) & 255);
        uint8_t* pixel = buffer->data() + i * 4;
        for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>(((bits >> (16 + 8 * c)) & 255) * a / 255);
        pixel[3] = a;
    }
    return buffer;
}

std::unique_ptr<PaintDocument> randomDocument(int64_t width, int64_t height, int layers, uint64_t seed) {
    SeededRandom random(seed);
    const TileGrid grid(width, height);
    std::vector<LayerRef> stack;
    for (int i = 0; i < layers; ++i) {
        auto layer = std::make_shared<Layer>(QStringLiteral("Layer %1").arg(i + 1), grid);
        layer->load(*noise(width, height, random.next()));
        layer->opacity = 0.25 + 0.75 * random.unit();
        layer->blendMode = static_cast<BlendMode>(random.next() % kBlendModeCount);
        layer->isVisible = random.unit() > 0.15;
        layer->isLocked = random.unit() > 0.8;
        layer->alphaLocked = random.unit() > 0.8;
        layer->isClipping = i > 0 && random.unit() > 0.6;
        stack.push_back(std::move(layer));
    }
    return std::make_unique<PaintDocument>(width, height, 72, std::move(stack), layers - 1);
}

QString firstDifference(const RGBABuffer& a, const RGBABuffer& b) {
    if (a.width() != b.width() || a.height() != b.height()) {
        return QStringLiteral("sizes %1x%2 and %3x%4")
            .arg(a.width())
            .arg(a.height())
            .arg(b.width())
            .arg(b.height());
    }
    for (int64_t y = 0; y < a.height(); ++y) {
        for (int64_t x = 0; x < a.width(); ++x) {
            if (a.pixel(x, y) != b.pixel(x, y)) {
                return QStringLiteral("at %1,%2: %3 and %4")
                    .arg(x)
                    .arg(y)
                    .arg(text(a.pixel(x, y)), text(b.pixel(x, y)));
            }
        }
    }
    return {};
}

QString text(const PixelBytes& p) {
    return QStringLiteral("%1,%2,%3,%4").arg(p[0]).arg(p[1]).arg(p[2]).arg(p[3]);
}

} // namespace qirn::test
