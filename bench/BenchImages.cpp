#include "PaintedPicture.h"
#include "PlainPass.h"
#include "compositing/CompositeInputs.h"
#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "platform/Bytes.h"

#include <benchmark/benchmark.h>

namespace qirn::bench {

namespace {

/// One layer, so that the codec and not the compositor is measured.
void exportPicture(benchmark::State& state, ExportFormat format) {
    const auto doc = paintedPicture(1);
    const Stopwatch watch;
    qsizetype size = 0;
    for (auto _ : state) size = ImageExport::data(*doc, format, 0.9, PaintColor::white()).size();
    state.counters["megabytes"] = static_cast<double>(size) / 1e6;
    state.counters["ratio"] =
        watch.seconds() / static_cast<double>(state.iterations()) / plainPassSeconds(*doc);
}
BENCHMARK_CAPTURE(exportPicture, png, ExportFormat::png)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exportPicture, jpeg, ExportFormat::jpeg)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exportPicture, tiff, ExportFormat::tiff)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void openPicture(benchmark::State& state, ExportFormat format) {
    const auto doc = paintedPicture(1);
    const QByteArray file = ImageExport::data(*doc, format, 0.9, PaintColor::white());
    const Stopwatch watch;
    for (auto _ : state) benchmark::DoNotOptimize(ImageImport::decode(bytesOf(file)));
    state.counters["ratio"] =
        watch.seconds() / static_cast<double>(state.iterations()) / plainPassSeconds(*doc);
}
BENCHMARK_CAPTURE(openPicture, png, ExportFormat::png)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openPicture, jpeg, ExportFormat::jpeg)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openPicture, tiff, ExportFormat::tiff)
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

} // namespace qirn::bench
