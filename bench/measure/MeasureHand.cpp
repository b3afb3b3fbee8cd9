#include "Measurements.h"
#include "PenRecording.h"

#include "../PaintedPicture.h"
#include "../PlainPass.h"
#include "app/canvas/CanvasPresentation.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <numeric>
#include <vector>

namespace qirn::bench {

namespace {

using Strokes = std::vector<PenStroke>;

/// The recording as large as the canvas allows, in its middle.
Strokes onCanvas(const Strokes& strokes) {
    double left = std::numeric_limits<double>::max(), top = left, right = -left, bottom = -left;
    for (const PenStroke& stroke : strokes) {
        for (const StrokePoint& point : stroke) {
            left = std::min(left, point.x);
            right = std::max(right, point.x);
            top = std::min(top, point.y);
            bottom = std::max(bottom, point.y);
        }
    }
    const double scale = 0.9 * std::min(kWidth / (right - left), kHeight / (bottom - top));
    return toSixtyFourths(strokes, scale, kWidth / 2.0 - (left + right) / 2 * scale,
                          kHeight / 2.0 - (top + bottom) / 2 * scale);
}

struct Times {
    double mean, p95, p999, most; // milliseconds a pen point
};

Times replay(PaintDocument& doc, CanvasPresentation& screen, const Strokes& strokes,
             const BrushSettings& brush) {
    std::vector<double> points;
    for (const PenStroke& recorded : strokes) {
        BrushStroke stroke(doc, doc.layers().back(), brush, PaintColor(0.7, 0.02, 0.08), 1);
        for (const StrokePoint& point : recorded) {
            const Stopwatch watch;
            stroke.add(point);
            screen.update(doc.takeDirtyParts());
            points.push_back(watch.seconds() * 1000);
        }
        stroke.end();
        screen.update(doc.takeDirtyParts());
        doc.commit(QStringLiteral("Brush Stroke"));
    }
    std::sort(points.begin(), points.end());
    const auto share = [&points](double part) {
        return points[static_cast<std::size_t>(part * static_cast<double>(points.size() - 1))];
    };
    return {std::accumulate(points.begin(), points.end(), 0.0) / static_cast<double>(points.size()),
            share(0.95), share(0.999), points.back()};
}

} // namespace

void measureHand(const QString& recording) {
    const auto recorded = readPenRecording(recording);
    if (!recorded) {
        std::printf("No pen recording in %s\n", qPrintable(recording));
        return;
    }
    const Strokes strokes = onCanvas(*recorded);
    const auto doc = paintedPicture(4);
    CanvasPresentation screen;
    screen.show(doc.get());
    doc->takeDirtyParts();
    screen.prepare(ViewTransform(QSizeF(kWidth, kHeight), QSizeF(kWidth, kHeight), {1, {}, 0, false}), 1);
    std::printf("\n%-22s %6s %9s %9s %9s %9s  ms a pen point\n", "A hand on 4K", "px", "mean", "95%", "99.9%",
                "max");
    for (const BrushSettings& brush : BrushLibrary::builtIn()) {
        Times best{0, 0, std::numeric_limits<double>::max(), 0};
        for (int run = 0; run < 3; ++run) {
            const Times times = replay(*doc, screen, strokes, brush);
            if (times.p999 < best.p999) best = times;
            while (doc->canUndo()) doc->undo();
            screen.update(doc->takeDirtyParts());
        }
        std::printf("%-22s %6.0f %9.3f %9.3f %9.3f %9.3f%s\n", qPrintable(brush.name), brush.size, best.mean,
                    best.p95, best.p999, best.most, best.p999 < 8.3 ? "" : "  *");
        std::fflush(stdout);
    }
}

} // namespace qirn::bench
