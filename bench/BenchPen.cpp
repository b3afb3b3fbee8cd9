// What stands between the pen and the screen: one point painted, what it changed composited and put into the image
// that the screen shows.
#include "PaintedPicture.h"
#include "PlainPass.h"
#include "app/canvas/CanvasPresentation.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include <benchmark/benchmark.h>

namespace qirn::bench {

namespace {

constexpr int kPoints = 900; // of a stroke: seven and a half seconds of a 120 Hz pen

/// A swinging line across the canvas, its pressure swelling and fading.
StrokePoint penPoint(int i) {
    const double t = static_cast<double>(i) / kPoints;
    const double swing = std::fabs(i % 120 - 60.0) / 60; // 1 to 0 to 1
    return {60 + t * (kWidth - 120), 200 + swing * (kHeight - 400), 0.2 + 0.8 * swing, 0, 0, i / 120.0};
}

void penPointOn4K(benchmark::State& state) {
    const auto doc = paintedPicture(4);
    BrushSettings brush = *BrushLibrary::named(QStringLiteral("Soft Round"));
    brush.size = static_cast<double>(state.range(0));
    const double plain = plainPassSeconds(*doc), plainBytes = static_cast<double>(plainPassBytes(*doc));
    std::vector<double> points;
    double tiles = 0, dabs = 0;
    CanvasPresentation screen;
    screen.show(doc.get());
    screen.prepare(ViewTransform(QSizeF(kWidth, kHeight), QSizeF(kWidth, kHeight), {1, {}, 0, false}), 1);
    for (auto _ : state) {
        BrushStroke stroke(*doc, doc->layers().back(), brush, PaintColor(0.7, 0.02, 0.08), 1);
        double whole = 0;
        for (int i = 0; i < kPoints; ++i) {
            const Stopwatch watch;
            stroke.add(penPoint(i));
            const std::vector<DirtyTile> dirty = doc->takeDirtyParts();
            benchmark::DoNotOptimize(screen.update(dirty));
            points.push_back(watch.seconds());
            whole += points.back();
            tiles += static_cast<double>(dirty.size());
        }
        stroke.end();
        dabs += static_cast<double>(stroke.dabCount());
        state.SetIterationTime(whole);
        doc->revertToLastCommit();
        screen.update(doc->takeDirtyParts());
    }
    std::sort(points.begin(), points.end());
    const auto count = static_cast<double>(points.size());
    const double mean = std::accumulate(points.begin(), points.end(), 0.0) / count;
    const double layers = static_cast<double>(doc->layerCount());
    const double plainPoint = plain / plainBytes * (tiles / count) * layers * kTileBytes;
    state.counters["mean_ms"] = mean * 1000;
    state.counters["p95_ms"] = points[points.size() * 95 / 100] * 1000;
    state.counters["max_ms"] = points.back() * 1000;
    state.counters["dabs"] = dabs / count;
    state.counters["tiles"] = tiles / count;
    state.counters["ratio"] = mean / plainPoint;
}
BENCHMARK(penPointOn4K)
    ->Arg(20)
    ->Arg(120)
    ->Arg(400)
    ->Arg(1000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

} // namespace qirn::bench
