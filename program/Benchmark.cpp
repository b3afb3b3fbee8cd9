#include "program/Benchmark.h"

#include "app/canvas/CanvasPresentation.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "formats/native/PaintFile.h"
#include "formats/psd/PSDFile.h"
#include "operations/Fill.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <numeric>

namespace qirn {

namespace {

constexpr int kWidth = 3840, kHeight = 2160;
constexpr int kPoints = 900; // of a stroke

class Stopwatch {
public:
    double milliseconds() const {
        return std::chrono::duration<double, std::milli>(Clock::now() - start_).count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};

/// A swinging line over the whole canvas, its pressure swelling and fading.
StrokePoint penPoint(int i) {
    const double t = static_cast<double>(i) / kPoints;
    const int m = i % 60;
    const double swing = m < 30 ? m : 60 - m;
    return {
        60 + t * (kWidth - 120), kHeight / 2.0 + (swing - 15) * 55, 0.2 + 0.8 * swing / 30, 0, 0, i / 120.0};
}

/// Paper, three painted layers and an empty one to paint on.
std::unique_ptr<PaintDocument> paintedDocument() {
    auto doc = std::make_unique<PaintDocument>(kWidth, kHeight, 72, PaintColor::white());
    BrushSettings brush = *BrushLibrary::named(QStringLiteral("Soft Round"));
    brush.size = 400;
    for (int layer = 0; layer < 3; ++layer) {
        BrushStroke stroke(*doc, doc->layers().back(), brush, PaintColor(0.3 * layer, 0.5, 0.9 - 0.3 * layer),
                           1);
        for (int i = 0; i < kPoints; ++i) {
            StrokePoint point = penPoint(i);
            point.y += 300 * (layer - 1);
            stroke.add(point);
        }
        stroke.end();
        if (layer == 1) doc->activeLayer().blendMode = BlendMode::overlay;
        addLayer(*doc);
    }
    doc->commit(QStringLiteral("Prepare"));
    return doc;
}

/// The whole canvas on a screen of its size, as the canvas view keeps it.
CanvasPresentation onScreen(PaintDocument& doc) {
    CanvasPresentation presentation;
    presentation.show(&doc);
    doc.takeDirtyParts(); // all are new to the screen
    presentation.prepare(ViewTransform(QSizeF(kWidth, kHeight), QSizeF(kWidth, kHeight), {1, {}, 0, false}),
                         1);
    return presentation;
}

void timeStroke(PaintDocument& doc, double size) {
    CanvasPresentation screen = onScreen(doc);
    BrushSettings brush = *BrushLibrary::named(QStringLiteral("Soft Round"));
    brush.size = size;
    BrushStroke stroke(doc, doc.layers().back(), brush, PaintColor(0.7, 0.02, 0.08), 1);
    std::vector<double> samples;
    const Stopwatch whole;
    for (int i = 0; i < kPoints; ++i) {
        const Stopwatch point;
        stroke.add(penPoint(i));
        screen.update(doc.takeDirtyParts());
        samples.push_back(point.milliseconds());
    }
    stroke.end();
    const double seconds = whole.milliseconds() / 1000;
    doc.commit(QStringLiteral("Brush Stroke"));
    std::sort(samples.begin(), samples.end());
    const double mean = std::accumulate(samples.begin(), samples.end(), 0.0) / kPoints;
    std::printf(
        " %4.0f px: avg %6.2f ms  95%% %6.2f ms  max %6.2f ms per point · %5.0f points/s · %lld dabs\n", size,
        mean, samples[kPoints * 95 / 100], samples.back(), kPoints / seconds,
        static_cast<long long>(stroke.dabCount()));
    std::fflush(stdout);
}

void timeRecomposite(PaintDocument& doc) {
    CanvasPresentation screen = onScreen(doc);
    doc.markAllDirty();
    const std::vector<DirtyTile> tiles = doc.takeDirtyParts();
    const Stopwatch watch;
    screen.update(tiles);
    std::printf("Full-screen recomposite (%zu tiles, %lld layers, overlay blend): %.0f ms\n", tiles.size(),
                static_cast<long long>(doc.layerCount()), watch.milliseconds());
}

void timeFile(PaintDocument& doc) {
    const Stopwatch saving;
    const QByteArray bytes = PaintFile::encode(doc);
    std::printf("Save 4K 5-layer document: %.0f ms (%lld MB)\n", saving.milliseconds(),
                static_cast<long long>(bytes.size() / 1'000'000));
    const Stopwatch opening;
    PaintFile::decode(bytesOf(bytes));
    std::printf("Open it again: %.0f ms\n", opening.milliseconds());
    const Stopwatch exporting;
    const qsizetype exported = PSDFile::write(doc, PSDFile::Layered::yes).size();
    std::printf("Export layered PSD: %.0f ms (%lld MB)\n", exporting.milliseconds(),
                static_cast<long long>(exported / 1'000'000));
}

void timeUndo(PaintDocument& doc) {
    for (int64_t i = 1; i < doc.layerCount(); ++i)
        doc.fillLayer(doc.layer(i), PaintColor(0.1, 0.2, 0.3, 0.5));
    doc.commit(QStringLiteral("Fill"));
    const Stopwatch watch;
    doc.undo();
    std::printf("Undo a 4-layer change: %.1f ms\n", watch.milliseconds());
}

void timeBucket(PaintDocument& doc) {
    addLayer(doc);
    const Stopwatch watch;
    bucketFill(doc, 5, 5, PaintColor(0.2, 0.6, 0.3), FillOptions(), 1);
    std::printf("Bucket fill of the whole 4K layer: %.0f ms\n", watch.milliseconds());
}

} // namespace

void runBenchmark() {
    std::printf("Qirn Paint benchmark — %d×%d canvas, 3 layers + paint layer — %d CPU threads — \n", kWidth,
                kHeight, concurrency());
    std::fflush(stdout);
    const auto doc = paintedDocument();
    for (const double size : {20.0, 120.0, 400.0, 1000.0}) timeStroke(*doc, size);
    timeRecomposite(*doc);
    timeFile(*doc);
    timeUndo(*doc);
    timeBucket(*doc);
    std::fflush(stdout);
}

} // namespace qirn
