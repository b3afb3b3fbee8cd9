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

/// How many pixels two images do not have in common.
int differences(const QImage& a, const QImage& b) {
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) count += a.pixel(x, y) != b.pixel(x, y);
    }
    return count;
}

BrushSettings preset(const char* name) {
    return *BrushLibrary::named(QString::fromUtf8(name));
}

} // namespace

class tst_BrushPreview : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyPresetShows_data() {
        QTest::addColumn<int>("number");
        const auto& presets = BrushLibrary::builtIn();
        for (std::size_t i = 0; i < presets.size(); ++i)
            QTest::newRow(qPrintable(presets[i].name)) << static_cast<int>(i);
    }
    void everyPresetShows() {
        QFETCH(int, number);
        const BrushSettings& brush = BrushLibrary::builtIn()[static_cast<std::size_t>(number)];
        const QImage image = previewOf(brush);
        QCOMPARE(image.size(), QSize(kWidth, kHeight));
        // The others stand against the bed alone, which a brush without any strength leaves as it is.
        const QImage without = brush.kind == BrushKind::paint ? blank(image) : bed();
        QVERIFY(differences(image, without) >= 100);
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

    void anEraserCutsThroughTheBed() {
        const QImage image = previewOf(preset("Hard Eraser"));
        const int x = kWidth / 4, wave = 29;
        QVERIFY(alphaAt(bed(), x, wave) > 200 && alphaAt(image, x, wave) < 50);
        QVERIFY(alphaAt(image, x, 12) > 200); // beside the stroke the bed stays
    }

private:
    static QImage blank(const QImage& like) {
        QImage image(like.size(), like.format());
        image.fill(Qt::transparent);
        return image;
    }
    static QImage bed() {
        BrushSettings brush = preset("Smudge");
        brush.strength = 0;
        return previewOf(brush);
    }
};

QIRN_TEST(tst_BrushPreview)
#include "tst_BrushPreview.moc"
