#include "compositing/CompositeInputs.h"
#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "formats/common/AreaReducer.h"
#include "formats/common/SrgbIccProfile.h"
#include "formats/pictures/PngWriter.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>

#include <QColorSpace>
#include <QCryptographicHash>

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

    void sidesAreCutToWholePixels() {
        for (const auto& [size, maxSide, expected] :
             std::initializer_list<std::tuple<QSize, int, QSize>>{{{1920, 1080}, 320, {320, 180}},
                                                                  {{1000, 3000}, 320, {106, 320}},
                                                                  {{30000, 1}, 320, {320, 1}},
                                                                  {{320, 7}, 320, {320, 7}},
                                                                  {{50, 40}, 0, {1, 1}}})
            QCOMPARE(reducedSize(size.width(), size.height(), maxSide), expected);
    }

    void aReducedPictureIsTheAverage() {
        const auto check = [](int width, int height, int maxSide) {
            const auto source = noise(width, height, static_cast<uint64_t>(width));
            const auto reduced = RGBABuffer::fromImage(ImageExport::scaled(source->makeImage(), maxSide));
            for (int64_t i = 0; i < reduced->byteCount(); ++i) {
                const int64_t x = i / 4 % reduced->width(), y = i / 4 / reduced->width();
                const PixelBytes pixel = reduced->pixel(x, y);
                const auto c = static_cast<std::size_t>(i % 4);
                const double exact = average(*source, *reduced, x, y, c);
                const QString what = QString("at %1,%2: %3 for %4").arg(x).arg(y).arg(pixel[c]).arg(exact);
                QVERIFY2(std::fabs(pixel[c] - exact) <= 0.5 + 1e-6 && pixel[c] <= pixel[3], qPrintable(what));
            }
            setConcurrency(1);
            const auto alone = RGBABuffer::fromImage(ImageExport::scaled(source->makeImage(), maxSide));
            setConcurrency(0);
            QCOMPARE(firstDifference(*alone, *reduced), QString());
        };
        check(64, 32, 16); // by whole numbers
        check(101, 67, 100);
        check(37, 11, 1);
        check(151, 103, 60); // several bands
        check(700, 2, 33);
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

    void everyFormatReadsBackAsItWas() {
        const auto check = [](ExportFormat format, double dpi, double expected) {
            const bool isExact = !rowOf(format).asksQuality;
            const int tolerance = isExact                        ? 0
                                  : format == ExportFormat::jpeg ? 1
                                                                 : 3; // in fewer steps of color
            auto doc = isExact ? randomDocument(333, 222, 3, 5)
                               : std::make_unique<PaintDocument>(333, 222, 72, PaintColor(0.2, 0.5, 0.9));
            doc->dpi = dpi;
            const auto picture = ImageImport::decode(bytesOf(exported(*doc, format)));
            QVERIFY(picture);
            QCOMPARE(picture->dpi, expected);
            const auto wanted = flattened(*doc), got = picture->layer->toBuffer();
            QCOMPARE(got->byteCount(), wanted->byteCount());
            for (int64_t i = 0; i < got->byteCount(); ++i)
                QVERIFY(std::abs(got->data()[i] - wanted->data()[i]) <= tolerance);
        };
        for (const auto& row : kExportFormats) {
            for (const double dpi : {300.0, 72.0, 96.0, 1.0, 32'767.0}) check(row.format, dpi, dpi);
        }
        check(ExportFormat::png, 72.3, 72.3);
        check(ExportFormat::tiff, 72.3, 72.3);
        check(ExportFormat::webp, 72.3, 72.3);
        check(ExportFormat::jpeg, 72.3, 72); // in whole dots
        check(ExportFormat::jpeg, 99'999, 65'535);
    }

    /// Neither who made it nor when, and nothing of the layers.
    void nobodyIsNamedInAFile() {
        const auto doc = randomDocument(600, 300, 2, 8);
        doc->activeLayer().name = QStringLiteral("Secret");
        for (const ExportFormat format : {ExportFormat::png, ExportFormat::jpeg, ExportFormat::tiff}) {
            const QByteArray file = exported(*doc, format);
            for (const char* word : {"Secret", "Qirn", "Exif", "tEXt", "iTXt", "zTXt", "tIME", "LIBTIFF",
                                     "Creator", "iCCP", "lcms"})
                QVERIFY2(!file.contains(word), word);
        }
    }

    void everyFormatNamesItsSpace() {
        PaintDocument doc(20, 20, 72, PaintColor(0.2, 0.5, 0.9));
        const auto icc = srgbIccProfile();
        const QByteArray profile(reinterpret_cast<const char*>(icc.data()), std::ssize(icc));
        QCOMPARE(QColorSpace::fromIccProfile(profile), QColorSpace(QColorSpace::SRgb));
        QByteArray hashed = profile; // without its flags, its intent and the number that this is
        for (const auto& [at, count] : {std::pair(44, 4), {64, 4}, {84, 16}})
            hashed.replace(at, count, QByteArray(count, '\0'));
        QCOMPARE(QCryptographicHash::hash(hashed, QCryptographicHash::Md5), profile.mid(84, 16));
        for (const ExportFormatRow& row : kExportFormats) {
            if (QByteArray(row.fileExtension) == "psd") continue; // has none, which means the same
            const QByteArray file = exported(doc, row.format), mark("sRGB\0\xAE\xCE\x1C\xE9", 9);
            QVERIFY2(file == exported(doc, row.format), row.id);
            QVERIFY2(file.count(profile) + file.count(mark) >= 1, row.id);
        }
    }

    void qualityIsBroughtIntoItsRange() {
        const auto doc = randomDocument(100, 80, 2, 3);
        for (const ExportFormat format : {ExportFormat::jpeg, ExportFormat::webpLossy}) {
            const auto atQuality = [&](double quality) { return exported(*doc, format, quality); };
            QCOMPARE(atQuality(0), atQuality(0.05));
            QCOMPARE(atQuality(std::nan("")), atQuality(0.05));
            QCOMPARE(atQuality(2), atQuality(1));
            QVERIFY(atQuality(0.05).size() < atQuality(0.5).size());
            QVERIFY(atQuality(0.5).size() < atQuality(1).size());
        }
    }

    void whatAFormatCannotSayIsRefusedInWords() {
        const PaintDocument most(16'383, 1, 72, PaintColor::black()),
            more(16'384, 1, 72, PaintColor::black());
        QCOMPARE(ImageImport::decode(bytesOf(exported(most, ExportFormat::webp)))->layer->grid().width,
                 16'383);
        try {
            exported(more, ExportFormat::webpLossy);
            QFAIL("not refused");
        } catch (const ExportError& error) {
            QVERIFY(error.description().contains("WebP (web, smallest): no side may exceed " +
                                                 QLocale().toString(16'383)));
        }
    }

    void transparencyInAJPEGShowsTheBackground() {
        const auto source = noise(64, 64, 4);
        const auto flat = ImageExport::onBackground(*source, PaintColor(0.8, 0.4, 0.2, 0));
        const int below[3] = {204, 102, 51};
        const auto wanted = pictureOf(64, 64, [&](int64_t x, int64_t y) {
            PixelBytes to = source->pixel(x, y);
            for (std::size_t c = 0; c < 3; ++c)
                to[c] = static_cast<uint8_t>(std::lround(to[c] + below[c] * (255 - to[3]) / 255.0));
            to[3] = 255;
            return to;
        });
        QCOMPARE(firstDifference(*flat, *wanted), QString());
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
