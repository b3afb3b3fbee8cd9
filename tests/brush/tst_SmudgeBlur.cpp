#include "brush/BrushStroke.h"
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
struct TwoColors {
    explicit TwoColors(const PixelBytes& right = {255, 255, 255, 255}) {
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

    void flatColorStaysFlat() {
        for (BrushKind kind : {BrushKind::smudge, BrushKind::blur}) {
            for (const PixelBytes& bytes : {PixelBytes{10, 100, 200, 255}, {3, 50, 77, 77}}) {
                PaintDocument doc(600, 400, 72, std::nullopt);
                paintRect(doc, doc.layer(0), {0, 0, 600, 400}, bytes);
                doc.layer(0).freezeTiles();
                const uint64_t before = doc.fingerprint();
                const auto tiles = tilesOf(doc.layer(0));
                // A blur repeats the canvas's outermost pixels beyond the edge, so the edge counts as flat too.
                const auto way =
                    kind == BrushKind::blur ? line(0, 0, 599, 399, 9) : line(40, 40, 560, 360, 7);
                paintStroke(doc, way, tip(kind, 60), PaintColor::black(), nullptr, 1);
                QCOMPARE(doc.fingerprint(), before);
                if (kind == BrushKind::blur) QCOMPARE(tilesOf(doc.layer(0)), tiles); // none is copied
            }
        }
    }

    void blurringSoftensAnEdge() {
        // The box has a radius of 6: the step becomes a straight ramp of 13 pixels. It never goes beyond 12.
        for (const auto& [size, radius] : {std::pair{60, 6}, {360, 12}}) {
            TwoColors sheet({0, 0, 0, 255});
            sheet.paint({{300, 200, 1}}, tip(BrushKind::blur, size, 1));
            for (int64_t i = -radius - 1; i <= radius; ++i) {
                const int wanted = (255 * static_cast<int>(radius - i) + radius) / (2 * radius + 1);
                QVERIFY(std::abs(sheet.pixel(300 + i, 200)[0] - wanted) <= 1);
            }
            QCOMPARE(sheet.pixel(300, 200 - size / 2 - 5), (PixelBytes{0, 0, 0, 255})); // outside the tip
        }
    }

    void paintStaysPremultipliedAndWhereItMayGo() {
        for (BrushKind kind : {BrushKind::smudge, BrushKind::blur}) {
            // Without a selection, with all selected by half, with the lower half.
            std::array<int64_t, 3> change{};
            for (std::size_t round = 0; round < 3; ++round) {
                const auto before = noise(600, 400, 31);
                const auto doc = documentOf(*before);
                doc->layer(0).alphaLocked = round == 0;
                if (round > 0)
                    doc->selection = selectionOf(
                        600, 400, [=](int64_t, int64_t y) { return round == 2 && y < 200 ? 0 : 128; });
                BrushSettings brush = tip(kind, 60);
                brush.sizeJitter = 1; // dabs wider than the paint that the tip carries
                brush.scatter = 0.5;
                paintStroke(*doc, line(-40, 20, 640, 380), brush, PaintColor::black(), nullptr, 1);
                for (int64_t i = 0; i < 600 * 400; ++i) {
                    const int64_t x = i % 600, y = i / 600;
                    const PixelBytes was = before->pixel(x, y), now = doc->layer(0).pixel(x, y);
                    for (std::size_t c = 0; c < 3; ++c) change[round] += std::abs(now[c] - was[c]);
                    QVERIFY2(std::max({now[0], now[1], now[2]}) <= now[3], qPrintable(text(now)));
                    if (round == 0) QCOMPARE(now[3], was[3]);
                    if (round == 2 && y < 200) QCOMPARE(now, was);
                }
            }
            QVERIFY(change[2] > 100'000 && change[1] > 3 * change[2] / 2 && change[1] < 3 * change[2]);
        }
    }

    void aLockedTipCarriesItsPaintAcrossAGap() {
        TwoColors sheet;
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
