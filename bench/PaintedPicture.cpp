#include "PaintedPicture.h"

#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "compositing/CompositeInputs.h"
#include "core/SeededRandom.h"
#include "operations/LayerOperations.h"

#include <algorithm>

namespace qirn::bench {

namespace {

/// A shade of paper for every pixel: neighbours differ by a little, as in a scan.
void makePaper(Layer& layer) {
    SeededRandom random(1);
    for (int64_t index = 0; index < layer.grid().count(); ++index) {
        uint8_t* pixels = layer.writableTile(index).writablePixels();
        for (int i = 0; i < kTilePixels; ++i, pixels += 4) {
            const auto shade = static_cast<uint8_t>(238 + random.next() % 12);
            pixels[0] = shade;
            pixels[1] = static_cast<uint8_t>(shade - 3);
            pixels[2] = static_cast<uint8_t>(shade - 9);
            pixels[3] = 255;
        }
    }
}

/// Broad strokes to and fro, a little further down each time.
void paintAllOver(PaintDocument& doc, int number) {
    BrushSettings brush =
        *BrushLibrary::named(number % 2 == 0 ? QStringLiteral("Soft Round") : QStringLiteral("Charcoal"));
    brush.size = 260;
    brush.spacing = std::max(brush.spacing, 0.15);
    const PaintColor color = PaintColor::fromHSV(0.15 * number, 0.6, 0.8);
    std::vector<StrokePoint> points;
    for (int row = 0; row <= 8; ++row) {
        for (int column = 0; column <= 40; ++column) {
            const int along = row % 2 == 0 ? column : 40 - column;
            points.emplace_back(along * kWidth / 40.0, (row + 0.1 * number) * kHeight / 8.0,
                                0.4 + 0.6 * ((column * 7 + number) % 10) / 10.0);
        }
    }
    paintStroke(doc, points, brush, color, nullptr, static_cast<uint64_t>(number));
}

} // namespace

std::unique_ptr<PaintDocument> paintedPicture(int addedLayers) {
    auto doc = std::make_unique<PaintDocument>(kWidth, kHeight, 72, std::nullopt);
    doc->activeLayer().name = QStringLiteral("Background");
    makePaper(doc->activeLayer());
    for (int i = 1; i <= addedLayers; ++i) {
        addLayer(*doc);
        paintAllOver(*doc, i);
        if (i == 2) doc->activeLayer().blendMode = BlendMode::overlay;
    }
    doc->takeDirtyTiles();
    doc->resetHistory();
    return doc;
}

} // namespace qirn::bench
