#include "Measurements.h"

#include "../PaintedPicture.h"
#include "../PlainPass.h"
#include "app/canvas/CanvasPresentation.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "formats/native/PaintFile.h"
#include "platform/BlockPool.h"
#include "platform/Bytes.h"

#include <cstdio>

#include <QFile>

namespace qirn::bench {

namespace {

/// Megabytes of this process in memory.
double residentMegabytes() {
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly)) return 0;
    return file.readAll().split(' ').at(1).toDouble() * 4096 / 1e6;
}

double megabytes(int64_t bytes) {
    return static_cast<double>(bytes) / 1e6;
}

void measureMemory() {
    const QByteArray file = PaintFile::encode(*paintedPicture(4));
    BlockPool::trim();
    const double before = residentMegabytes();
    const int64_t tilesBefore = BlockPool::usedBytes();
    const auto doc = PaintFile::decode(bytesOf(file));
    const double tiles = megabytes(BlockPool::usedBytes() - tilesBefore);
    const double opened = residentMegabytes() - before;
    CanvasPresentation screen;
    screen.show(doc.get());
    screen.prepare(ViewTransform(QSizeF(kWidth, kHeight), QSizeF(kWidth, kHeight), {1, {}, 0, false}), 1);
    const double shown = residentMegabytes() - before;
    std::printf(
        "A 4K picture of five layers: %.0f MB of tiles; open %.0f MB (%.2f times), on screen %.0f MB\n",
        tiles, opened, opened / tiles, shown);
}

void paintAcross(PaintDocument& doc, double x, double y) {
    const StrokePoint points[] = {{x, y, 1}, {x + 300, y + 200, 0.7}, {x + 500, y, 1}};
    paintStroke(doc, points, *BrushLibrary::named(QStringLiteral("Soft Round")), PaintColor(0.1, 0.3, 0.8),
                nullptr, 1);
}

/// A small drawing in the middle of a blank canvas.
void measureHugeCanvas(int64_t side) {
    PaintDocument drawn(side, side, 72, std::nullopt);
    for (int i = 0; i < 20; ++i) paintAcross(drawn, static_cast<double>(side) / 2, side / 2.0 + i * 20);
    drawn.commit(QStringLiteral("Drawing"));
    const QByteArray file = PaintFile::encode(drawn);

    const Stopwatch opening;
    const auto doc = PaintFile::decode(bytesOf(file));
    const double open = opening.seconds();
    CanvasPresentation screen;
    const Stopwatch showing;
    screen.show(doc.get());
    const QSizeF view(1920, 1080), canvas(static_cast<double>(side), static_cast<double>(side));
    const double fit = 1000 / static_cast<double>(side);
    screen.prepare(ViewTransform(view, canvas, {fit, {}, 0, false}), fit);
    const double zoomOut = showing.seconds();
    doc->takeDirtyParts();
    const Stopwatch painting;
    paintAcross(*doc, static_cast<double>(side) / 2, static_cast<double>(side) / 2 - 300);
    screen.update(doc->takeDirtyParts());
    const double paint = painting.seconds();
    doc->commit(QStringLiteral("Brush Stroke"));
    const Stopwatch saving;
    PaintFile::encode(*doc);
    std::printf(
        "%6lld px a side: open %.1f ms, first look from far %.1f ms, a stroke %.1f ms, save %.1f ms\n",
        static_cast<long long>(side), open * 1000, zoomOut * 1000, paint * 1000, saving.seconds() * 1000);
    std::fflush(stdout);
}

void measureUndo(int steps) {
    const auto doc = paintedPicture(4);
    doc->maxUndoSteps = steps;
    doc->maxUndoBytes = INT64_MAX;
    const int64_t before = BlockPool::usedBytes();
    double committing = 0;
    for (int i = 0; i < steps; ++i) {
        paintAcross(*doc, 200 + i * 7 % 3000, 100 + i * 13 % 1800);
        const Stopwatch watch;
        doc->commit(QStringLiteral("Brush Stroke"));
        committing += watch.seconds();
    }
    const double held = megabytes(BlockPool::usedBytes() - before);
    const Stopwatch undoing;
    int undone = 0;
    for (; doc->canUndo(); ++undone) doc->undo();
    std::printf("%3d undo steps: %.0f MB, a commit %.4f ms, an undo %.4f ms\n", undone, held,
                committing * 1000 / steps, undoing.seconds() * 1000 / undone);
    std::fflush(stdout);
}

} // namespace

void measureCanvas() {
    measureMemory();
    for (const int64_t side : {3000, 10'000, 30'000}) measureHugeCanvas(side);
    for (const int steps : {50, 150, 500}) measureUndo(steps);
}

} // namespace qirn::bench
