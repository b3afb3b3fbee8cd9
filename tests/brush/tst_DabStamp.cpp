#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "operations/Selection.h"
#include "support/Pictures.h"
#include "support/Strokes.h"
#include "support/TestMain.h"

#include <cmath>
#include <set>

using namespace qirn;
using namespace qirn::test;

namespace {

const PaintColor kRed(1, 0, 0, 1);

/// A document of one empty layer, three tiles wide and two high.
struct Sheet {
    PaintDocument doc{600, 400, 72, std::nullopt};

    Layer& layer() { return doc.layer(0); }
    PixelBytes pixel(int64_t x, int64_t y) { return layer().pixel(x, y); }
    int alpha(int64_t x, int64_t y) { return pixel(x, y)[3]; }
    IRect paint(const std::vector<StrokePoint>& points, const BrushSettings& brush,
                const PaintColor& color = kRed) {
        return paintStroke(doc, points, brush, color, nullptr, 1);
    }
    IRect dab(double x, double y, const BrushSettings& brush, double pressure = 1) {
        return paint({{x, y, pressure}}, brush);
    }
    void fill(const PixelBytes& bytes) { paintRect(doc, layer(), {0, 0, 600, 400}, bytes); }
    /// Every pixel of the canvas through visit(x, y, bytes).
    template <class Visit> void forEachPixel(Visit visit) {
        for (int64_t y = 0; y < 400; ++y) {
            for (int64_t x = 0; x < 600; ++x) visit(x, y, pixel(x, y));
        }
    }
    int64_t paintedPixels() {
        int64_t count = 0;
        forEachPixel([&](int64_t, int64_t, const PixelBytes& p) { count += p[3] != 0; });
        return count;
    }
};

BrushSettings softBrush(double size) {
    BrushSettings brush = plainBrush(size);
    brush.hardness = 0;
    return brush;
}

/// The left half selected fully, a strip at half, nothing from x = 320 on.
SelectionRef stepped() {
    std::vector<uint8_t> mask(600 * 400);
    for (std::size_t i = 0; i < mask.size(); ++i) mask[i] = i % 600 < 300 ? 255 : i % 600 < 320 ? 128 : 0;
    return Selection::fromMask(mask, 600, 400);
}

} // namespace

class tst_DabStamp : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aHardLineHasNoGaps() {
        Sheet sheet;
        BrushSettings brush = plainBrush(10);
        brush.spacing = 0.1;
        sheet.paint(line(40, 60, 560, 60, 13), brush);
        for (int64_t x = 40; x < 560; ++x) {
            for (int64_t y = 55; y <= 64; ++y)
                QVERIFY2(sheet.alpha(x, y) > 0, qPrintable(QString::number(x)));
            QCOMPARE(sheet.pixel(x, 60), (PixelBytes{255, 0, 0, 255}));
            QCOMPARE(sheet.alpha(x, 50) + sheet.alpha(x, 65), 0);
        }
        QCOMPARE(sheet.layer().contentBounds(), (IRect{35, 55, 530, 10}));
    }

    void opacityIsACeiling_data() {
        QTest::addColumn<double>("hardness");
        QTest::addColumn<double>("flow");
        QTest::addColumn<bool>("erase");
        for (double hardness : {1.0, 0.3}) {
            for (double flow : {1.0, 0.2}) {
                for (bool erase : {false, true}) {
                    QTest::addRow("hardness %g, flow %g%s", hardness, flow, erase ? ", erasing" : "")
                        << hardness << flow << erase;
                }
            }
        }
    }
    void opacityIsACeiling() {
        QFETCH(double, hardness);
        QFETCH(double, flow);
        QFETCH(bool, erase);
        BrushSettings brush = plainBrush(16, erase ? BrushKind::erase : BrushKind::paint);
        brush.hardness = hardness;
        brush.flow = flow;
        brush.opacity = 0.5;
        Sheet sheet;
        if (erase) sheet.fill({255, 255, 255, 255});
        // A loop that crosses itself on the corner of four tiles, and goes round twice.
        std::vector<StrokePoint> points;
        for (int round = 0; round < 2; ++round) {
            for (auto [x, y] : {std::pair{200, 200}, {312, 312}, {312, 200}, {200, 312}})
                points.emplace_back(x, y, 1);
        }
        sheet.paint(points, brush);
        const int beyond = erase ? 127 : 128;
        int worst = 0;
        sheet.forEachPixel([&](int64_t, int64_t, const PixelBytes& p) {
            worst = std::max(worst, erase ? beyond - p[3] : p[3] - beyond);
        });
        QCOMPARE(worst, 0);
        const int allowed = flow == 1 ? 1 : 16;                    // a low flow only comes near the ceiling
        QVERIFY(std::abs(sheet.alpha(256, 256) - 128) <= allowed); // the crossing on the corner
        QVERIFY(std::abs(sheet.alpha(312, 256) - 128) <= allowed);
        // A second stroke is a new sheet of paint on top.
        sheet.paint(points, brush);
        QVERIFY(erase ? sheet.alpha(256, 256) < 80 : sheet.alpha(256, 256) > 175);
    }

    void tileSeamsDoNotShow_data() {
        QTest::addColumn<QString>("name");
        for (const char* name : {"Hard Round", "Soft Round", "Calligraphy Ink", "Spray Can", "Soft Eraser",
                                 "Smudge", "Strong Blur"}) {
            QTest::newRow(name) << QString::fromLatin1(name);
        }
    }
    void tileSeamsDoNotShow() {
        QFETCH(QString, name);
        const BrushSettings brush = *BrushLibrary::named(name);
        const auto bed = noise(200, 200, 3);
        // The same marks inside one tile and across the corner of four.
        const auto painted = [&](int64_t ox, int64_t oy) {
            auto doc = std::make_unique<PaintDocument>(600, 512, 72, std::nullopt);
            if (brush.kind != BrushKind::paint) {
                RGBABuffer whole(600, 512);
                for (int64_t y = 0; y < 200; ++y) {
                    std::copy_n(bed->row(y), 800, whole.row(oy + y) + ox * 4);
                }
                doc->layer(0).load(whole);
            }
            const auto x = static_cast<double>(ox), y = static_cast<double>(oy);
            const std::vector<StrokePoint> points{
                {x + 60, y + 70, 0.4}, {x + 140, y + 90.5, 1}, {x + 75.25, y + 130, 0.7}};
            paintStroke(*doc, points, brush, kRed, nullptr, 1);
            RGBABuffer part(200, 200);
            for (int64_t py = 0; py < 200; ++py) {
                for (int64_t px = 0; px < 200; ++px) {
                    const PixelBytes p = doc->layer(0).pixel(ox + px, oy + py);
                    std::copy(p.begin(), p.end(), part.row(py) + px * 4);
                }
            }
            return part.copy();
        };
        QCOMPARE(firstDifference(*painted(16, 32), *painted(156, 156)), QString());
    }

    void lowFlowBuildsUp() {
        BrushSettings brush = plainBrush(16);
        brush.flow = 0.1;
        Sheet sheet;
        sheet.paint(line(40, 60, 200, 60), brush);
        QVERIFY2(sheet.alpha(120, 60) > 60 && sheet.alpha(120, 60) < 250,
                 qPrintable(QString::number(sheet.alpha(120, 60))));
    }

    void aSoftDabFadesOut() {
        Sheet sheet;
        sheet.dab(250.5, 200.5, softBrush(160));
        for (int64_t x = 252; x < 330; ++x) {
            // Next to the centre and to the edge the slope is less than a step of a byte.
            const bool isSteep = x > 260 && x < 325;
            const int drop = sheet.alpha(x - 1, 200) - sheet.alpha(x, 200);
            QVERIFY2(isSteep ? drop > 0 : drop >= 0, qPrintable(QString::number(x)));
            QCOMPARE(sheet.alpha(x, 200), sheet.alpha(500 - x, 200)); // and the same to the other side
        }
        QCOMPARE(sheet.alpha(250, 200), 255);
        QCOMPARE(sheet.alpha(331, 200), 0);
    }

    void anEraserTakesPaintAwayUnderItself() {
        Sheet sheet;
        sheet.fill({200, 100, 50, 255});
        sheet.layer().alphaLocked = true; // no protection against an eraser
        sheet.dab(100, 100, plainBrush(20, BrushKind::erase));
        QCOMPARE(sheet.pixel(100, 100), PixelBytes{});
        sheet.forEachPixel([&](int64_t x, int64_t y, const PixelBytes& p) {
            if (std::hypot(double(x) - 99.5, double(y) - 99.5) > 11.5)
                QCOMPARE(p, (PixelBytes{200, 100, 50, 255}));
        });
        BrushSettings half = plainBrush(20, BrushKind::erase);
        half.opacity = 0.5;
        sheet.dab(300, 100, half);
        QCOMPARE(sheet.pixel(300, 100), (PixelBytes{100, 50, 25, 128}));
    }

    void pressureShapesTheDab() {
        BrushSettings brush = plainBrush(40);
        brush.pressureSize = true;
        const auto widthAt = [&](double pressure) {
            Sheet sheet;
            sheet.dab(100, 100, brush, pressure);
            return sheet.layer().contentBounds()->w;
        };
        QCOMPARE(widthAt(1), 40);
        QCOMPARE(widthAt(0.5), 24);
        QCOMPARE(widthAt(0), 8);
        const auto alphaAt = [](const BrushSettings& dynamic, double pressure) {
            Sheet sheet;
            sheet.dab(100, 100, dynamic, pressure);
            return sheet.alpha(100, 100);
        };
        BrushSettings opacity = plainBrush(40);
        opacity.pressureOpacity = true;
        QCOMPARE(alphaAt(opacity, 0.5), 128);
        QCOMPARE(alphaAt(opacity, 0), 0);
        BrushSettings flow = plainBrush(40);
        flow.pressureFlow = true;
        QCOMPARE(alphaAt(flow, 0.25), 64);
        QCOMPARE(alphaAt(flow, 0), 5); // a pen that only just touches still marks
    }

    void nothingIsPaintedOutsideTheSelection() {
        for (double flow : {1.0, 0.3}) {
            BrushSettings brush = plainBrush(60);
            brush.flow = flow;
            Sheet sheet;
            sheet.doc.selection = stepped();
            sheet.paint(line(200, 100, 500, 100), brush);
            QCOMPARE(sheet.alpha(290, 100), 255);
            QCOMPARE(sheet.alpha(310, 100), 128); // half selected: half the ceiling, however many dabs
            sheet.forEachPixel([](int64_t x, int64_t, const PixelBytes& p) {
                if (x >= 320) QCOMPARE(p, PixelBytes{});
            });
        }
    }

    void alphaLockKeepsEveryAlpha() {
        for (const char* name : {"Soft Round", "Hard Round", "Charcoal", "Spray Can"}) {
            Sheet sheet;
            sheet.layer().load(*noise(600, 400, 11));
            const auto before = sheet.layer().toBuffer();
            sheet.layer().alphaLocked = true;
            sheet.paint(line(40, 200, 560, 230), *BrushLibrary::named(QString::fromLatin1(name)),
                        PaintColor::white());
            int64_t changed = 0;
            sheet.forEachPixel([&](int64_t x, int64_t y, const PixelBytes& p) {
                const PixelBytes was = before->pixel(x, y);
                QCOMPARE(p[3], was[3]);
                for (std::size_t c = 0; c < 3; ++c) QVERIFY(p[c] <= p[3]);
                changed += p != was;
            });
            QVERIFY(changed > 1000);
        }
        Sheet sheet;
        sheet.fill({0, 50, 100, 100});
        sheet.layer().alphaLocked = true;
        sheet.dab(100, 100, plainBrush(20));
        QCOMPARE(sheet.pixel(100, 100), (PixelBytes{100, 0, 0, 100}));
    }

    void fullCoverageWritesTheColourItself() {
        Sheet sheet;
        sheet.fill({12, 34, 56, 255});
        for (int grey = 0; grey < 256; grey += 5) {
            const auto byte = static_cast<uint8_t>(grey);
            const auto other = static_cast<uint8_t>(255 - grey);
            sheet.paint({{20.0 + 2 * grey, 100, 1}}, plainBrush(10), PaintColor::fromBytes(byte, 7, other));
            QCOMPARE(sheet.pixel(20 + 2 * grey, 100), (PixelBytes{byte, 7, other, 255}));
        }
    }

    void paintLiesOverWhatWasThereBefore() {
        // Half of red over half-transparent blue, once, however many dabs it took.
        BrushSettings brush = plainBrush(20);
        brush.opacity = 0.5;
        Sheet sheet;
        sheet.fill({0, 0, 128, 128});
        sheet.paint(line(100, 100, 300, 100), brush);
        QCOMPARE(sheet.pixel(200, 100), (PixelBytes{128, 0, 64, 192}));
    }

    void aFlatTipIsAnEllipseAlongItsAngle() {
        struct Row {
            double angle;
            IRect box;
        };
        BrushSettings brush = plainBrush(80);
        brush.roundness = 0.25;
        for (const Row& row :
             {Row{0, {260, 190, 80, 20}}, Row{90, {290, 160, 20, 80}}, Row{180, {260, 190, 80, 20}}}) {
            brush.angle = row.angle;
            Sheet sheet;
            sheet.dab(300, 200, brush);
            const IRect got = *sheet.layer().contentBounds();
            QVERIFY2(row.box.insetBy(1).intersection(got) == row.box.insetBy(1) &&
                         row.box.insetBy(-1).intersection(got) == got,
                     qPrintable(got.description()));
        }
        brush.angle = 45; // y grows downward: the tip leans from the upper left to the lower right
        Sheet sheet;
        sheet.dab(300, 200, brush);
        QCOMPARE(sheet.alpha(322, 222), 255);
        QCOMPARE(sheet.alpha(278, 178), 255);
        QCOMPARE(sheet.alpha(322, 178) + sheet.alpha(278, 222), 0);
    }

    void thePaperShowsThroughAndStaysInPlace() {
        BrushSettings brush = plainBrush(60);
        brush.texture = 0.8;
        Sheet first, second;
        first.paint(line(60, 100, 500, 100), brush);
        second.paint(line(500, 90, 60, 110), brush);
        std::set<int> levels;
        for (int64_t x = 60; x < 500; ++x) {
            levels.insert(first.alpha(x, 100));
            QCOMPARE(first.alpha(x, 100), second.alpha(x, 100));
        }
        QVERIFY(levels.size() > 60);
        // Twice the scale: every grain of the paper is two pixels wide and high.
        brush.textureScale = 2;
        Sheet scaled;
        scaled.paint(line(60, 100, 500, 100), brush);
        for (int64_t x = 60; x < 250; x += 2) {
            QCOMPARE(scaled.alpha(x, 100), scaled.alpha(x + 1, 101));
            QCOMPARE(scaled.alpha(2 * x / 2, 100), scaled.alpha(x, 101));
        }
    }

    void sprayStaysInItsCircle() {
        BrushSettings brush = plainBrush(100);
        brush.spray = true;
        brush.sprayDensity = 300;
        brush.particleSize = 2;
        brush.roundness = 0.05; // neither shape nor paper reaches a droplet
        brush.texture = 1;
        Sheet light, full;
        light.dab(300, 200, brush, 0.2);
        full.dab(300, 200, brush, 1);
        QVERIFY2(full.paintedPixels() > 2 * light.paintedPixels(),
                 qPrintable(QString::number(full.paintedPixels())));
        double farthest = 0;
        int64_t inner = 0;
        std::array<int, 4> quarters{};
        full.forEachPixel([&](int64_t x, int64_t y, const PixelBytes& p) {
            if (p[3] == 0) return;
            const double distance = std::hypot(double(x) + 0.5 - 300, double(y) + 0.5 - 200);
            farthest = std::max(farthest, distance);
            inner += distance < 25;
            ++quarters[(x < 300 ? 0 : 1) + (y < 200 ? 0 : 2)];
        });
        QVERIFY2(farthest < 50 + 1.4 + 0.5 && farthest > 45, qPrintable(QString::number(farthest)));
        // As dense in the middle as elsewhere: a quarter of the area has a quarter of the paint.
        QVERIFY2(inner > full.paintedPixels() / 6 && inner < full.paintedPixels() / 3,
                 qPrintable(QString::number(inner)));
        for (int count : quarters) QVERIFY(count > full.paintedPixels() / 8);
        QVERIFY(light.paintedPixels() > 0);
    }

    void jitterOnlyEverLowersTheCeiling() {
        BrushSettings brush = plainBrush(20);
        brush.spacing = 2;
        brush.opacity = 0.6;
        brush.opacityJitter = 0.5;
        Sheet sheet;
        sheet.paint(line(20, 200, 580, 200), brush);
        std::set<int> levels;
        for (int64_t x = 20; x <= 580; x += 40) {
            QVERIFY(sheet.alpha(x, 200) <= 153 && sheet.alpha(x, 200) >= 76);
            levels.insert(sheet.alpha(x, 200));
        }
        QVERIFY(levels.size() > 8);
    }

    void theDirtyRectangleHoldsAllThatChanged() {
        for (const BrushSettings& brush : BrushLibrary::builtIn()) {
            Sheet sheet;
            sheet.layer().load(*noise(600, 400, 21));
            const auto before = sheet.layer().toBuffer();
            const IRect dirty = sheet.paint({{-10, 50, 1}, {130, 260, 0.5}, {300, 395, 1}}, brush);
            QVERIFY(dirty.intersection({0, 0, 600, 400}) == dirty);
            int64_t outside = 0, inside = 0;
            sheet.forEachPixel([&](int64_t x, int64_t y, const PixelBytes& p) {
                if (p != before->pixel(x, y)) ++(dirty.contains(x, y) ? inside : outside);
            });
            QVERIFY2(outside == 0 && inside > 20, qPrintable(brush.name));
        }
    }

    void aDabWithoutAnyCeilingLeavesNoTrace() {
        BrushSettings brush = plainBrush(20);
        brush.opacity = 0;
        Sheet sheet;
        sheet.doc.takeDirtyTiles();
        QCOMPARE(sheet.dab(100, 100, brush), IRect{});
        QVERIFY(sheet.layer().tiles().holdsNothing());
        QVERIFY(sheet.doc.takeDirtyTiles().empty());
    }
};

QIRN_TEST(tst_DabStamp)
#include "tst_DabStamp.moc"
