#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "support/PenRecording.h"
#include "support/Pictures.h"
#include "support/Strokes.h"
#include "support/TestMain.h"

#include <limits>

#include <QTemporaryFile>

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
        // Nor does pressing harder on the spot change what a held airbrush lays there.
        BrushSettings brush = plainBrush(40);
        brush.airbrush = brush.pressureSize = true;
        brush.minSize = 0;
        Studio held(brush);
        held.stroke.begin({100, 100, 0.25});
        held.stroke.add({100, 100, 1});
        held.stroke.hold(1);
        QCOMPARE(held.layer().contentBounds(), (IRect{95, 95, 10, 10}));
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
        int far = 0;
        for (int64_t y = 0; y < 300; ++y) {
            for (int64_t x = 0; x < 600; ++x)
                far += std::abs(coarse->pixel(x, y)[3] - fine->pixel(x, y)[3]) > 1;
        }
        QCOMPARE(far, 0);
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
        const int second = studio.alpha(100, 100);
        QVERIFY(first < 20 && second > 100);
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
    }

    void holdingNeedsAnAirbrushOrASpray() {
        Studio pen(plainBrush(20));
        pen.stroke.begin({100, 100, 1});
        pen.stroke.hold(3);
        QCOMPARE(pen.stroke.dabCount(), 1);
        BrushSettings spray = plainBrush(20);
        spray.spray = true;
        Studio can(spray);
        can.stroke.begin({100, 100, 1});
        can.stroke.hold(1);
        QCOMPARE(can.stroke.dabCount(), 21);
        // Holding is not travelling: the next dab of the line comes where it would have come.
        BrushSettings air = stepping(20);
        air.airbrush = true;
        Studio held(air);
        held.stroke.begin({100, 100, 1});
        held.stroke.add({115, 100, 1});
        held.stroke.hold(1);
        held.stroke.add({119, 100, 1});
        QCOMPARE(held.stroke.dabCount(), 21);
        held.stroke.add({120, 100, 1});
        QCOMPARE(held.stroke.dabCount(), 22);
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

    void theStabilizerSmoothsAShakyLine() {
        const auto off = [](double stabilizer) {
            BrushSettings brush = plainBrush(3);
            brush.stabilizer = stabilizer;
            Studio studio(brush);
            for (int i = 0; i <= 200; ++i) studio.stroke.add({20 + 2.5 * i, i % 2 == 0 ? 106.0 : 94.0, 1});
            studio.stroke.end();
            int count = 0;
            for (int64_t y = 0; y < 300; ++y) {
                for (int64_t x = 0; x < 600; ++x) count += std::abs(y - 100) > 3 && studio.alpha(x, y) > 0;
            }
            return count;
        };
        QVERIFY2(off(80) * 10 < off(0), qPrintable(QStringLiteral("%1 and %2").arg(off(80)).arg(off(0))));
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

    void equalSeedsGiveEqualStrokes_data() {
        QTest::addColumn<QString>("name");
        for (const char* name : {"Charcoal", "Splatter", "Dry Brush", "Chalk", "Fine Mist"}) {
            QTest::newRow(name) << QString::fromLatin1(name);
        }
    }
    void equalSeedsGiveEqualStrokes() {
        QFETCH(QString, name);
        const auto painted = [&](uint64_t seed) {
            PaintDocument doc(520, 300, 72, std::nullopt);
            paintStroke(doc, zigzag(), *BrushLibrary::named(name), kRed, nullptr, seed);
            return doc.layer(0).fingerprint();
        };
        QCOMPARE(painted(7), painted(7));
        QVERIFY(painted(7) != painted(8));
        QCOMPARE(painted(0), painted(0)); // seed 0 is as good as any
    }

    void pointsByHandGiveTheSameStroke() {
        for (const char* name : {"Studio Pen", "Charcoal", "Spray Can", "Smudge", "Blur", "Hard Eraser"}) {
            PaintDocument a(600, 400, 72, PaintColor(0.4, 0.6, 0.9, 1)),
                b(600, 400, 72, PaintColor(0.4, 0.6, 0.9, 1));
            for (const PenStroke& points : syntheticHand()) {
                const IRect touched = paintStroke(a, points, preset(name), kRed, &a.layer(0), 5);
                BrushStroke stroke(b, b.layers()[0], preset(name), kRed, 5);
                stroke.begin(points.front());
                for (std::size_t i = 1; i < points.size(); ++i) stroke.add(points[i]);
                stroke.end();
                QCOMPARE(touched, stroke.dirty());
            }
            QCOMPARE(a.fingerprint(), b.fingerprint());
        }
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
        for (double far : {1e12, -1e12}) {
            for (const char* name : {"Smudge", "Blur", "Spray Can", "Hard Eraser"}) {
                Studio other(preset(name));
                other.stroke.begin({far, far, 1});
                other.stroke.add({far, far + 3, 1});
                other.stroke.end();
                QVERIFY(other.layer().isEmpty());
            }
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

    void aStrokeMarksItsTilesAndNoOthers() {
        PaintDocument doc(1024, 1024, 72, std::nullopt);
        doc.takeDirtyTiles();
        paintStroke(doc, line(20, 20, 235, 20), plainBrush(10), kRed, nullptr, 1);
        QCOMPARE(doc.takeDirtyTiles(), (std::vector<int64_t>{0}));
        paintStroke(doc, line(20, 100, 300, 100), plainBrush(10), kRed, nullptr, 1);
        QCOMPARE(doc.takeDirtyTiles(), (std::vector<int64_t>{0, 1}));
        for (int64_t index = 2; index < 16; ++index) QVERIFY(!doc.layer(0).tile(index));
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

    void twoStrokesAtOnceLieOnTopOfEachOther() {
        // The second was made before the first one's tiles came to be.
        BrushSettings brush = plainBrush(40);
        brush.opacity = 0.5;
        Studio studio(brush);
        BrushSettings slow = brush;
        slow.flow = 0.5;
        BrushStroke second(studio.doc, studio.doc.layers()[0], slow, kRed, 2);
        studio.stroke.begin({100, 100, 1});
        for (const StrokePoint& point : line(60, 100, 140, 100)) second.add(point);
        QVERIFY(std::abs(studio.alpha(100, 100) - 192) <=
                1); // its half over the first one's half, and no more
    }

    void aStrokeMayBeDropped() {
        PaintDocument doc(600, 300, 72, std::nullopt);
        {
            BrushStroke stroke(doc, doc.layers()[0], preset("Wet Wash"), kRed, 1);
            stroke.begin({300, 150, 1});
        }
        QVERIFY(!doc.layer(0).isEmpty());
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

    void aRecordingBecomesStrokes() {
        QTemporaryFile file;
        QVERIFY(file.open());
        file.write(
            "0 1 2 0\n0.008 10.5 20 0.25\n1.6e-2 11 21 5e-01\n\n0.024 11 21 0\n0.032 0 0 0\n0.04 7 8 1\n");
        file.flush();
        const auto strokes = readPenRecording(file.fileName());
        QCOMPARE(strokes->size(), std::size_t{2});
        QCOMPARE((*strokes)[0], (PenStroke{{10.5, 20, 0.25, 0, 0, 0.008}, {11, 21, 0.5, 0, 0, 0.016}}));
        QCOMPARE((*strokes)[1], (PenStroke{{7, 8, 1, 0, 0, 0.04}}));
        QCOMPARE(toSixtyFourths(*strokes, 2, 0.01, 1)[0][0], StrokePoint(21.015625, 41, 0.25, 0, 0, 0.008));
        file.write("0.05 7 eight 1\n");
        file.flush();
        QVERIFY(!readPenRecording(file.fileName()));
        QVERIFY(!readPenRecording(file.fileName() + QStringLiteral(".none")));
    }
};

QIRN_TEST(tst_BrushStroke)
#include "tst_BrushStroke.moc"
