// The sections of the self-test on operations that no brush does.
#include "brush/BrushLibrary.h"
#include "brush/BrushPreview.h"
#include "compositing/CompositeInputs.h"
#include "core/selection/Selection.h"
#include "operations/Fill.h"
#include "operations/Floating.h"
#include "operations/Gradient.h"
#include "operations/Reshape.h"
#include "program/SelfTestEngine.h"

#include <set>

namespace qirn {

namespace {

constexpr int kSide = 300;

/// A canvas across four tiles with a frame of opaque black on its layer, `inner` transparent.
std::unique_ptr<PaintDocument> framed(const IRect& inner) {
    auto doc = std::make_unique<PaintDocument>(kSide, kSide, 72, std::nullopt);
    RGBABuffer buffer(kSide, kSide);
    buffer.fill(PaintColor::black());
    for (int64_t y = inner.y; y < inner.maxY(); ++y) {
        std::fill_n(buffer.row(y) + inner.x * 4, inner.w * 4, uint8_t{0});
    }
    doc->activeLayer().load(buffer);
    doc->resetHistory();
    return doc;
}

uint64_t pixels(const PaintDocument& doc) {
    return flattened(doc)->fingerprint();
}

} // namespace

void SelfTestEngine::bucket(SelfTestReport& report) {
    const PaintColor red(1, 0, 0);
    const PixelBytes redPixel{255, 0, 0, 255};
    FillOptions options;
    options.expand = 0;
    const auto doc = framed({200, 200, 80, 80});
    bucketFill(*doc, 240, 240, red, options, 1);
    const Layer& layer = doc->activeLayer();
    report.check(QStringLiteral("A fill stops at the edge, also across tiles"),
                 layer.pixel(200, 200) == redPixel && layer.pixel(279, 279) == redPixel &&
                     layer.pixel(199, 240) == PixelBytes{0, 0, 0, 255});
    doc->undo();
    options.expand = 2;
    bucketFill(*doc, 240, 240, PaintColor(0, 1, 0), options, 1);
    report.check(QStringLiteral("Grow covers the edge by as many pixels as it says"),
                 layer.pixel(198, 240) == PixelBytes{0, 255, 0, 255} &&
                     layer.pixel(197, 240) == PixelBytes{0, 0, 0, 255});
    options = {};
    options.contiguous = false;
    options.expand = 0;
    const auto two = framed({10, 10, 20, 20});
    bucketFill(*two, 50, 50, red, options, 1);
    report.check(QStringLiteral("Without Contiguous every matching pixel is filled"),
                 two->activeLayer().pixel(50, 50) == redPixel &&
                     two->activeLayer().pixel(299, 299) == redPixel &&
                     two->activeLayer().pixel(15, 15)[3] == 0);
    report.check(QStringLiteral("A click beside the canvas fills nothing"),
                 bucketFill(*two, -1, 5, red, options, 1).isEmpty());
    two->activeLayer().isLocked = true;
    report.check(QStringLiteral("A locked layer is not filled"),
                 bucketFill(*two, 15, 15, red, options, 1).isEmpty());
    PaintDocument ramp(kSide, 4, 72, std::nullopt);
    gradientFill(ramp, {0, 0}, {kSide, 0}, GradientKind::linear, PaintColor::black(), PaintColor::white(), 1);
    report.check(QStringLiteral("A gradient runs evenly from end to end"),
                 ramp.activeLayer().pixel(0, 0)[0] <= 1 &&
                     std::abs(ramp.activeLayer().pixel(150, 0)[0] - 128) <= 1 &&
                     ramp.activeLayer().pixel(299, 0)[0] >= 254);
}

void SelfTestEngine::canvasOps(SelfTestReport& report) {
    const auto doc = framed({20, 30, 100, 50});
    const uint64_t before = pixels(*doc);
    rotate(*doc, 1);
    const bool turned = doc->activeLayer().pixel(kSide - 1 - 30, 20)[3] == 0;
    rotate(*doc, 3);
    report.check(QStringLiteral("A quarter turn there and back restores each byte"),
                 turned && pixels(*doc) == before);
    flipCanvas(*doc, FlipAxis::horizontal);
    flipCanvas(*doc, FlipAxis::horizontal);
    report.check(QStringLiteral("Two flips restore each byte"), pixels(*doc) == before);
    resizeCanvas(*doc, kSide + 101, kSide, 0.5, 0);
    report.check(QStringLiteral("A larger canvas keeps the picture where the anchor says"),
                 doc->grid().width == kSide + 101 && doc->activeLayer().pixel(51, 0)[3] == 255 &&
                     doc->activeLayer().pixel(50, 0)[3] == 0);
    cropTo(*doc, {51, 0, kSide, kSide});
    report.check(QStringLiteral("A crop takes the rest away"), pixels(*doc) == before);
    resizeImage(*doc, kSide / 2, kSide / 2);
    report.check(QStringLiteral("A smaller picture keeps its colors"),
                 doc->activeLayer().pixel(100, 100) == PixelBytes{0, 0, 0, 255} &&
                     doc->activeLayer().pixel(30, 25)[3] == 0);
    const auto moved = framed({20, 30, 100, 50});
    moved->selection = Selection::fromMask(std::vector<uint8_t>(kSide * kSide, 255), kSide, kSide);
    const auto floating = liftFloating(*moved);
    report.check(QStringLiteral("Lifted pixels leave the layer"), floating && moved->activeLayer().isEmpty());
    if (floating) placeFloating(*moved, *floating, QTransform());
    report.check(QStringLiteral("Put down unchanged they are what they were"), pixels(*moved) == before);
}

void SelfTestEngine::presets(SelfTestReport& report) {
    std::set<QUuid> ids;
    bool visible = true;
    for (const BrushSettings& preset : BrushLibrary::builtIn()) {
        ids.insert(preset.id);
        const QImage preview = BrushPreview::render(preset, 180, 40, PaintColor(0.95, 0.95, 0.97));
        bool paints = false;
        for (int x = 0; x < preview.width() && !paints; ++x)
            paints = qAlpha(preview.pixel(x, preview.height() / 2)) > 0;
        visible = visible && paints;
    }
    report.check(QStringLiteral("33 presets with identities of their own"), ids.size() == 33);
    report.check(QStringLiteral("Each shows a sample stroke"), visible);
}

} // namespace qirn
