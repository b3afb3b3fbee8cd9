#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "brush/TipDistances.h"
#include "core/SeededRandom.h"
#include "operations/Selection.h"
#include "platform/InstructionSets.h"
#include "support/Pictures.h"
#include "support/Strokes.h"
#include "support/TestMain.h"

#include <cmath>

using namespace qirn;
using namespace qirn::test;

namespace {

BrushSettings tip(BrushKind kind, double size, double strength = 0.8) {
    BrushSettings brush = plainBrush(size, kind);
    brush.strength = strength;
    return brush;
}

/// Red on the left of x = 300, white on the right, or nothing at all there.
struct TwoColours {
    explicit TwoColours(const PixelBytes& right = {255, 255, 255, 255}) {
        paintRect(doc, layer(), {0, 0, 300, 400}, {255, 0, 0, 255});
        if (right[3] != 0) paintRect(doc, layer(), {300, 0, 300, 400}, right);
        doc.takeDirtyTiles();
    }
    Layer& layer() { return doc.layer(0); }
    PixelBytes pixel(int64_t x, int64_t y) { return layer().pixel(x, y); }
    IRect paint(const std::vector<StrokePoint>& points, const BrushSettings& brush) {
        return paintStroke(doc, points, brush, PaintColor::black(), nullptr, 1);
    }

    PaintDocument doc{600, 400, 72, std::nullopt};
};

} // namespace

class tst_SmudgeBlur : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aTipCoversTheSameWithAnyInstructions() {
        SeededRandom random(12);
        const auto upTo = [&random](double most) { return random.unit() * most; };
        for (int round = 0; round < 4000; ++round) {
            // Hard and soft, from a pixel to the widest, through the middle as well as past it.
            const double size = upTo(round % 2 == 0 ? 6 : 500);
            const double cx = 300 + upTo(700), cy = 300 + upTo(1);
            const auto dx = static_cast<int64_t>(upTo(size * 1.5) - size * 1.5);
            const auto dy = static_cast<int64_t>(upTo(size * 1.5));
            const auto x = static_cast<int64_t>(cx) + dx, y = static_cast<int64_t>(cy) + dy;
            // A rim that all but touches a pixel's centre tells the least differences of distance apart.
            const double nearRim =
                std::hypot(static_cast<double>(x) + 0.5 - cx, static_cast<double>(y) + 0.5 - cy) + upTo(2e-6);
            const TipEdge edge(std::max(1.0, round % 3 == 0 ? nearRim : size),
                               round % 5 == 0 ? upTo(0.05) + 0.95 : upTo(1));
            const std::vector<std::string> sets = instructionSets();
            useInstructionSet(sets[static_cast<std::size_t>(round) % sets.size()]);
            TipCoverage corners, centres;
            coverAround(edge, dx, dy, kTileSize, corners);
            coverAround(edge, cx, cy, x, y, kTileSize, centres);
            for (std::size_t i = 0; i < kTileSize; ++i) {
                const auto at = static_cast<double>(i);
                const double across = static_cast<double>(dx) + at, down = static_cast<double>(dy);
                QCOMPARE(corners.share[i],
                         static_cast<float>(edge.coverage(std::sqrt(across * across + down * down))));
                const double dist =
                    std::hypot(static_cast<double>(x) + at + 0.5 - cx, static_cast<double>(y) + 0.5 - cy);
                QVERIFY2(centres.share[i] == static_cast<float>(edge.coverage(dist)),
                         qPrintable(QStringLiteral("round %1, %2").arg(round).arg(i)));
            }
        }
        useInstructionSet({});
    }

    void theFirstSmudgeDabOnlyTakesPaintUp() {
        TwoColours sheet;
        const uint64_t before = sheet.layer().fingerprint();
        QCOMPARE(sheet.paint({{300, 200, 1}}, tip(BrushKind::smudge, 40)), IRect{});
        QCOMPARE(sheet.layer().fingerprint(), before);
        QVERIFY(sheet.doc.takeDirtyTiles().empty());
    }

    void flatColourStaysFlat() {
        for (BrushKind kind : {BrushKind::smudge, BrushKind::blur}) {
            for (const PixelBytes& bytes : {PixelBytes{10, 100, 200, 255}, {3, 50, 77, 77}}) {
                PaintDocument doc(600, 400, 72, std::nullopt);
                paintRect(doc, doc.layer(0), {0, 0, 600, 400}, bytes);
                const uint64_t before = doc.fingerprint();
                paintStroke(doc, line(30, 30, 570, 370, 7), tip(kind, 50), PaintColor::black(), nullptr, 1);
                QCOMPARE(doc.fingerprint(), before);
            }
        }
    }

    void blurringFlatColourCopiesNoTile() {
        // The canvas's own edge counts as flat too, since it repeats itself outward.
        PaintDocument doc(600, 400, 72, std::nullopt);
        paintRect(doc, doc.layer(0), {0, 0, 600, 400}, {10, 100, 200, 255});
        std::vector<const Tile*> before;
        const auto tiles = [&doc] {
            std::vector<const Tile*> list;
            doc.layer(0).tiles().forEachTile([&](int64_t, const Tile& tile) { list.push_back(&tile); });
            return list;
        };
        before = tiles();
        QVERIFY(!paintStroke(doc, line(0, 0, 599, 399, 9), tip(BrushKind::blur, 60), PaintColor::black(),
                             nullptr, 1)
                     .isEmpty());
        QCOMPARE(tiles(), before);
        // Nor does it make tiles where there are none.
        PaintDocument empty(600, 400, 72, std::nullopt);
        paintStroke(empty, line(0, 0, 599, 399, 9), tip(BrushKind::blur, 60), PaintColor::black(), nullptr,
                    1);
        QVERIFY(empty.layer(0).tiles().holdsNothing());
    }

    void blurringSoftensAnEdge() {
        TwoColours sheet({0, 0, 0, 255});
        sheet.paint({{300, 200, 1}}, tip(BrushKind::blur, 60, 1));
        // The box has a radius of 6: the step becomes a straight ramp of 13 pixels, the same on both sides.
        QCOMPARE(sheet.pixel(293, 200), (PixelBytes{255, 0, 0, 255}));
        QCOMPARE(sheet.pixel(306, 200), (PixelBytes{0, 0, 0, 255}));
        QCOMPARE(int(sheet.pixel(299, 200)[0]), 137); // 7 of 13 red
        QCOMPARE(int(sheet.pixel(300, 200)[0]), 118);
        QCOMPARE(sheet.pixel(300, 240), (PixelBytes{0, 0, 0, 255})); // outside the tip
    }

    void aBlurRadiusNeverGoesBeyondTwelve() {
        TwoColours sheet({0, 0, 0, 255});
        sheet.paint({{300, 200, 1}}, tip(BrushKind::blur, 360, 1));
        QCOMPARE(sheet.pixel(287, 200), (PixelBytes{255, 0, 0, 255}));
        QVERIFY(sheet.pixel(288, 200)[0] < 255);
    }

    void theSelectionHoldsBack_data() {
        QTest::addColumn<BrushKind>("kind");
        QTest::newRow("smudge") << BrushKind::smudge;
        QTest::newRow("blur") << BrushKind::blur;
    }
    void theSelectionHoldsBack() {
        QFETCH(BrushKind, kind);
        const auto painted = [&](int selected) {
            TwoColours sheet;
            std::vector<uint8_t> mask(600 * 400);
            for (std::size_t i = 0; i < mask.size(); ++i)
                mask[i] = static_cast<uint8_t>(i / 600 < 200 ? selected : 0);
            mask[0] = 255;
            sheet.doc.selection = Selection::fromMask(mask, 600, 400);
            const std::vector<StrokePoint> points{{290, 200, 1}, {304, 200, 1}};
            BrushSettings brush = tip(kind, 40, 0.5);
            brush.spacing = 0.2;
            sheet.paint(points, brush);
            for (int64_t y = 200; y < 225; ++y) {
                for (int64_t x = 270; x < 330; ++x) {
                    if (sheet.pixel(x, y) != PixelBytes{255, static_cast<uint8_t>(x < 300 ? 0 : 255),
                                                        static_cast<uint8_t>(x < 300 ? 0 : 255), 255})
                        qFatal("changed outside the selection");
                }
            }
            return 255 - sheet.pixel(300, 195)[1];
        };
        const int full = painted(255), half = painted(128), none = painted(0);
        QCOMPARE(none, 0);
        QVERIFY2(half > full / 4 && half < full * 3 / 4,
                 qPrintable(QStringLiteral("%1 of %2").arg(half).arg(full)));
    }

    void paintStaysPremultipliedAndLockedAlphaAsItWas_data() { theSelectionHoldsBack_data(); }
    void paintStaysPremultipliedAndLockedAlphaAsItWas() {
        QFETCH(BrushKind, kind);
        for (const bool locked : {false, true}) {
            PaintDocument doc(600, 400, 72, std::nullopt);
            doc.layer(0).load(*noise(600, 400, 31));
            doc.layer(0).alphaLocked = locked;
            const auto before = doc.layer(0).toBuffer();
            BrushSettings brush = tip(kind, 60);
            brush.sizeJitter = 1; // dabs wider than the paint that the tip carries
            brush.scatter = 0.5;
            paintStroke(doc, line(-40, 20, 640, 380), brush, PaintColor::black(), nullptr, 1);
            const auto after = doc.layer(0).toBuffer();
            int changed = 0;
            for (int64_t y = 0; y < 400; ++y) {
                for (int64_t x = 0; x < 600; ++x) {
                    const PixelBytes was = before->pixel(x, y), now = after->pixel(x, y);
                    for (std::size_t c = 0; c < 3; ++c) QVERIFY2(now[c] <= now[3], qPrintable(text(now)));
                    if (locked) QCOMPARE(now[3], was[3]);
                    changed += was != now;
                }
            }
            QVERIFY(changed > 5000);
        }
    }

    void aLockedTipCarriesItsPaintAcrossAGap() {
        TwoColours sheet;
        paintRect(sheet.doc, sheet.layer(), {300, 0, 20, 400}, {0, 0, 0, 0});
        sheet.layer().alphaLocked = true;
        sheet.paint(line(280, 200, 350, 200, 2), tip(BrushKind::smudge, 40));
        QCOMPARE(sheet.pixel(310, 200), PixelBytes{});
        const PixelBytes beyond = sheet.pixel(330, 200); // red and white, and nothing of the gap
        QVERIFY2(beyond[0] == 255 && beyond[1] < 230, qPrintable(text(beyond)));
    }

    void theCanvasEdgeRepeatsOutward() {
        for (const bool right : {false, true}) {
            PaintDocument doc(300, 200, 72, PaintColor::white());
            const int64_t edge = right ? 299 : 0;
            paintRect(doc, doc.layer(0), {edge, 0, 1, 200}, {0, 0, 0, 255});
            const std::vector<StrokePoint> at{{static_cast<double>(edge) + 0.5, 100, 1}};
            paintStroke(doc, at, tip(BrushKind::blur, 60, 1), PaintColor::black(), &doc.layer(0), 1);
            QCOMPARE(int(doc.layer(0).pixel(edge, 100)[0]), 118); // 7 of 13 are the black edge, 6 white
        }
    }
};

QIRN_TEST(tst_SmudgeBlur)
#include "tst_SmudgeBlur.moc"
