#include "SmallPictures.h"
#include "formats/common/PrintDensity.h"
#include "formats/pictures/HevcSize.h"
#include "support/Profiles.h"
#include "support/TestMain.h"

#include <array>
#include <cmath>

using namespace qirn;
using namespace qirn::test;

namespace {

/// The largest difference of any channel, or a thousand where there is no picture of this size.
int distance(const std::optional<DecodedPicture>& picture, const QImage& expected) {
    const auto other = RGBABuffer::fromImage(expected);
    if (!picture || picture->layer->grid().width != other->width() ||
        picture->layer->grid().height != other->height())
        return 1000;
    int largest = 0;
    const auto pixels = picture->layer->toBuffer();
    for (int64_t i = 0; i < other->byteCount(); ++i)
        largest = std::max(largest, std::abs(pixels->data()[i] - other->data()[i]));
    return largest;
}

PixelBytes firstPixel(const QByteArray& file) {
    const auto picture = decoded(file);
    return picture ? picture->layer->pixel(0, 0) : PixelBytes{1, 2, 3, 4};
}

bool isNear(const PixelBytes& a, const PixelBytes& b, int distance) {
    for (std::size_t c = 0; c < 4; ++c) {
        if (std::abs(a[c] - b[c]) > distance) return false;
    }
    return true;
}

TiffEntry profileTag(const QByteArray& profile) {
    const auto bytes = bytesOf(profile);
    return {34675, 1, {bytes.begin(), bytes.end()}};
}

/// One pixel of a TIFF with samples of 8 or 16 bits, low byte first.
QByteArray onePixelTiff(uint32_t photometric, uint32_t bits, const std::vector<uint32_t>& samples,
                        std::vector<TiffEntry> more = {}) {
    QByteArray pixel;
    for (const uint32_t sample : samples) {
        pixel.append(static_cast<char>(sample));
        for (uint32_t b = 8; b < bits; b += 8) pixel.append(static_cast<char>(sample >> b));
    }
    auto entries = tiffTags(1, 1, photometric, static_cast<uint32_t>(samples.size()), bits);
    entries.insert(entries.end(), more.begin(), more.end());
    return tiffFile(std::move(entries), pixel);
}

/// Two pixels wide, of two bytes each.
QByteArray wordBmp(uint32_t compression, int height, const std::vector<uint32_t>& masks,
                   const QByteArray& rows) {
    const auto little = [](std::initializer_list<uint32_t> numbers) {
        QByteArray bytes;
        for (const uint32_t number : numbers)
            for (int shift = 0; shift < 32; shift += 8) bytes.append(static_cast<char>(number >> shift));
        return bytes;
    };
    const auto start = static_cast<uint32_t>(54 + 4 * masks.size());
    QByteArray file = "BM" + little({start + 8, 0, start, 40, 2, static_cast<uint32_t>(height), 16u << 16 | 1,
                                     compression, 8, 0, 0, 0, 0});
    for (const uint32_t mask : masks) file += little({mask});
    return file + rows;
}

} // namespace

class tst_ImageImport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void eachFormatGivesItsPixels() {
        const auto row = [](const QString& name, const QByteArray& file, const QImage& expected,
                            int tolerance) {
            QVERIFY2(distance(decoded(file), expected) <= tolerance,
                     qPrintable(name + ": " + QString::number(distance(decoded(file), expected))));
        };
        const QImage opaque = blocks();
        const QImage clear = blocks(true);
        row("png", written(opaque, "png"), opaque, 0);
        row("png with alpha", written(clear, "png"), clear, 0);
        const QImage gray = opaque.convertToFormat(QImage::Format_Grayscale8);
        row("png grey", written(gray, "png"), gray, 0);
        const QImage indexed = opaque.convertToFormat(QImage::Format_Indexed8);
        row("png with palette", written(indexed, "png"), opaque, 0);
        const QImage mono = opaque.convertToFormat(QImage::Format_Mono);
        row("png of one bit", written(mono, "png"), mono, 0);
        row("jpeg", jpegOf(opaque), opaque, 2);
        row("jpeg grey", written(gray, "jpg"), gray, 2);
        row("bmp", written(opaque, "bmp"), opaque, 0);
        QByteArray fromTheTop = written(opaque.mirrored(), "bmp");
        fromTheTop.replace(22, 4, QByteArray("\xE0\xFF\xFF\xFF", 4)); // 32 rows, below nothing
        row("bmp from the top", fromTheTop, opaque, 0);
        row("bmp with palette", written(indexed, "bmp"), opaque, 0);
        // Words of 5 bits a channel from the bottom, and of 5, 6 and 5 from the top.
        QImage corners(2, 2, QImage::Format_RGB888);
        corners.setPixelColor(0, 0, Qt::white);
        corners.setPixelColor(1, 0, Qt::red);
        corners.setPixelColor(0, 1, QColor(0, 255, 132));
        corners.setPixelColor(1, 1, Qt::black);
        row("bmp of 15 bits", wordBmp(0, 2, {}, QByteArray("\xF0\x03\0\0\xFF\x7F\0\x7C", 8)), corners, 0);
        row("bmp of 16 bits",
            wordBmp(3, -2, {0xF800, 0x07E0, 0x001F}, QByteArray("\xFF\xFF\0\xF8\xF0\x07\0\0", 8)), corners,
            0);
        row("webp", written(clear, "webp"), clear, 0);
        row("gif", testData("blocks.gif"), opaque, 0);
        for (const char* name : {"interlaced.gif", "offset.gif", "clipped.gif", "two.gif", "animated.webp"})
            row(name, testData(name), QImage::fromData(testData(name)), 0); // another reader's
        row("heic", testData("blocks.heic"), opaque, 4);
        row("tiff", tiffOf(opaque), opaque, 0);
        row("tiff by Qt", written(clear.convertToFormat(QImage::Format_ARGB32), "tiff"), clear, 1);
        row("tiff with palette", written(indexed, "tiff"), opaque, 0);
        row("tiff of one bit", written(mono, "tiff"), mono, 0);
        QByteArray planes;
        const QByteArray rgb = rgbBytes(opaque);
        for (int c = 0; c < 3; ++c) {
            for (qsizetype i = c; i < rgb.size(); i += 3) planes.append(rgb[i]);
        }
        auto tags = tiffTags(kWidth, kHeight, 2, 3, 8);
        tags.back() = {284, 3, {2}};
        tags.erase(tags.begin() + 3); // no word about compression means none
        row("tiff in planes", tiffFile(tags, planes, ByteOrder::little, 3), opaque, 0);
        const uint8_t grays[4] = {255, 170, 85, 0};
        row("tiff of two bits, white first", tiffFile(tiffTags(4, 1, 0, 1, 2), "\x1B"),
            QImage(grays, 4, 1, QImage::Format_Grayscale8).copy(), 0);
        auto mapped = tiffTags(2, 1, 3, 1, 4);
        mapped.push_back({320, 3, std::vector<uint32_t>(48)});
        for (std::size_t c = 0; c < 3; ++c) mapped.back().values[16 * c + 11] = grays[c] * 257u;
        row("tiff with a map of 16", tiffFile(mapped, "\xBB"), flat({255, 170, 85}).copy(0, 0, 2, 1), 0);
        QByteArray passes;
        for (const auto& [x0, y0, dx, dy] : std::initializer_list<std::array<int, 4>>{{0, 0, 8, 8},
                                                                                      {4, 0, 8, 8},
                                                                                      {0, 4, 4, 8},
                                                                                      {2, 0, 4, 4},
                                                                                      {0, 2, 2, 4},
                                                                                      {1, 0, 2, 2},
                                                                                      {0, 1, 1, 2}}) {
            for (int y = y0; y < kHeight; y += dy) {
                passes.append('\0');
                for (int x = x0; x < kWidth; x += dx)
                    passes.append(reinterpret_cast<const char*>(clear.constScanLine(y) + 4 * x), 4);
            }
        }
        row("png interlaced", pngFile(kWidth, kHeight, QByteArray("\x08\6\0\0\1", 5), passes), clear, 0);
    }

    void everyOrientationStandsUpright() {
        const auto check = [](const QString& name, const QByteArray& file, const QImage& expected) {
            QVERIFY2(distance(decoded(file), expected) <= 2,
                     qPrintable(name + ": " + QString::number(distance(decoded(file), expected))));
        };
        const QImage stored = blocks();
        // Where the stored first row and first column belong, in EXIF's words.
        const struct {
            uint32_t number;
            char row, column; // Top, Bottom, Left, Right
        } ways[] = {{1, 'T', 'L'}, {2, 'T', 'R'}, {3, 'B', 'R'}, {4, 'B', 'L'},
                    {5, 'L', 'T'}, {6, 'R', 'T'}, {7, 'R', 'B'}, {8, 'L', 'B'}};
        for (const auto& way : ways) {
            const bool isSwapped = way.row == 'L' || way.row == 'R';
            QImage upright(isSwapped ? stored.size().transposed() : stored.size(), stored.format());
            for (int row = 0; row < kHeight; ++row) {
                for (int column = 0; column < kWidth; ++column) {
                    const int byRow = way.row == 'B' || way.row == 'R' ? kHeight - 1 - row : row;
                    const int byColumn =
                        way.column == 'B' || way.column == 'R' ? kWidth - 1 - column : column;
                    upright.setPixelColor(isSwapped ? byRow : byColumn, isSwapped ? byColumn : byRow,
                                          stored.pixelColor(column, row));
                }
            }
            const auto order = way.number % 2 == 0 ? ByteOrder::little : ByteOrder::big;
            const QByteArray exif = exifBlock(way.number, 0, 1, 2, order);
            check(QString::asprintf("jpeg %u", way.number),
                  withJpegSegment(jpegOf(stored), 0xE1, QByteArray("Exif\0\0", 6) + exif), upright);
            check(QString::asprintf("tiff %u", way.number), tiffOf(stored, {{274, 3, {way.number}}}),
                  upright);
            check(QString::asprintf("png %u", way.number), withPngChunk(written(stored, "png"), "eXIf", exif),
                  upright);
            check(QString::asprintf("webp %u", way.number), webpOf(stored, {}, exif), upright);
            // A palette goes through the library's own conversion, which must not turn as well.
            QByteArray indexed = written(stored.convertToFormat(QImage::Format_Indexed8), "tiff");
            const qsizetype at = indexed.indexOf(QByteArray("\x12\x01\x03\x00\x01\x00\x00\x00", 8));
            QVERIFY(at > 0);
            indexed[at + 8] = static_cast<char>(way.number);
            check(QString::asprintf("tiff with palette %u", way.number), indexed, upright);
        }
    }

    void aTurnedHeicIsTurnedOnce() {
        // tests/data/README.md: blocks, to be turned a quarter clockwise, with the same said in its EXIF.
        QTransform turn;
        turn.rotate(90);
        const auto picture = decoded(testData("turned.heic"));
        QVERIFY2(distance(picture, blocks().transformed(turn)) <= 4,
                 qPrintable(QString::number(distance(picture, blocks().transformed(turn)))));
        QCOMPARE(picture->dpi, 300.0);
    }

    void embeddedColorsBecomeScreenColors() {
        const auto png = [](const QColor& color, const char* type, const QByteArray& body,
                            QImage::Format format = QImage::Format_RGB888) {
            return withPngChunk(written(flat(color, format), "png"), type, body);
        };
        const auto row = [](const QString& name, const QByteArray& file, const QColor& expected) {
            const PixelBytes pixel = firstPixel(file);
            const PixelBytes wanted{static_cast<uint8_t>(expected.red()),
                                    static_cast<uint8_t>(expected.green()),
                                    static_cast<uint8_t>(expected.blue()), 255};
            QVERIFY2(isNear(pixel, wanted, 2), qPrintable(name + ": " + text(pixel)));
        };
        const QColor stored(60, 200, 90);
        const QColor fromP3(0, 203, 73); // by the formulas published with the spaces
        const QColor fromAdobe(0, 201, 80);
        const QColor grayStored(128, 128, 128);
        const QColor fromLinear(188, 188, 188);
        const QByteArray p3 = displayP3Profile();
        row("png P3", png(stored, "iCCP", iccpBody(p3)), fromP3);
        row("png 16 bits P3", png(stored, "iCCP", iccpBody(p3), QImage::Format_RGBX64), fromP3);
        row("png Adobe", png(stored, "iCCP", iccpBody(adobeRgbProfile())), fromAdobe);
        row("png grey", png(grayStored, "iCCP", iccpBody(grayProfile(1)), QImage::Format_Grayscale8),
            fromLinear);
        row("png linear gamma", png(grayStored, "gAMA", bigEndianWords({100000})), fromLinear);
        row("png P3 by its primaries",
            withPngChunk(png(stored, "gAMA", bigEndianWords({45455})), "cHRM",
                         bigEndianWords({31270, 32900, 68000, 32000, 26500, 69000, 15000, 6000})),
            fromP3);
        row("jpeg P3", withJpegProfile(jpegOf(flat(stored)), p3), fromP3);
        row("tiff P3", tiffOf(flat(stored), {profileTag(p3)}), fromP3);
        row("webp P3", webpOf(flat(stored), p3, {}), fromP3);
        row("broken", png(stored, "iCCP", iccpBody(QByteArray(400, 'x'))), stored);
        row("of another model", withJpegProfile(jpegOf(flat(stored)), grayProfile(1)), stored);

        const QColor press(kPressCyan[0], kPressCyan[1], kPressCyan[2]);
        const QByteArray cyan = QByteArray("\xFF\0\0\0", 4).repeated(256);
        const QByteArray inverted = QByteArray("\0\xFF\xFF\xFF", 4).repeated(256);
        row("jpeg inks", withJpegProfile(cmykJpeg(cyan, 16, 16, false), pressProfile()), press);
        row("jpeg Adobe's inks", withJpegProfile(cmykJpeg(inverted, 16, 16, true), pressProfile()), press);
        row("jpeg Adobe's inks, no profile", cmykJpeg(inverted, 16, 16, true), QColor(0, 255, 255));
        row("tiff inks", onePixelTiff(5, 8, {255, 0, 0, 0}, {profileTag(pressProfile())}), press);
        row("tiff 16-bit inks", onePixelTiff(5, 16, {65535, 0, 0, 0}, {profileTag(pressProfile())}), press);
        row("tiff inks, no profile", onePixelTiff(5, 8, {0, 255, 255, 0}), QColor(255, 0, 0));
        row("tiff 16 bits P3", onePixelTiff(2, 16, {60 * 257, 200 * 257, 90 * 257}, {profileTag(p3)}),
            fromP3);
        row("tiff Lab", onePixelTiff(8, 8, {128, 0, 0}), QColor(119, 119, 119));
        row("tiff Lab, a below 0", onePixelTiff(8, 8, {153, 0xCE, 0x32}), QColor(53, 166, 43));
        row("tiff 16-bit Lab", onePixelTiff(8, 16, {153 * 257, 0xCE00, 0x3200}), QColor(53, 166, 43));
        row("tiff white is 0", onePixelTiff(0, 8, {55}), QColor(200, 200, 200));
    }

    void screenColorsStayExact() {
        const QImage image = noise(40, 40, 6)->makeImage().convertToFormat(QImage::Format_RGBA8888);
        const QByteArray plain = written(image, "png");
        const auto srgbChromaticities =
            bigEndianWords({31270, 32900, 64000, 33000, 30000, 60000, 15000, 6000});
        const QByteArray gamma = bigEndianWords({45455});
        for (const QByteArray& file :
             {withPngChunk(plain, "sRGB", QByteArray(1, '\0')), withPngChunk(plain, "gAMA", gamma),
              withPngChunk(withPngChunk(plain, "gAMA", gamma), "cHRM", srgbChromaticities),
              withPngChunk(plain, "iCCP", iccpBody(srgbProfile())), webpOf(image, srgbProfile(), {})})
            QCOMPARE(distance(decoded(file), image), 0);
    }

    void premultipliedSamplesAreKept() {
        const auto pixel = [](const std::vector<uint32_t>& samples, uint32_t kind) {
            return text(firstPixel(onePixelTiff(2, 8, samples, {{338, 3, {kind}}})));
        };
        QCOMPARE(pixel({10, 100, 7, 101}, 1), QStringLiteral("10,100,7,101"));
        // Straight ones are multiplied, and a fourth sample that says nothing is no alpha.
        QCOMPARE(pixel({255, 100, 0, 51}, 2), QStringLiteral("51,20,0,51"));
        QCOMPARE(pixel({255, 100, 0, 51}, 0), QStringLiteral("255,100,0,255"));
        // Light beyond its coverage cannot be shown.
        QCOMPARE(pixel({200, 0, 0, 100}, 1), QStringLiteral("100,0,0,100"));
    }

    void densitiesAreThoseThatWereMeant() {
        for (const auto& [read, meant] : {std::pair{dpiFromMeters(11811), 300.0},
                                          {dpiFromMeters(2835), 72},
                                          {dpiFromMeters(2834), 72}, // cut
                                          {dpiFromMeters(2846), 72.3},
                                          {dpiFromMeters(2848), 2848 * 0.0254}, // nothing nice
                                          {dpiFromCentimeters(118.11), 300},
                                          {dpiFromCentimeters(118), 300},
                                          {dpiFromInches(299.9994), 300},
                                          {dpiFromInches(299.5), 299.5},
                                          {dpiFromInches(0), 72},
                                          {dpiFromMeters(-5), 72},
                                          {dpiFromInches(std::nan("")), 72},
                                          {dpiFromCentimeters(HUGE_VAL), 72},
                                          {dpiFromInches(0.9), 72},
                                          {dpiFromInches(1), 1},
                                          {dpiFromInches(1e5), 1e5},
                                          {dpiFromMeters(0x7FFFFFFF), 72}})
            QCOMPARE(read, meant);
        for (int dpi = 1; dpi <= 2400; ++dpi) {
            QCOMPARE(dpiFromMeters(std::lround(dpi / 0.0254)), dpi);
            QCOMPARE(dpiFromInches(dpi), dpi);
            QCOMPARE(dpiFromCentimeters(std::round(dpi / 2.54 * 100) / 100), dpi);
        }
    }

    void aDensityIsReadFromEachFormat() {
        const auto row = [](const char* name, const QByteArray& file, double dpi) {
            const auto picture = decoded(file);
            QVERIFY2(picture && picture->dpi == dpi, name);
        };
        QImage image = blocks();
        image.setDotsPerMeterX(11811);
        image.setDotsPerMeterY(11811);
        const QByteArray bare = jpegOf(blocks()); // 72 in its JFIF
        const QByteArray withoutJfif = bare.left(2) + bare.mid(20);
        const QByteArray exif = QByteArray("Exif\0\0", 6) + exifBlock(0, 118, 1, 3);
        QByteArray inCentimeters = bare;
        inCentimeters[13] = 2;
        inCentimeters[15] = 118;
        QByteArray aspect = bare;
        aspect[13] = 0;
        const auto png = [](uint32_t dots, char unit) {
            QByteArray file = written(blocks(), "png");
            file.remove(33, 21); // Qt's own
            return withPngChunk(file, "pHYs", bigEndianWords({dots, dots}) + unit);
        };
        row("png", png(11811, 1), 300.0);
        row("png aspect only", png(11811, 0), 72.0);
        row("png 0", png(0, 1), 72.0);
        row("png hostile", png(0x7FFFFFFF, 1), 72.0);
        row("jpeg inches", jpegOf(blocks()), 72.0);
        row("jpeg centimetres", inCentimeters, 300.0);
        row("jpeg aspect only", aspect, 72.0);
        row("jpeg EXIF", withJpegSegment(withoutJfif, 0xE1, exif), 300.0);
        row("jpeg JFIF before EXIF", withJpegSegment(bare, 0xE1, exif), 72.0);
        row("tiff inches", tiffOf(blocks(), {{282, 5, {300, 1}}, {296, 3, {2}}}), 300.0);
        row("tiff inches unsaid", tiffOf(blocks(), {{282, 5, {3000, 10}}}), 300.0);
        row("tiff centimetres", tiffOf(blocks(), {{282, 5, {11811, 100}}, {296, 3, {3}}}), 300.0);
        row("tiff no unit", tiffOf(blocks(), {{282, 5, {300, 1}}, {296, 3, {1}}}), 72.0);
        row("tiff by nothing", tiffOf(blocks(), {{282, 5, {300, 0}}}), 72.0);
        row("tiff missing", tiffOf(blocks()), 72.0);
        row("bmp", written(image, "bmp"), 300.0);
        row("webp EXIF", webpOf(blocks(), {}, exifBlock(1, 300)), 300.0);
        row("webp missing", written(image, "webp"), 72.0);
        row("gif", testData("blocks.gif"), 72.0);
        row("heic missing", testData("blocks.heic"), 72.0);
    }

    void aHeicTellsWhatItsDecoderWillTake() {
        const QByteArray file = testData("blocks.heic");
        const HevcSize told = largestHevcSize(bytesOf(file));
        QCOMPARE(told.width, 64); // whole blocks of the encoder, of which the picture is a part
        QCOMPARE(told.height, 64);

        // A set as an attacker would write it: 30,000 x 20,000, two sub-layers, with the filler bytes that it needs.
        QString bits = QStringLiteral("0000") + "001" + "1" + QString(96, u'0') + "11" + QString(14, u'0') +
                       QString(96, u'0');
        const auto addNumber = [&](uint32_t value) {
            const QString digits = QString::number(value + 1, 2);
            bits += QString(digits.size() - 1, u'0') + digits;
        };
        for (const uint32_t value : {0u, 1u, 30'000u, 20'000u}) addNumber(value);
        bits += QString(16, u'1');
        QByteArray unit("\x42\x01", 2);
        int zeros = 0;
        for (qsizetype i = 0; i + 8 <= bits.size(); i += 8) {
            const auto byte = static_cast<char>(bits.mid(i, 8).toInt(nullptr, 2));
            if (zeros == 2 && (byte & ~3) == 0) {
                unit.append('\3');
                zeros = 0;
            }
            unit.append(byte);
            zeros = byte == 0 ? zeros + 1 : 0;
        }
        const QByteArray box = "hvcC" + QByteArray(22, '\0') + QByteArray("\1\x21\0\1\0", 5) +
                               static_cast<char>(unit.size()) + unit;
        const HevcSize lie = largestHevcSize(bytesOf(file + box));
        QCOMPARE(lie.width, 30'000);
        QCOMPARE(lie.height, 20'000);
        for (qsizetype cut = 4; cut < box.size() - 2; ++cut)
            QCOMPARE(largestHevcSize(bytesOf(box.left(cut))).width, 0);
        // The box is at a place that readers ignore; the search finds it anyway.
        QVERIFY(!decoded(file + box));
    }
};

QIRN_TEST(tst_ImageImport)
#include "tst_ImageImport.moc"
