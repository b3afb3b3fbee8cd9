#include "core/RGBABuffer.h"
#include "core/SeededRandom.h"
#include "formats/AreaReducer.h"
#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>
#include <cstring>

using namespace qirn;
using namespace qirn::test;

namespace {

/// The overlap of source pixel `i` with a target pixel that starts at `start`, in one direction.
double overlap(int64_t i, double start, double length) {
    const auto from = static_cast<double>(i);
    return std::max(0.0, std::min(from + 1, start + length) - std::max(from, start));
}

/// The average of the area under a target pixel's channel, in plain 64-bit arithmetic.
double average(const RGBABuffer& source, const RGBABuffer& target, int64_t tx, int64_t ty,
               std::size_t channel) {
    const double sx = static_cast<double>(source.width()) / static_cast<double>(target.width());
    const double sy = static_cast<double>(source.height()) / static_cast<double>(target.height());
    double sum = 0;
    for (int64_t y = 0; y < source.height(); ++y) {
        const double height = overlap(y, static_cast<double>(ty) * sy, sy);
        for (int64_t x = 0; height > 0 && x < source.width(); ++x) {
            sum += overlap(x, static_cast<double>(tx) * sx, sx) * height * source.pixel(x, y)[channel];
        }
    }
    return sum / (sx * sy);
}

} // namespace

class tst_ImageExport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void sidesAreCutToWholePixels_data();
    void sidesAreCutToWholePixels();
    void aReducedPictureIsTheAverage_data();
    void aReducedPictureIsTheAverage();
    void aPictureIsNeverEnlarged();
    void partsInAnyOrderGiveTheSameReduction();
    void aUniformPartIsReducedAsItsPixels();
    void everyPixelValueSurvivesPNG();
    void aPNGKeepsItsResolution();
    void aNullImageIsNoPNG();
};

void tst_ImageExport::sidesAreCutToWholePixels_data() {
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("maxSide");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("wide") << QSize(1920, 1080) << 320 << QSize(320, 180);
    QTest::newRow("high") << QSize(1000, 3000) << 320 << QSize(106, 320);
    QTest::newRow("thin") << QSize(30000, 1) << 320 << QSize(320, 1);
    QTest::newRow("not larger") << QSize(320, 7) << 320 << QSize(320, 7);
    QTest::newRow("no side at all") << QSize(50, 40) << 0 << QSize(1, 1);
}

void tst_ImageExport::sidesAreCutToWholePixels() {
    QFETCH(QSize, size);
    QFETCH(int, maxSide);
    QFETCH(QSize, expected);
    QCOMPARE(ImageExport::scaledSize(size.width(), size.height(), maxSide), expected);
}

void tst_ImageExport::aReducedPictureIsTheAverage_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("maxSide");
    QTest::newRow("by whole numbers") << 64 << 32 << 16;
    QTest::newRow("barely") << 101 << 67 << 100;
    QTest::newRow("to one pixel") << 37 << 11 << 1;
    QTest::newRow("several bands") << 151 << 103 << 60;
    QTest::newRow("a strip") << 700 << 2 << 33;
}

void tst_ImageExport::aReducedPictureIsTheAverage() {
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, maxSide);
    const auto source = noise(width, height, static_cast<uint64_t>(width));
    const auto reduced = RGBABuffer::fromImage(ImageExport::scaled(source->makeImage(), maxSide));
    for (int64_t y = 0; y < reduced->height(); ++y) {
        for (int64_t x = 0; x < reduced->width(); ++x) {
            for (std::size_t c = 0; c < 4; ++c) {
                const double exact = average(*source, *reduced, x, y, c);
                const QString what = QStringLiteral("at %1,%2: %3 for %4")
                                         .arg(x)
                                         .arg(y)
                                         .arg(reduced->pixel(x, y)[c])
                                         .arg(exact);
                QVERIFY2(std::fabs(reduced->pixel(x, y)[c] - exact) <= 0.5 + 1e-6, qPrintable(what));
            }
        }
    }
    for (int64_t i = 0; i < reduced->byteCount(); i += 4) {
        for (int c = 0; c < 3; ++c) QVERIFY(reduced->data()[i + c] <= reduced->data()[i + 3]);
    }
    setConcurrency(1);
    const auto alone = RGBABuffer::fromImage(ImageExport::scaled(source->makeImage(), maxSide));
    QCOMPARE(firstDifference(*alone, *reduced), QString());
}

void tst_ImageExport::aPictureIsNeverEnlarged() {
    const QImage image = noise(20, 30, 1)->makeImage();
    QCOMPARE(ImageExport::scaled(image, 30).constBits(), image.constBits());
    QCOMPARE(ImageExport::scaled(image, 1000).size(), image.size());
    QVERIFY(ImageExport::scaled(QImage(), 100).isNull());
}

void tst_ImageExport::partsInAnyOrderGiveTheSameReduction() {
    const auto source = noise(300, 200, 9);
    AreaReducer whole(300, 200, 77, 51);
    whole.add(whole.reduce({0, 0, 300, 200}, source->data(), 1200));
    AreaReducer parts(300, 200, 77, 51);
    for (const IRect& part : {IRect{131, 0, 169, 70}, IRect{0, 70, 300, 130}, IRect{0, 0, 131, 70}}) {
        parts.add(parts.reduce(part, source->row(part.y) + part.x * 4, 1200));
    }
    QCOMPARE(firstDifference(*parts.result(), *whole.result()), QString());
}

void tst_ImageExport::aUniformPartIsReducedAsItsPixels() {
    const PixelBytes pixel{10, 200, 30, 250};
    const IRect part{13, 7, 90, 61};
    RGBABuffer flat(part.w, part.h);
    for (int64_t i = 0; i < part.w * part.h; ++i) std::memcpy(flat.data() + i * 4, pixel.data(), 4);
    AreaReducer byPixels(300, 200, 41, 29);
    byPixels.add(byPixels.reduce(part, flat.data(), part.w * 4));
    AreaReducer atOnce(300, 200, 41, 29);
    atOnce.add(atOnce.reduceUniform(part, pixel));
    QCOMPARE(firstDifference(*atOnce.result(), *byPixels.result()), QString());
}

void tst_ImageExport::everyPixelValueSurvivesPNG() {
    RGBABuffer all(256, 256); // every premultiplied value at every alpha
    for (int a = 0; a < 256; ++a) {
        for (int v = 0; v < 256; ++v) {
            const auto value = static_cast<uint8_t>(std::min(v, a));
            const uint8_t pixel[4] = {value, static_cast<uint8_t>(a - value), value, static_cast<uint8_t>(a)};
            std::memcpy(all.row(a) + v * 4, pixel, 4);
        }
    }
    const auto png = ImageExport::pngData(all.makeImage(), 72);
    QVERIFY(png);
    const auto image = ImageImport::decodePNG(bytesOf(*png));
    QVERIFY(image);
    QCOMPARE(firstDifference(*RGBABuffer::fromImage(*image), all), QString());
}

void tst_ImageExport::aPNGKeepsItsResolution() {
    const auto perMeter = [](double dpi) {
        const auto png = ImageExport::pngData(noise(3, 3, 1)->makeImage(), dpi);
        return ImageImport::decodePNG(bytesOf(*png))->dotsPerMeterX();
    };
    QCOMPARE(perMeter(300), 11811);
    QCOMPARE(perMeter(72), 2835);
    const int unknown = perMeter(std::nan(""));
    QCOMPARE(perMeter(-1), unknown);
    QCOMPARE(perMeter(1e300), unknown);
}

void tst_ImageExport::aNullImageIsNoPNG() {
    QVERIFY(!ImageExport::pngData(QImage(), 72));
}

QIRN_TEST(tst_ImageExport)
#include "tst_ImageExport.moc"
