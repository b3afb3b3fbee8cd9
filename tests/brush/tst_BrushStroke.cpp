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

BrushSettings preset(const char* name) {
    return *BrushLibrary::named(QString::fromLatin1(name));
}

} // namespace

class tst_BrushStroke : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aTapIsOneDab() {
        for (double stabilizer : {0.0, 50.0, 100.0}) {
            BrushSettings brush = stepping(20);
            brush.stabilizer = stabilizer;
            Studio studio(brush);
            studio.stroke.begin({100, 100, 1});
            QCOMPARE(studio.stroke.dabCount(), 1);
            studio.stroke.end();
            QCOMPARE(studio.stroke.dabCount(), 1);
            QCOMPARE(studio.alpha(100, 100), 255);
        }
    }

    void theDistanceBetweenDabsCarriesOverSamples() {
        Studio studio(stepping(20));
        studio.stroke.begin({100, 100, 1});
        studio.stroke.add({150, 100, 1}); // two and a half steps: dabs at 120 and 140
        QCOMPARE(studio.stroke.dabCount(), 3);
        studio.stroke.add({150, 109.5, 1});
        QCOMPARE(studio.stroke.dabCount(), 3);
        studio.stroke.add({150, 110, 1}); // exactly one step: a dab falls on the end of the segment
        QCOMPARE(studio.stroke.dabCount(), 4);
        QCOMPARE(studio.alpha(130, 100), 0); // separate dots
        QCOMPARE(studio.alpha(120, 100), 255);
        QCOMPARE(studio.alpha(150, 110), 255);
    }

    void aPenThatDoesNotMoveLaysNothing() {
        Studio studio(stepping(20));
        studio.stroke.begin({100, 100, 1});
        studio.stroke.add({115, 100, 1});
        for (int i = 0; i < 50; ++i) studio.stroke.add({115, 100, 0.5});
        QCOMPARE(studio.stroke.dabCount(), 1);
        studio.stroke.add({120, 100, 1}); // what was travelled before still counts
        QCOMPARE(studio.stroke.dabCount(), 2);
        studio.stroke.hold(3); // this brush does not spray
        QCOMPARE(studio.stroke.dabCount(), 2);
    }

    void dabsDoNotDependOnHowOftenThePenReports() {
        const auto picture = [](double step) {
            Studio studio(stepping(4));
            for (const StrokePoint& point : line(20, 20, 532, 276, step)) studio.stroke.add(point);
            studio.stroke.end();
            return std::pair(studio.stroke.dabCount(), studio.layer().toBuffer());
        };
        const auto [coarseDabs, coarse] = picture(1000);
        const auto [fineDabs, fine] = picture(3);
        QCOMPARE(coarseDabs, 144); // 572.4 pixels of way
        QCOMPARE(fineDabs, coarseDabs);
        int farthest = 0;
        for (int64_t i = 3; i < coarse->byteCount(); i += 4)
            farthest = std::max(farthest, std::abs(coarse->data()[i] - fine->data()[i]));
        QVERIFY(farthest <= 1);
    }

    void theStepFollowsThePressureAndHasAFloor() {
        const auto dabs = [](const BrushSettings& with, double pressure) {
            Studio studio(with);
            studio.stroke.begin({100, 100, pressure});
            studio.stroke.add({200, 100, pressure});
            return studio.stroke.dabCount();
        };
        BrushSettings brush = stepping(10);
        QCOMPARE(dabs(brush, 0.5), 11);
        brush.pressureSize = true;
        brush.minSize = 0.2;
        QCOMPARE(dabs(brush, 1), 11);
        QCOMPARE(dabs(brush, 0), 51); // a fifth of the size, a fifth of the step
        brush.sizeJitter = 1;
        QCOMPARE(dabs(brush, 0), 51); // jitter changes dabs, not their distance
        brush = plainBrush(1);
        brush.spacing = 0.02;
        QCOMPARE(dabs(brush, 1), 201); // never closer than half a pixel
    }

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
        studio.stroke.hold(0.03);
        QCOMPARE(studio.stroke.dabCount(), before);
        studio.stroke.hold(0.03);
        QCOMPARE(studio.stroke.dabCount(), before + 1);
        for (double seconds : {0.0, -3.0, std::numeric_limits<double>::quiet_NaN()})
            studio.stroke.hold(seconds);
        QCOMPARE(studio.stroke.dabCount(), before + 1);
        // Holding is not travelling: the next dab of the line comes where it would have come, a step of 1 away.
        studio.stroke.add({100.75, 100, 1});
        QCOMPARE(studio.stroke.dabCount(), before + 1);
        studio.stroke.add({101, 100, 1});
        QCOMPARE(studio.stroke.dabCount(), before + 2);
    }

    void theStabilizerTrailsAndThenReachesThePen() {
        for (double strength : {10.0, 60.0, 100.0}) {
            BrushSettings brush = stepping(1);
            brush.stabilizer = strength;
            Studio studio(brush);
            studio.stroke.begin({50, 100, 1});
            studio.stroke.add({450, 100, 1});
            // One sample moves the line by 1 - 0.95 sqrt(strength / 100) of the way.
            const double at = 50 + 400 * (1 - 0.95 * std::sqrt(strength / 100));
            QCOMPARE(studio.alpha(static_cast<int64_t>(at) + 7, 100), 0);
            QCOMPARE(studio.alpha(static_cast<int64_t>(at) - 2, 100), 255);
            studio.stroke.end();
            QCOMPARE(studio.layer().contentBounds(), (IRect{45, 95, 410, 10}));
        }
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

    void aLockedLayerOrNoPointChangesNothing() {
        PaintDocument doc(600, 300, 72, std::nullopt);
        doc.takeDirtyTiles();
        const uint64_t before = doc.fingerprint();
        QCOMPARE(paintStroke(doc, {}, plainBrush(20), kRed, nullptr, 1), IRect{});
        QCOMPARE(doc.fingerprint(), before);
        doc.activeLayer().isLocked = true;
        QCOMPARE(paintStroke(doc, line(0, 0, 99, 99), plainBrush(20), kRed, nullptr, 1), IRect{});
        QVERIFY(doc.activeLayer().tiles().holdsNothing());
        QVERIFY(doc.takeDirtyTiles().empty());
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
        // They draw their random numbers all the same: the dab after them differs from one that comes first.
        studio.stroke.add({300, 150, 1});
        studio.stroke.end();
        QVERIFY(!studio.layer().isEmpty());
        for (const char* name : {"Smudge", "Blur", "Spray Can", "Hard Eraser"}) {
            Studio other(preset(name));
            other.stroke.begin({1e12, -1e12, 1});
            other.stroke.add({1e12, -1e12 + 3, 1});
            other.stroke.end();
            QVERIFY(other.layer().isEmpty());
        }
    }

    void theTilesBeforeTheStrokeStayWithWhoHoldsThem() {
        for (const char* name : {"Hard Round", "Soft Eraser", "Smudge", "Blur", "Spray Can"}) {
            PaintDocument doc(600, 300, 72, std::nullopt);
            doc.layer(0).load(*noise(600, 300, 9));
            doc.commit(QStringLiteral("Noise"));
            const uint64_t before = doc.fingerprint();
            QVERIFY(!paintStroke(doc, line(20, 150, 580, 150), preset(name), kRed, nullptr, 1).isEmpty());
            QVERIFY(doc.fingerprint() != before);
            doc.commit(QStringLiteral("Brush Stroke"));
            doc.undo();
            QCOMPARE(doc.fingerprint(), before);
        }
    }

    void aStrokeSharesTheTilesItFound() {
        PaintDocument doc(600, 300, 72, std::nullopt);
        paintRect(doc, doc.layer(0), {0, 0, 600, 300}, {0, 0, 255, 255});
        std::weak_ptr<Tile> old = doc.layer(0).tiles().share(0);
        BrushStroke stroke(doc, doc.layers()[0], plainBrush(20), kRed, 1);
        doc.layer(0).tiles().forEachTile([](int64_t, const Tile& tile) { QVERIFY(tile.isFrozen()); });
        stroke.begin({100, 100, 1});
        QVERIFY(!old.expired()); // kept to paint from
        stroke.end();
        QVERIFY(old.expired());
    }

    void settingsFromNowhereAreMendedFirst() {
        BrushSettings brush = plainBrush(10);
        for (const BrushField& field : kBrushFields) {
            if (field.number) brush.*field.number = std::numeric_limits<double>::quiet_NaN();
        }
        Studio studio(brush);
        for (const StrokePoint& point : line(0, 0, 599, 299)) studio.stroke.add(point);
        studio.stroke.end();
        QCOMPARE(studio.stroke.brush().size, 1.0);
        QCOMPARE(StrokePoint(0, 0, std::numeric_limits<double>::quiet_NaN()).pressure, 0.0);
        QCOMPARE(StrokePoint(0, 0, 7).pressure, 1.0);
    }
};

QIRN_TEST(tst_BrushStroke)
#include "tst_BrushStroke.moc"
