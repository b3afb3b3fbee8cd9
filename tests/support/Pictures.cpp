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

std::shared_ptr<RGBABuffer> pictureOf(int64_t width, int64_t height,
                                      const std::function<PixelBytes(int64_t x, int64_t y)>& pixelAt) {
    auto buffer = std::make_shared<RGBABuffer>(width, height);
    for (int64_t i = 0; i < width * height; ++i) {
        const PixelBytes pixel = pixelAt(i % width, i / width);
        std::copy(pixel.begin(), pixel.end(), buffer->data() + i * 4);
    }
    return buffer;
}

SelectionRef selectionOf(int64_t width, int64_t height,
                         const std::function<int(int64_t x, int64_t y)>& valueAt) {
    std::vector<uint8_t> mask;
    for (int64_t i = 0; i < width * height; ++i)
        mask.push_back(static_cast<uint8_t>(valueAt(i % width, i / width)));
    return Selection::fromMask(mask, width, height);
}

std::unique_ptr<PaintDocument> documentOf(const RGBABuffer& pixels) {
    auto doc = std::make_unique<PaintDocument>(pixels.width(), pixels.height(), 72, std::nullopt);
    doc->activeLayer().load(pixels);
    doc->commit(QStringLiteral("Paint"));
    doc->takeDirtyTiles();
    return doc;
}

QPainterPath rectangle(double x, double y, double w, double h) {
    QPainterPath path;
    path.addRect(x, y, w, h);
    return path;
}

std::set<const Tile*> tilesOf(const Layer& layer) {
    std::set<const Tile*> tiles;
    layer.tiles().forEachTile([&](int64_t, const Tile& tile) { tiles.insert(&tile); });
    return tiles;
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
    if (a.width() != b.width() || a.height() != b.height())
        return QString::asprintf("sizes %d x %d and %d x %d", int(a.width()), int(a.height()), int(b.width()),
                                 int(b.height()));
    for (int64_t i = 0; i < a.width() * a.height(); ++i) {
        const int64_t x = i % a.width(), y = i / a.width();
        if (a.pixel(x, y) != b.pixel(x, y))
            return QStringLiteral("at %1,%2: ").arg(x).arg(y) + text(a.pixel(x, y)) + " and " +
                   text(b.pixel(x, y));
    }
    return {};
}

QString text(const PixelBytes& p) {
    return QStringLiteral("%1,%2,%3,%4").arg(p[0]).arg(p[1]).arg(p[2]).arg(p[3]);
}

} // namespace qirn::test
