#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "support/Pictures.h"
#include "support/Strokes.h"
#include "support/TestMain.h"

#include <limits>

using namespace qirn;
using namespace qirn::test;

namespace {

const PaintColor kRed(1, 0, 0, 1);

/// A stroke on the only layer of a small canvas.
struct Studio {
    explicit Studio(const BrushSettings& brush, uint64_t seed = 1)
        : stroke(doc, doc.layers().front(), brush, kRed, seed) {}
    Layer& layer() { return *doc.layers().front(); }
    int alpha(int64_t x, int64_t y) { return layer().pixel(x, y)[3]; }

    PaintDocument doc{600, 300, 72, std::nullopt};
    BrushStroke stroke;
};

/// A brush of 10 pixels whose dabs stand `step` pixels apart.
BrushSettings stepping(double step) {
    BrushSettings brush = plainBrush(10);
    brush.spacing = step / 10;
    return brush;
}

} // namespace

class tst_BrushStroke : public QObject {
    Q_OBJECT

private Q_SLOTS:

    void aHeldAirbrushGoesOnPainting() {
        BrushSettings brush = plainBrush(20);
        brush.airbrush = true;
        brush.airbrushRate = 30;
        brush.flow = 0.05;
        brush.opacity = 0.8;
        Studio studio(brush);
        studio.stroke.hold(5); // before the pen is down
        QCOMPARE(studio.stroke.dabCount(), 0);
        studio.stroke.begin({100, 100, 1});
        const int first = studio.alpha(100, 100);
        studio.stroke.hold(1);
        QCOMPARE(studio.stroke.dabCount(), 31);
        QVERIFY(first < 20 && studio.alpha(100, 100) > 100);
        studio.stroke.hold(20);
        QCOMPARE(studio.alpha(100, 100), 204); // the ceiling
        // Parts of a dab add up from tick to tick.
        const int64_t before = studio.stroke.dabCount();
        for (double seconds : {0.03, 0.03, 0.0, -3.0, std::numeric_limits<double>::quiet_NaN()})
            studio.stroke.hold(seconds);
        QCOMPARE(studio.stroke.dabCount(), before + 1);
        // Holding is not traveling: the next dab of the line comes where it would have come, a step of 1 away.
        studio.stroke.add({100.75, 100, 1});
        QCOMPARE(studio.stroke.dabCount(), before + 1);
        studio.stroke.add({101, 100, 1});
        QCOMPARE(studio.stroke.dabCount(), before + 2);
    }

    void theStabilizerNeverLosesThePressure() {
        // Even at full strength a tenth of a second of light pressure shows.
        BrushSettings brush = plainBrush(100);
        brush.pressureSize = true;
        brush.minSize = 0;
        brush.stabilizer = 100;
        Studio studio(brush);
        studio.stroke.begin({100, 150, 1});
        for (int i = 1; i <= 12; ++i) studio.stroke.add({100.0 + 40 * i, 150, 0});
        studio.stroke.end();
        QCOMPARE(studio.alpha(580, 160), 0); // 0.7 to the twelfth of 100 pixels
        QVERIFY(studio.alpha(580, 150) > 0);
    }

    void pointsFarOutsideCountButTouchNothing() {
        BrushSettings brush = stepping(10);
        brush.scatter = 0.1;
        Studio studio(brush);
        studio.doc.takeDirtyTiles();
        studio.stroke.begin({-1e6, -1e6, 1});
        studio.stroke.add({-1e6, -1e6 + 95, 1});
        QCOMPARE(studio.stroke.dabCount(), 10);
        QCOMPARE(studio.stroke.dirty(), IRect{});
        QVERIFY(studio.doc.takeDirtyTiles().empty());
        QVERIFY(studio.layer().tiles().holdsNothing());
        for (const BrushSettings& preset : BrushLibrary::builtIn()) {
            Studio other(preset);
            other.stroke.begin({1e12, -1e12, 1});
            other.stroke.add({1e12, -1e12 + 3, 1});
            other.stroke.end();
            QVERIFY2(other.layer().isEmpty(), qPrintable(preset.name));
        }
    }

    void theDirtyRectangleHoldsAllThatChanged() {
        for (const BrushSettings& brush : BrushLibrary::builtIn()) {
            PaintDocument doc(600, 400, 72, std::nullopt);
            const auto before = noise(600, 400, 21);
            doc.layer(0).load(*before);
            const std::vector<StrokePoint> points{{-10, 50, 1}, {130, 260, 0.5}, {300, 395, 1}};
            const IRect dirty = paintStroke(doc, points, brush, kRed, nullptr, 1);
            QCOMPARE(dirty.intersection(doc.grid().bounds()), dirty);
            int64_t outside = 0, inside = 0;
            for (int64_t i = 0; i < 600 * 400; ++i) {
                const int64_t x = i % 600, y = i / 600;
                if (doc.layer(0).pixel(x, y) != before->pixel(x, y))
                    ++(dirty.contains(x, y) ? inside : outside);
            }
            QVERIFY2(outside == 0 && inside > 20, qPrintable(brush.name));
        }
    }
};

QIRN_TEST(tst_BrushStroke)
#include "tst_BrushStroke.moc"
