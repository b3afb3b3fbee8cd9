#include "PeerTable.h"

#include "../PaintedPicture.h"
#include "app/canvas/CanvasPresentation.h"
#include "compositing/CompositeInputs.h"
#include "core/SeededRandom.h"
#include "platform/Parallel.h"

#include <cstring>
#include <vector>

#include <QPainter>
#include <pixman.h>

namespace qirn::bench {

namespace {

pixman_op_t operatorOf(BlendMode mode) {
    switch (mode) {
    case BlendMode::normal:
        return PIXMAN_OP_OVER;
    case BlendMode::multiply:
        return PIXMAN_OP_MULTIPLY;
    case BlendMode::screen:
        return PIXMAN_OP_SCREEN;
    case BlendMode::overlay:
        return PIXMAN_OP_OVERLAY;
    case BlendMode::darken:
        return PIXMAN_OP_DARKEN;
    case BlendMode::lighten:
        return PIXMAN_OP_LIGHTEN;
    case BlendMode::colorDodge:
        return PIXMAN_OP_COLOR_DODGE;
    case BlendMode::colorBurn:
        return PIXMAN_OP_COLOR_BURN;
    case BlendMode::hardLight:
        return PIXMAN_OP_HARD_LIGHT;
    case BlendMode::softLight:
        return PIXMAN_OP_SOFT_LIGHT;
    case BlendMode::difference:
        return PIXMAN_OP_DIFFERENCE;
    case BlendMode::exclusion:
        return PIXMAN_OP_EXCLUSION;
    case BlendMode::hue:
        return PIXMAN_OP_HSL_HUE;
    case BlendMode::saturation:
        return PIXMAN_OP_HSL_SATURATION;
    case BlendMode::color:
        return PIXMAN_OP_HSL_COLOR;
    case BlendMode::luminosity:
        return PIXMAN_OP_HSL_LUMINOSITY;
    default:
        return PIXMAN_OP_CLEAR; // it has no such formula
    }
}

/// A canvas-sized image of four bytes a pixel.
class Plane {
public:
    explicit Plane(std::shared_ptr<RGBABuffer> pixels)
        : pixels_(std::move(pixels)),
          image_(pixman_image_create_bits(
              PIXMAN_a8r8g8b8, static_cast<int>(pixels_->width()), static_cast<int>(pixels_->height()),
              reinterpret_cast<uint32_t*>(pixels_->data()), static_cast<int>(pixels_->width() * 4))) {}
    ~Plane() { pixman_image_unref(image_); }
    Plane(const Plane&) = delete;
    Plane& operator=(const Plane&) = delete;

    pixman_image_t* image() const { return image_; }
    RGBABuffer& pixels() const { return *pixels_; }

private:
    std::shared_ptr<RGBABuffer> pixels_;
    pixman_image_t* image_;
};

/// In as many strips as there are threads; the images are only read, each strip has its own target.
void pixmanStack(const std::vector<std::unique_ptr<Plane>>& layers, const PaintDocument& doc,
                 RGBABuffer& target) {
    const int strips = concurrency();
    concurrentPerform(strips, [&](int64_t strip) {
        const int top = static_cast<int>(kHeight * strip / strips),
                  bottom = static_cast<int>(kHeight * (strip + 1) / strips);
        pixman_image_t* const out = pixman_image_create_bits(
            PIXMAN_a8r8g8b8, kWidth, bottom - top, reinterpret_cast<uint32_t*>(target.row(top)), kWidth * 4);
        for (std::size_t i = 0; i < layers.size(); ++i) {
            const BlendMode mode = doc.layer(static_cast<int64_t>(i)).blendMode;
            pixman_image_t* const source =
                pixman_image_create_bits(PIXMAN_a8r8g8b8, kWidth, kHeight,
                                         reinterpret_cast<uint32_t*>(layers[i]->pixels().data()), kWidth * 4);
            pixman_image_composite32(i == 0 ? PIXMAN_OP_SRC : operatorOf(mode), source, nullptr, out, 0, top,
                                     0, 0, 0, 0, kWidth, bottom - top);
            pixman_image_unref(source);
        }
        pixman_image_unref(out);
    });
}

void painterStack(const std::vector<QImage>& layers, const PaintDocument& doc, QImage& target) {
    const int strips = concurrency();
    concurrentPerform(strips, [&](int64_t strip) {
        const int top = static_cast<int>(kHeight * strip / strips),
                  bottom = static_cast<int>(kHeight * (strip + 1) / strips);
        QImage part(target.bits() + top * target.bytesPerLine(), kWidth, bottom - top, target.bytesPerLine(),
                    target.format());
        QPainter painter(&part);
        for (std::size_t i = 0; i < layers.size(); ++i) {
            const bool overlay = doc.layer(static_cast<int64_t>(i)).blendMode == BlendMode::overlay;
            painter.setCompositionMode(i == 0    ? QPainter::CompositionMode_Source
                                       : overlay ? QPainter::CompositionMode_Overlay
                                                 : QPainter::CompositionMode_SourceOver);
            painter.drawImage(0, -top, layers[i]);
        }
    });
}

void compareStacks() {
    const auto doc = paintedPicture(4);
    doc->layer(2).blendMode = BlendMode::normal;
    doc->layer(4).blendMode = BlendMode::overlay;
    CanvasPresentation screen;
    screen.show(doc.get());
    screen.prepare(ViewTransform(QSizeF(kWidth, kHeight), QSizeF(kWidth, kHeight), {1, {}, 0, false}), 1);
    doc->markAllDirty();
    const std::vector<DirtyTile> tiles = doc->takeDirtyParts();
    const auto ours = [&] { screen.update(tiles); };
    const std::string work = "135 tiles, 5 layers, overlay on top";

    std::vector<std::unique_ptr<Plane>> planes;
    std::vector<QImage> images;
    for (const LayerRef& layer : doc->layers()) {
        const auto pixels = layer->toBuffer();
        images.push_back(pixels->makeImage().convertToFormat(QImage::Format_ARGB32_Premultiplied));
        planes.push_back(std::make_unique<Plane>(pixels));
    }
    RGBABuffer target(kWidth, kHeight);
    compare({work, "pixman, by strips", 0.25, ours, [&] { pixmanStack(planes, *doc, target); }});
    QImage canvas(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
    compare({work, "QPainter, by strips", 0.25, ours, [&] { painterStack(images, *doc, canvas); }});
    const auto stream = [&] {
        concurrentPerform(doc->grid().count(), [&](int64_t index) {
            std::vector<uint64_t> sums(kTileBytes / 8);
            for (const LayerRef& layer : doc->layers()) {
                const Tile* tile = layer->tile(index);
                if (!tile) continue;
                const auto* words = reinterpret_cast<const uint64_t*>(tile->pixels());
                for (std::size_t i = 0; i < sums.size(); ++i) sums[i] ^= words[i];
            }
            const IRect part = doc->grid().rectOf(index);
            for (int64_t y = 0; y < part.h; ++y) {
                std::memcpy(target.row(part.y + y) + part.x * 4, sums.data() + y * kTileRowBytes / 8,
                            static_cast<std::size_t>(part.w) * 4);
            }
        });
    };
    compare({work, "reading five, writing one", 2.5, ours, stream});
}

/// A tile of noise over another, on one thread: the same pixels for both.
void compareModes() {
    setConcurrency(1);
    SeededRandom random(1);
    const auto noise = [&random] {
        auto tile = std::make_shared<Tile>();
        uint8_t* p = tile->writablePixels();
        for (int i = 0; i < kTilePixels; ++i, p += 4) {
            p[3] = static_cast<uint8_t>(random.next());
            for (int c = 0; c < 3; ++c) p[c] = static_cast<uint8_t>(random.next() % (p[3] + 1u));
        }
        return tile;
    };
    std::vector<CompositeInput> stack(2);
    std::vector<std::unique_ptr<Plane>> planes;
    for (CompositeInput& input : stack) {
        const TileRef tile = noise();
        auto pixels = std::make_shared<RGBABuffer>(kTileSize, kTileSize);
        std::memcpy(pixels->data(), std::as_const(*tile).pixels(), kTileBytes);
        planes.push_back(std::make_unique<Plane>(pixels));
        TileArray tiles(1);
        tiles.set(0, tile);
        input.tiles = tiles;
    }
    RGBABuffer out(kTileSize, kTileSize);
    Plane target(std::make_shared<RGBABuffer>(kTileSize, kTileSize));
    for (const BlendModeRow& row : kBlendModes) {
        if (operatorOf(row.mode) == PIXMAN_OP_CLEAR) continue;
        stack[1].mode = row.mode;
        const bool whole = row.mode >= BlendMode::hue;
        compare({std::string("mode ") + row.id, "pixman",
                 row.mode == BlendMode::normal ? 1.4
                 : whole                       ? 0.2
                                               : 0.3,
                 [&] {
                     for (int i = 0; i < 20; ++i) Compositor::compositeTile(0, stack, out.data());
                 },
                 [&] {
                     for (int i = 0; i < 20; ++i) {
                         pixman_image_composite32(PIXMAN_OP_SRC, planes[0]->image(), nullptr, target.image(),
                                                  0, 0, 0, 0, 0, 0, kTileSize, kTileSize);
                         pixman_image_composite32(operatorOf(row.mode), planes[1]->image(), nullptr,
                                                  target.image(), 0, 0, 0, 0, 0, 0, kTileSize, kTileSize);
                     }
                 }});
    }
    setConcurrency(0);
}

} // namespace

void compareCompositing() {
    compareStacks();
    compareModes();
}

} // namespace qirn::bench
