#include "compositing/CompositeInputs.h"
#include "core/RGBABuffer.h"
#include "formats/AreaReducer.h"
#include "formats/ByteReader.h"
#include "formats/pictures/ImageExport.h"
#include "formats/pictures/ImageImport.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>

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

QByteArray exported(const PaintDocument& doc, ExportFormat format, double quality = 1) {
    return ImageExport::data(doc, format, quality, PaintColor(1, 1, 1, 0.3));
}

} // namespace

class tst_ImageExport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void sidesAreCutToWholePixels_data() {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("maxSide");
        QTest::addColumn<QSize>("expected");
        QTest::newRow("wide") << QSize(1920, 1080) << 320 << QSize(320, 180);
        QTest::newRow("high") << QSize(1000, 3000) << 320 << QSize(106, 320);
        QTest::newRow("thin") << QSize(30000, 1) << 320 << QSize(320, 1);
        QTest::newRow("not larger") << QSize(320, 7) << 320 << QSize(320, 7);
        QTest::newRow("no side at all") << QSize(50, 40) << 0 << QSize(1, 1);
    }
    void sidesAreCutToWholePixels() {
        QFETCH(QSize, size);
        QFETCH(int, maxSide);
        QFETCH(QSize, expected);
        QCOMPARE(ImageExport::scaledSize(size.width(), size.height(), maxSide), expected);
    }

    void aReducedPictureIsTheAverage_data() {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("maxSide");
        QTest::newRow("by whole numbers") << 64 << 32 << 16;
        QTest::newRow("barely") << 101 << 67 << 100;
        QTest::newRow("to one pixel") << 37 << 11 << 1;
        QTest::newRow("several bands") << 151 << 103 << 60;
        QTest::newRow("a strip") << 700 << 2 << 33;
    }
    void aReducedPictureIsTheAverage() {
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

    void aPictureIsNeverEnlarged() {
        const QImage image = noise(20, 30, 1)->makeImage();
        QCOMPARE(ImageExport::scaled(image, 30).constBits(), image.constBits());
        QCOMPARE(ImageExport::scaled(image, 1000).size(), image.size());
        QVERIFY(ImageExport::scaled(QImage(), 100).isNull());
    }

    void aPNGIsTheSameOnAnyNumberOfThreads() {
        // Several bands; opaque ones without alpha. Read by Qt, whose codec is another one than ours.
        const auto clear = noise(1200, 900, 3);
        const auto opaque = ImageExport::onBackground(*clear, PaintColor::white());
        for (const auto& picture : {clear, opaque}) {
            const auto png = ImageExport::pngData(picture->makeImage(), 72);
            setConcurrency(1);
            QCOMPARE(ImageExport::pngData(picture->makeImage(), 72), png);
            setConcurrency(0);
            const QImage read = QImage::fromData(*png, "png");
            QCOMPARE(read.hasAlphaChannel(), picture == clear);
            QCOMPARE(firstDifference(*RGBABuffer::fromImage(read), *picture), QString());
            QCOMPARE(firstDifference(*ImageImport::decode(bytesOf(*png))->layer->toBuffer(), *picture),
                     QString());
        }
    }

    void everyFormatReadsBackAsItWas_data() {
        QTest::addColumn<int>("format");
        QTest::addColumn<double>("dpi");
        QTest::addColumn<double>("expected");
        for (const auto& row : kExportFormats) {
            for (const double dpi : {300.0, 72.0, 96.0, 1.0, 32'767.0})
                QTest::addRow("%s at %g", row.id, dpi) << static_cast<int>(row.format) << dpi << dpi;
        }
        QTest::newRow("png in tenths") << static_cast<int>(ExportFormat::png) << 72.3 << 72.3;
        QTest::newRow("tiff in tenths") << static_cast<int>(ExportFormat::tiff) << 72.3 << 72.3;
        QTest::newRow("jpeg in whole dots") << static_cast<int>(ExportFormat::jpeg) << 72.3 << 72.0;
        QTest::newRow("jpeg at its limit") << static_cast<int>(ExportFormat::jpeg) << 99'999.0 << 65'535.0;
    }
    void everyFormatReadsBackAsItWas() {
        QFETCH(int, format);
        QFETCH(double, dpi);
        QFETCH(double, expected);
        const bool isExact = static_cast<ExportFormat>(format) != ExportFormat::jpeg;
        auto doc = isExact ? randomDocument(333, 222, 3, 5)
                           : std::make_unique<PaintDocument>(333, 222, 72, PaintColor(0.2, 0.5, 0.9));
        doc->dpi = dpi;
        const auto picture = ImageImport::decode(bytesOf(exported(*doc, static_cast<ExportFormat>(format))));
        QVERIFY(picture);
        QCOMPARE(picture->dpi, expected);
        if (isExact) {
            QCOMPARE(firstDifference(*picture->layer->toBuffer(), *flattened(*doc)), QString());
        } else {
            const PixelBytes pixel = picture->layer->pixel(332, 221);
            const bool isNear = std::abs(pixel[0] - 51) <= 1 && std::abs(pixel[1] - 128) <= 1 &&
                                std::abs(pixel[2] - 230) <= 1;
            QVERIFY2(isNear, qPrintable(text(pixel)));
            QCOMPARE(picture->layer->grid().width, 333);
        }
    }

    /// Neither who made it nor when, and nothing of the layers.
    void nobodyIsNamedInAFile() {
        const auto doc = randomDocument(600, 300, 2, 8);
        doc->activeLayer().name = QStringLiteral("Secret");
        for (const ExportFormat format : {ExportFormat::png, ExportFormat::jpeg, ExportFormat::tiff}) {
            const QByteArray file = exported(*doc, format);
            for (const char* word :
                 {"Secret", "Qirn", "Exif", "tEXt", "iTXt", "zTXt", "tIME", "LIBTIFF", "Creator", "iCCP"})
                QVERIFY2(!file.contains(word), word);
        }
    }

    void qualityIsBroughtIntoItsRange() {
        const auto doc = randomDocument(100, 80, 2, 3);
        const auto atQuality = [&](double quality) { return exported(*doc, ExportFormat::jpeg, quality); };
        QCOMPARE(atQuality(0), atQuality(0.05));
        QCOMPARE(atQuality(std::nan("")), atQuality(0.05));
        QCOMPARE(atQuality(2), atQuality(1));
        QVERIFY(atQuality(0.05).size() < atQuality(0.5).size());
        QVERIFY(atQuality(0.5).size() < atQuality(1).size());
    }

    void transparencyInAJPEGShowsTheBackground() {
        const auto source = noise(64, 64, 4);
        const auto flat = ImageExport::onBackground(*source, PaintColor(0.8, 0.4, 0.2, 0));
        const double below[3] = {204, 102, 51};
        for (int64_t y = 0; y < 64; ++y) {
            for (int64_t x = 0; x < 64; ++x) {
                const PixelBytes from = source->pixel(x, y);
                const PixelBytes to = flat->pixel(x, y);
                QCOMPARE(to[3], 255);
                for (std::size_t c = 0; c < 3; ++c)
                    QCOMPARE(static_cast<double>(to[c]),
                             std::round(from[c] + below[c] * (255 - from[3]) / 255.0));
            }
        }
        PaintDocument doc(40, 40, 72, PaintColor(1, 0, 0, 0.5));
        const auto jpeg =
            ImageImport::decode(bytesOf(ImageExport::data(doc, ExportFormat::jpeg, 1, PaintColor(0, 0, 1))));
        const PixelBytes mixed = jpeg->layer->pixel(20, 20);
        QVERIFY2(std::abs(mixed[0] - 128) <= 2 && mixed[1] <= 2 && std::abs(mixed[2] - 127) <= 2,
                 qPrintable(text(mixed)));
    }
};

QIRN_TEST(tst_ImageExport)
#include "tst_ImageExport.moc"
