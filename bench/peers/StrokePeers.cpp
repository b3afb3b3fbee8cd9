#include "PeerTable.h"

#include "brush/BrushLibrary.h"
#include "brush/DabStamp.h"
#include "core/PaintDocument.h"

#include <cmath>
#include <memory>
#include <vector>

extern "C" {
#include <mypaint-fixed-tiled-surface.h>
#include <mypaint-surface.h>
}

namespace qirn::bench {

namespace {

constexpr int kWidth = 3840, kHeight = 2160;
constexpr int kPoints = 900;

struct Place {
    double x, y;
};

/// A swinging line in pen points, each with its dabs: a tenth of the size apart, as both engines lay them.
std::vector<std::vector<Place>> dabsOfPoints(double size) {
    std::vector<std::vector<Place>> points;
    const auto at = [](int i) {
        const double swing = std::fabs(i % 120 - 60.0) / 60;
        return Place{60 + i * (kWidth - 120.0) / kPoints, 200 + swing * (kHeight - 400)};
    };
    double need = 0;
    for (int i = 1; i <= kPoints; ++i) {
        const Place from = at(i - 1), to = at(i);
        const double length = std::hypot(to.x - from.x, to.y - from.y);
        points.emplace_back();
        for (; need <= length; need += std::max(size / 10, 0.5)) {
            const double t = need / length;
            points.back().push_back({from.x + (to.x - from.x) * t, from.y + (to.y - from.y) * t});
        }
        need -= length;
    }
    return points;
}

void compareStroke(double size, double reach) {
    const auto points = dabsOfPoints(size);
    PaintDocument doc(kWidth, kHeight, 72, PaintColor::white());
    BrushSettings brush = *BrushLibrary::named(QStringLiteral("Soft Round"));
    const auto ours = [&] {
        doc.layers().back()->freezeTiles();
        DabStamp stamp(doc, *doc.layers().back(), brush, PaintColor(0.7, 0.02, 0.08));
        std::vector<Dab> dabs;
        for (const auto& places : points) {
            dabs.clear();
            for (const Place& place : places) {
                dabs.push_back(
                    {.cx = place.x, .cy = place.y, .radius = size / 2, .hardness = 0, .flow = 0.7});
            }
            stamp.stamp(dabs);
            doc.takeDirtyParts();
        }
    };
    MyPaintFixedTiledSurface* const surface = mypaint_fixed_tiled_surface_new(kWidth, kHeight);
    MyPaintSurface* const plain = mypaint_fixed_tiled_surface_interface(surface);
    const auto theirs = [&] {
        for (const auto& dabs : points) {
            mypaint_surface_begin_atomic(plain);
            for (const Place& place : dabs) {
                mypaint_surface_draw_dab(plain, static_cast<float>(place.x), static_cast<float>(place.y),
                                         static_cast<float>(size / 2), 0.7f, 0.02f, 0.08f, 0.7f, 0.5f, 1, 1,
                                         0, 0, 0);
            }
            MyPaintRectangle changed;
            mypaint_surface_end_atomic(plain, &changed);
        }
    };
    compare({.work = "stroke of 900 points, soft round, " + std::to_string(static_cast<int>(size)) + " px",
             .peer = "libmypaint",
             .reach = reach,
             .ours = ours,
             .theirs = theirs,
             .reset = [&] { doc.revertToLastCommit(); },
             .runs = 5});
    mypaint_surface_unref(plain);
}

} // namespace

void compareStrokes() {
    compareStroke(20, 0.65);
    for (const double size : {120.0, 400.0, 1000.0}) compareStroke(size, 0.45);
}

} // namespace qirn::bench
