#include "brush/BrushStroke.h"
#include "operations/Selection.h"
#include "support/Pictures.h"
#include "support/Strokes.h"
#include "support/TestMain.h"

#include <array>

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
        const auto tiles = [&doc] {
            std::vector<const Tile*> list;
            doc.layer(0).tiles().forEachTile([&](int64_t, const Tile& tile) { list.push_back(&tile); });
            return list;
        };
        const auto before = tiles();
        paintStroke(doc, line(0, 0, 599, 399, 9), tip(BrushKind::blur, 60), PaintColor::black(), nullptr, 1);
        QCOMPARE(tiles(), before);
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
        TwoColours wide({0, 0, 0, 255});                             // the radius never goes beyond 12
        wide.paint({{300, 200, 1}}, tip(BrushKind::blur, 360, 1));
        QCOMPARE(wide.pixel(287, 200), (PixelBytes{255, 0, 0, 255}));
        QVERIFY(wide.pixel(288, 200)[0] < 255);
    }

    void paintStaysPremultipliedAndWhereItMayGo_data() {
        QTest::addColumn<BrushKind>("kind");
        QTest::newRow("smudge") << BrushKind::smudge;
        QTest::newRow("blur") << BrushKind::blur;
    }
    void paintStaysPremultipliedAndWhereItMayGo() {
        QFETCH(BrushKind, kind);
        std::array<int64_t, 3>
            change{}; // without a selection, with all selected by half, with the lower half
        for (std::size_t round = 0; round < 3; ++round) {
            PaintDocument doc(600, 400, 72, std::nullopt);
            doc.layer(0).load(*noise(600, 400, 31));
            doc.layer(0).alphaLocked = round == 0;
            std::vector<uint8_t> mask(600 * 400, 128);
            if (round == 2) std::fill_n(mask.begin(), 600 * 200, uint8_t{0});
            if (round > 0) doc.selection = Selection::fromMask(mask, 600, 400);
            const auto before = doc.layer(0).toBuffer();
            BrushSettings brush = tip(kind, 60);
            brush.sizeJitter = 1; // dabs wider than the paint that the tip carries
            brush.scatter = 0.5;
            paintStroke(doc, line(-40, 20, 640, 380), brush, PaintColor::black(), nullptr, 1);
            const auto after = doc.layer(0).toBuffer();
            for (int64_t y = 0; y < 400; ++y) {
                for (int64_t x = 0; x < 600; ++x) {
                    const PixelBytes was = before->pixel(x, y), now = after->pixel(x, y);
                    for (std::size_t c = 0; c < 3; ++c) {
                        QVERIFY2(now[c] <= now[3], qPrintable(text(now)));
                        change[round] += std::abs(now[c] - was[c]);
                    }
                    if (round == 0) QCOMPARE(now[3], was[3]);
                    if (round == 2 && y < 200) QCOMPARE(now, was);
                }
            }
        }
        QVERIFY(change[2] > 100'000 && change[1] > 3 * change[2] / 2 && change[1] < 3 * change[2]);
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
};

QIRN_TEST(tst_SmudgeBlur)
#include "tst_SmudgeBlur.moc"
