#include "brush/BrushLibrary.h"
#include "brush/BrushPreview.h"
#include "support/Strokes.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr int kWidth = 180, kHeight = 40; // as the brush panel shows them

const PaintColor kPale(0.95, 0.95, 0.97, 1);

QImage previewOf(const BrushSettings& brush) {
    return BrushPreview::render(brush, kWidth, kHeight, kPale);
}

int alphaAt(const QImage& image, int x, int y) {
    return qAlpha(image.pixel(x, y));
}

/// Pixels of a column with at least half coverage.
int thicknessAt(const QImage& image, int x) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) count += alphaAt(image, x, y) > 127;
    return count;
}

/// What a preview without a stroke shows: nothing, or the bed that the other kinds work on.
QImage without(const BrushSettings& brush) {
    BrushSettings idle =
        brush.kind == BrushKind::paint ? brush : *BrushLibrary::named(QStringLiteral("Smudge"));
    idle.opacity = idle.strength = 0;
    return previewOf(idle);
}

} // namespace

class tst_BrushPreview : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyPresetShows() {
        for (const BrushSettings& brush : BrushLibrary::builtIn()) {
            const QImage image = previewOf(brush), idle = without(brush);
            QCOMPARE(image.size(), QSize(kWidth, kHeight));
            int different = 0;
            for (int i = 0; i < kWidth * kHeight; ++i)
                different += image.pixel(i % kWidth, i / kWidth) != idle.pixel(i % kWidth, i / kWidth);
            QVERIFY2(different >= 100, qPrintable(brush.name));
        }
    }

    void theStrokeIsAWaveThatSwellsAndFades() {
        BrushSettings brush = plainBrush(12);
        brush.pressureSize = true;
        brush.minSize = 0;
        const QImage image = previewOf(brush);
        // Down first, by 0.22 of the height at a quarter of the way, then up.
        QVERIFY(alphaAt(image, 50, 29) > 200 && alphaAt(image, 50, 11) == 0);
        QVERIFY(alphaAt(image, 130, 11) > 200 && alphaAt(image, 130, 29) == 0);
        QVERIFY(thicknessAt(image, 12) <= 3 && thicknessAt(image, 168) <= 3);
        QVERIFY(thicknessAt(image, 90) >= 12);
        QCOMPARE(thicknessAt(image, 4), 0); // from 10 pixels off the left edge
    }

    /// Reduced to half, a preview at twice the scale is nearly the one at scale 1: its lengths and grain grow with it.
    void atTwiceTheScaleItIsTheSameStroke() {
        for (const BrushSettings& brush : BrushLibrary::builtIn()) {
            if (brush.spray) continue; // other droplets
            const QImage small = previewOf(brush),
                         large = BrushPreview::render(brush, kWidth, kHeight, kPale, 2);
            QCOMPARE(large.size(), 2 * small.size());
            int sum = 0, difference = 0;
            for (int i = 0; i < kWidth * kHeight; ++i) {
                const int x = i % kWidth, y = i / kWidth;
                int mean = 0;
                for (const int part : {0, 1, 2, 3})
                    mean += alphaAt(large, 2 * x + part % 2, 2 * y + part / 2);
                sum += alphaAt(small, x, y);
                difference += qAbs(alphaAt(small, x, y) - mean / 4);
            }
            QVERIFY2(difference < 0.16 * sum, qPrintable(brush.name));
        }
    }

    void anEraserCutsThroughTheBed() {
        const BrushSettings eraser = *BrushLibrary::named(QStringLiteral("Hard Eraser"));
        const QImage image = previewOf(eraser);
        const int x = kWidth / 4, wave = 29;
        QVERIFY(alphaAt(without(eraser), x, wave) > 200 && alphaAt(image, x, wave) < 50);
        QVERIFY(alphaAt(image, x, 12) > 200); // beside the stroke the bed stays
    }
};

QIRN_TEST(tst_BrushPreview)
#include "tst_BrushPreview.moc"
