#include "compositing/CompositeInputs.h"
#include "core/RGBABuffer.h"
#include "core/SeededRandom.h"
#include "formats/AreaReducer.h"
#include "formats/ByteReader.h"
#include "formats/pictures/ImageExport.h"
#include "formats/pictures/ImageImport.h"
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

QByteArray exported(const PaintDocument& doc, ExportFormat format, double quality = 1) {
    return ImageExport::data(doc, format, quality, PaintColor(1, 1, 1, 0.3));
}

/// The types of a PNG's chunks, those of a JPEG's segments before its pixels, or the tags of a TIFF's only directory.
QStringList marksIn(const QByteArray& file) {
    QStringList marks;
    const auto bytes = bytesOf(file);
    if (file.startsWith("\x89PNG")) {
        BEReader in(bytes.subspan(8));
        while (in.remaining() > 0) {
            const uint32_t length = in.u32();
            const auto type = in.slice(4);
            marks += QString::fromLatin1(reinterpret_cast<const char*>(type.data()), 4);
            in.skip(int64_t{length} + 4);
        }
    } else if (file.startsWith("\xFF\xD8")) {
        BEReader in(bytes.subspan(2));
        while (marks.value(marks.size() - 1) != u"ffda") {
            marks += QString::number(in.u16(), 16);
            in.skip(in.u16() - 2);
        }
    } else if (file.startsWith(QByteArray("II*\0", 4))) {
        const auto number = [&](qsizetype at, int size) {
            uint32_t value = 0;
            for (int i = 0; i < size; ++i)
                value |= uint32_t{bytes[static_cast<std::size_t>(at + i)]} << (8 * i);
            return value;
        };
        const uint32_t directory = number(4, 4);
        const uint32_t count = number(directory, 2);
        for (uint32_t i = 0; i < count; ++i) marks += QString::number(number(directory + 2 + 12 * i, 2));
        if (number(directory + 2 + 12 * count, 4) != 0) marks += QStringLiteral("another picture");
    }
    marks.removeDuplicates(); // several blocks of pixels, several tables
    return marks;
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
    void aPNGIsTheSameOnAnyNumberOfThreads();
    void aNullImageIsNoPNG();

    void everyFormatReadsBackAsItWas_data();
    void everyFormatReadsBackAsItWas();
    void aFileNotesItsResolutionAndNothingElse_data();
    void aFileNotesItsResolutionAndNothingElse();
    void qualityIsBroughtIntoItsRange();
    void transparencyInAJPEGShowsTheBackground();
    void aHiddenLayerIsInNoFlattenedExport();
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

void tst_ImageExport::aPNGIsTheSameOnAnyNumberOfThreads() {
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

void tst_ImageExport::aNullImageIsNoPNG() {
    QVERIFY(!ImageExport::pngData(QImage(), 72));
}

void tst_ImageExport::everyFormatReadsBackAsItWas_data() {
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

void tst_ImageExport::everyFormatReadsBackAsItWas() {
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
        const bool isNear =
            std::abs(pixel[0] - 51) <= 1 && std::abs(pixel[1] - 128) <= 1 && std::abs(pixel[2] - 230) <= 1;
        QVERIFY2(isNear, qPrintable(text(pixel)));
        QCOMPARE(picture->layer->grid().width, 333);
    }
}

void tst_ImageExport::aFileNotesItsResolutionAndNothingElse_data() {
    QTest::addColumn<int>("format");
    QTest::addColumn<QStringList>("marks");
    QTest::newRow("png") << static_cast<int>(ExportFormat::png)
                         << QStringList{"IHDR", "pHYs", "IDAT", "IEND"};
    // JFIF, quantisation, frame, codes, pixels.
    QTest::newRow("jpeg") << static_cast<int>(ExportFormat::jpeg)
                          << QStringList{"ffe0", "ffdb", "ffc0", "ffc4", "ffda"};
    // Sizes, bits, LZW, RGB, strips, samples, rows, lengths, resolution, planes, unit, predictor, alpha.
    QTest::newRow("tiff") << static_cast<int>(ExportFormat::tiff)
                          << QStringList{"256", "257", "258", "259", "262", "273", "277", "278",
                                         "279", "282", "283", "284", "296", "317", "338"};
}

void tst_ImageExport::aFileNotesItsResolutionAndNothingElse() {
    QFETCH(int, format);
    QFETCH(QStringList, marks);
    QCOMPARE(marksIn(exported(*randomDocument(600, 300, 2, 8), static_cast<ExportFormat>(format))), marks);
}

void tst_ImageExport::qualityIsBroughtIntoItsRange() {
    const auto doc = randomDocument(100, 80, 2, 3);
    const auto atQuality = [&](double quality) { return exported(*doc, ExportFormat::jpeg, quality); };
    QCOMPARE(atQuality(0), atQuality(0.05));
    QCOMPARE(atQuality(std::nan("")), atQuality(0.05));
    QCOMPARE(atQuality(2), atQuality(1));
    QVERIFY(atQuality(0.05).size() < atQuality(0.5).size());
    QVERIFY(atQuality(0.5).size() < atQuality(1).size());
}

void tst_ImageExport::transparencyInAJPEGShowsTheBackground() {
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

void tst_ImageExport::aHiddenLayerIsInNoFlattenedExport() {
    PaintDocument doc(300, 20, 72, PaintColor(0.5, 0.5, 0.5));
    const auto plain = [&](ExportFormat format) { return exported(doc, format); };
    for (const auto& row : kExportFormats) {
        if (row.format == ExportFormat::psdLayered) continue; // keeps it, hidden
        const QByteArray before = plain(row.format);
        paintRect(doc, doc.layer(1), {3, 3, 200, 9}, {200, 0, 0, 255});
        doc.layer(1).isVisible = false;
        QCOMPARE(plain(row.format), before);
        doc.layer(1).isVisible = true;
        QVERIFY(plain(row.format) != before);
        doc.layer(1).removeAllTiles();
    }
}

QIRN_TEST(tst_ImageExport)
#include "tst_ImageExport.moc"
