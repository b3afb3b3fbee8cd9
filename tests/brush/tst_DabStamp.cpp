#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "operations/Selection.h"
#include "support/Pictures.h"
#include "support/Strokes.h"
#include "support/TestMain.h"

#include <cmath>

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

} // namespace

class tst_DabStamp : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// One dab of red on a known pixel; what tst_DabReference compares a great many of, in numbers.
    void aDabOnAPixel_data() {
        QTest::addColumn<BrushKind>("kind");
        QTest::addColumn<bool>("locked");
        QTest::addColumn<double>("opacity");
        QTest::addColumn<int>("selected");
        QTest::addColumn<PixelBytes>("before");
        QTest::addColumn<PixelBytes>("after");
        const auto paint = BrushKind::paint, erase = BrushKind::erase;
        const PixelBytes solid{200, 100, 50, 255};
        QTest::newRow("covers") << paint << false << 1.0 << 255 << solid << PixelBytes{255, 0, 0, 255};
        QTest::newRow("half") << paint << false << 0.5 << 255 << PixelBytes{0, 0, 128, 128}
                              << PixelBytes{128, 0, 64, 192};
        QTest::newRow("half selected")
            << paint << false << 1.0 << 128 << PixelBytes{} << PixelBytes{128, 0, 0, 128};
        QTest::newRow("not selected") << paint << false << 1.0 << 0 << solid << solid;
        QTest::newRow("locked") << paint << true << 1.0 << 255 << PixelBytes{0, 50, 100, 100}
                                << PixelBytes{100, 0, 0, 100};
        QTest::newRow("erases half") << erase << false << 0.5 << 255 << solid << PixelBytes{100, 50, 25, 128};
        QTest::newRow("erases what is locked") << erase << true << 1.0 << 255 << solid << PixelBytes{};
    }
    void aDabOnAPixel() {
        QFETCH(BrushKind, kind);
        QFETCH(bool, locked);
        QFETCH(double, opacity);
        QFETCH(int, selected);
        QFETCH(PixelBytes, before);
        QFETCH(PixelBytes, after);
        Sheet sheet;
        sheet.fill(before);
        sheet.layer().alphaLocked = locked;
        std::vector<uint8_t> mask(600 * 400, static_cast<uint8_t>(selected));
        mask[0] = 255;
        sheet.doc.selection = Selection::fromMask(mask, 600, 400);
        BrushSettings brush = plainBrush(20, kind);
        brush.opacity = opacity;
        sheet.dab(100, 100, brush);
        QCOMPARE(text(sheet.pixel(100, 100)), text(after));
        QCOMPARE(text(sheet.pixel(112, 100)), text(before));
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
        QCOMPARE(alphaAt(flow, 0), 5); // a pen that only just touches still marks
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
        full.forEachPixel([&](int64_t x, int64_t y, const PixelBytes& p) {
            if (p[3] == 0) return;
            const double distance = std::hypot(double(x) + 0.5 - 300, double(y) + 0.5 - 200);
            farthest = std::max(farthest, distance);
            inner += distance < 25;
        });
        QVERIFY2(farthest < 50 + 1.4 + 0.5 && farthest > 45, qPrintable(QString::number(farthest)));
        // As dense in the middle as elsewhere: a quarter of the area has a quarter of the paint.
        QVERIFY2(inner > full.paintedPixels() / 6 && inner < full.paintedPixels() / 3,
                 qPrintable(QString::number(inner)));
        QVERIFY(light.paintedPixels() > 0);
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
