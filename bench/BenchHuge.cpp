// Huge canvases, and what is done to them at once. `peak` is how many megabytes the process took beyond what it held.
#include "PlainPass.h"
#include "core/selection/Selection.h"
#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "operations/Floating.h"
#include "operations/LayerOperations.h"
#include "platform/BlockPool.h"
#include "platform/Bytes.h"

#include <fstream>
#include <functional>
#include <string>

#include <benchmark/benchmark.h>

namespace qirn::bench {

namespace {

/// Megabytes of this process, from a line of its status: "VmHWM:" at most since the last reset, "VmRSS:" now.
double statusMegabytes(const std::string& line) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kilobytes = 0;
        if (word == line && status >> kilobytes) return kilobytes * 1024 / 1e6;
    }
    return 0;
}

/// Once, since the peak of a second pass would hide behind what the first one left.
void timeOnce(benchmark::State& state, const std::function<void()>& change) {
    for (auto _ : state) {
        std::ofstream("/proc/self/clear_refs") << 5; // forgets the peak
        const double before = statusMegabytes("VmRSS:");
        const Stopwatch watch;
        change();
        state.SetIterationTime(watch.seconds());
        state.counters["peak"] = statusMegabytes("VmHWM:") - before;
    }
}

void paintSquare(PaintDocument& doc, Layer& layer, int64_t index) {
    layer.writableTile(index).writablePixels()[3] = 255;
    doc.commit(QStringLiteral("Stroke"));
}

/// Two layers of one tile each; argument 1: over flat paper.
void mergeHuge(benchmark::State& state) {
    PaintDocument doc(30000, 30000, 72, state.range(0) ? std::optional(PaintColor::white()) : std::nullopt);
    addLayer(doc);
    paintSquare(doc, doc.layer(doc.layerCount() - 1), 3000);
    paintSquare(doc, doc.layer(doc.layerCount() - 2), 5000);
    timeOnce(state, [&] { mergeVisible(doc); });
}
BENCHMARK(mergeHuge)->Arg(0)->Arg(1)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// An ellipse of 2000 pixels on a canvas of 30,000.
void selectHuge(benchmark::State& state) {
    QPainterPath ellipse;
    ellipse.addEllipse(QRectF(14000.3, 13900.7, 2000, 2000));
    SelectionRef selection;
    timeOnce(state, [&] {
        selection = Selection::make(ellipse, SelectionOp::replace, {}, 30000, 30000, Antialias::yes);
    });
}
BENCHMARK(selectHuge)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Every tile differs, and no row of one is flat.
void paintAllOver(Layer& layer) {
    for (int64_t index = 0; index < layer.grid().count(); ++index) {
        uint8_t* pixels = layer.writableTile(index).writablePixels();
        for (int64_t i = 0; i < kTilePixels; ++i, pixels += 4) {
            pixels[0] = static_cast<uint8_t>(i * 3 + index);
            pixels[1] = static_cast<uint8_t>(i >> 8);
            pixels[2] = static_cast<uint8_t>(index);
            pixels[3] = 255;
        }
    }
}

void liftWholeLayer(benchmark::State& state) {
    PaintDocument doc(12000, 9000, 72, std::nullopt);
    paintAllOver(doc.activeLayer());
    doc.commit(QStringLiteral("Paint"));
    timeOnce(state, [&] { benchmark::DoNotOptimize(liftFloating(doc)); });
}
BENCHMARK(liftWholeLayer)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

void putDownMoved(benchmark::State& state) {
    PaintDocument doc(12000, 9000, 72, std::nullopt);
    paintAllOver(doc.activeLayer());
    doc.commit(QStringLiteral("Paint"));
    const auto floating = liftFloating(doc);
    timeOnce(state, [&] { placeFloating(doc, *floating, QTransform::fromTranslate(-100, 50)); });
}
BENCHMARK(putDownMoved)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// 12,000 x 12,000 pixels, which are 576 MB.
void openHuge(benchmark::State& state, ExportFormat format) {
    QByteArray file;
    {
        PaintDocument doc(12000, 12000, 72, std::nullopt);
        paintAllOver(doc.activeLayer());
        file = ImageExport::data(doc, format, 0.9, PaintColor::white());
    }
    BlockPool::trim();
    std::unique_ptr<PaintDocument> opened;
    timeOnce(state, [&] { opened = ImageImport::document(bytesOf(file), {}); });
}
BENCHMARK_CAPTURE(openHuge, png, ExportFormat::png)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openHuge, jpeg, ExportFormat::jpeg)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openHuge, tiff, ExportFormat::tiff)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openHuge, psd, ExportFormat::psdFlat)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

} // namespace qirn::bench
