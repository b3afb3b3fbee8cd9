#include "PaintReference.h"
#include "operations/Gradient.h"
#include "platform/lanes/InstructionSets.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>

using namespace qirn;
using namespace qirn::test;

namespace {

struct Drag {
    QPointF from, to;
    GradientKind kind;
    PaintColor start, end;
    double opacity;
};

/// The whole gradient over a layer's pixels, one by one.
std::shared_ptr<RGBABuffer> simpleGradient(const PaintDocument& doc, const Drag& drag) {
    const double dx = drag.to.x() - drag.from.x(), dy = drag.to.y() - drag.from.y();
    const double len2 = std::max(dx * dx + dy * dy, 1e-9);
    const PaintColor &start = drag.start, &end = drag.end;
    const double startRgb[] = {start.r, start.g, start.b}, endRgb[] = {end.r, end.g, end.b};
    return pictureOf(doc.grid().width, doc.grid().height, [&](int64_t x, int64_t y) {
        PixelBytes pixel = doc.activeLayer().pixel(x, y);
        const float s = doc.selection ? doc.selection->value(x, y) / 255.0f : 1;
        const double u = x + 0.5 - drag.from.x(), v = y + 0.5 - drag.from.y();
        double t = drag.kind == GradientKind::radial ? std::sqrt(u * u + v * v) / std::sqrt(len2)
                                                     : (dx * u + dy * v) / len2;
        if (drag.kind == GradientKind::reflected) t = std::abs(t);
        t = std::clamp(t, 0.0, 1.0);
        const double a = start.a + (end.a - start.a) * t;
        if (s == 0 || a <= 0) return pixel;
        std::array<float, 3> color;
        for (std::size_t c = 0; c < 3; ++c) {
            const double first = startRgb[c] * start.a;
            color[c] = static_cast<float>((first + (endRgb[c] * end.a - first) * t) / a);
        }
        layOnPixel(pixel.data(), color, s * static_cast<float>(a * drag.opacity),
                   doc.activeLayer().alphaLocked);
        return pixel;
    });
}

IRect fill(PaintDocument& doc, const Drag& drag) {
    return gradientFill(doc, drag.from, drag.to, drag.kind, drag.start, drag.end, drag.opacity);
}

} // namespace

class tst_Gradient : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useInstructionSet({}); }

    void everyPixelFollowsTheRules() {
        constexpr int64_t w = 600, h = 300;
        const auto before = noise(w, h, 11);
        for (const std::string& name : instructionSets()) {
            useInstructionSet(name);
            for (int i = 0; i < 54; ++i) {
                const auto doc = documentOf(*before);
                doc->activeLayer().alphaLocked = i & 2;
                if (i & 1) doc->selection = patchySelection(w, h, 2);
                // The last have no length, and start in a pixel's center, which alone shows the start, or beside one.
                const QPointF from = i < 48   ? QPointF(120.3, 250)
                                     : i < 51 ? QPointF(60.5, 40.5)
                                              : QPointF(60, 40);
                const Drag drag{from,
                                i < 48 ? QPointF(390, 71.75) : from,
                                kGradientKinds[static_cast<std::size_t>(i < 48 ? i / 16 : i % 3)].kind,
                                PaintColor(0.95, 0.2, 0.61, i & 8 ? 1 : 0.9),
                                PaintColor(0.1, 0.75, 0.3, i & 4 ? 0 : 1),
                                i % 3 == 0 ? 1 : 0.43};
                const auto wanted = simpleGradient(*doc, drag);
                QCOMPARE(fill(*doc, drag), i & 1 ? doc->selection->bounds() : doc->grid().bounds());
                QCOMPARE(doc->takeDirtyTiles().size(), std::size_t{6});
                QCOMPARE(firstDifference(*doc->activeLayer().toBuffer(), *wanted), QString());
            }
        }
    }

    void tilesThatArePaintedNowhereAreNotMade() {
        PaintDocument doc(900, 10, 72, {});
        const Drag drag{{0, 0}, {900, 0}, GradientKind::linear, PaintColor::black(), PaintColor::white(), 1};
        Layer& layer = doc.activeLayer();
        layer.isLocked = true;
        QCOMPARE(fill(doc, drag), IRect());
        QVERIFY(layer.isEmpty() && doc.takeDirtyTiles().empty());
        layer.isLocked = false;
        layer.alphaLocked = true;
        fill(doc, drag);
        QVERIFY(layer.tiles().holdsNothing()); // nothing there to keep the alpha of
        layer.alphaLocked = false;
        doc.selection = selectionOf(900, 10, [](int64_t x, int64_t y) { return x + y == 0 || x + y == 908; });
        QCOMPARE(fill(doc, drag), doc.grid().bounds());
        QVERIFY(layer.tile(0) && !layer.tile(1) && !layer.tile(2) && layer.tile(3));
    }
};

QIRN_TEST(tst_Gradient)
#include "tst_Gradient.moc"
