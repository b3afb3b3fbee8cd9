#include "FlatPSDFiles.h"
#include "formats/common/ByteReader.h"
#include "formats/psd/PSDFile.h"
#include "formats/psd/read/MergedReader.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "support/Pictures.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <array>
#include <cmath>

#include <QColorSpace>

using namespace qirn;
using namespace qirn::test;

namespace {

QString decodedPixel(const File& file) {
    const auto picture = MergedReader::decode(bytesOf(file.bytes()));
    return picture ? text(picture->layer->pixel(0, 0)) : "nothing";
}

using PixelRows = std::initializer_list<std::tuple<const char*, File, QString>>;

void comparePixels(PixelRows rows) {
    forRows<File, QString>(
        rows, [](const File& file, const QString& pixel) { QCOMPARE(decodedPixel(file), pixel); });
}

} // namespace

class tst_PSDPicture : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void everyColorModeDepthAndPackingOpens() {
        struct Kind {
            Mode mode;
            uint16_t depth;
            uint16_t channels;
        };
        constexpr Kind kinds[] = {{bitmap, 1, 1},  {gray, 8, 1},  {gray, 16, 1},        {gray, 32, 1},
                                  {indexed, 8, 1}, {rgb, 8, 3},   {rgb, 16, 3},         {rgb, 32, 3},
                                  {cmyk, 8, 4},    {cmyk, 16, 4}, {multichannel, 8, 5}, {duotone, 8, 1},
                                  {lab, 8, 3},     {lab, 16, 3}};
        for (const auto& [mode, depth, channels] : kinds) {
            const QString what = QStringLiteral("mode %1, %2 bits").arg(mode).arg(depth);
            File file;
            file.mode = mode;
            file.depth = depth;
            file.channels = channels;
            file.width = mode == gray ? 260 : 11; // over the seams of tiles
            file.height = 261;                    // more rows than are unpacked at once
            file.sampleAt = noiseOf(mode, depth);
            if (mode == indexed) file.colorTable = colorTable();
            const int tolerance = mode == lab ? 1 : 0; // where the color library works in tables
            const auto plain = MergedReader::decode(bytesOf(file.bytes()));
            QVERIFY2(plain, qPrintable(what));
            for (uint32_t i = 0; i < file.width * file.height; ++i) {
                const uint32_t x = i % file.width, y = i / file.width;
                const auto expected = meaning(mode, depth, file.sampleAt(x, y));
                const PixelBytes got = plain->layer->pixel(x, y);
                bool isRight = got[3] == 255;
                for (std::size_t c = 0; c < 3; ++c) isRight &= std::abs(got[c] - expected[c]) <= tolerance;
                QVERIFY2(isRight, qPrintable(what + QString(" at %1,%2: ").arg(x).arg(y) + text(got)));
            }
            for (const Packing packing : {raw, runs, deflated, differences}) {
                for (const bool isLarge : {false, true}) {
                    file.packing = packing;
                    file.isLarge = isLarge;
                    setConcurrency(isLarge ? 1 : 0);
                    const auto packed = MergedReader::decode(bytesOf(file.bytes()));
                    QVERIFY2(packed, qPrintable(what));
                    QCOMPARE(firstDifference(*packed->layer->toBuffer(), *plain->layer->toBuffer()),
                             QString());
                }
            }
        }
    }

    void theFirstExtraChannelIsTransparencyWhereTheFileSaysSo() {
        const QByteArray none;
        const QByteArray saved = psdResource(1053, {}, big32(7));
        const QByteArray transparency = psdResource(1053, {}, big32(0));
        // 60% of red 1, green 0.5, blue 0, on white and straight.
        const Samples onWhite{255, 179, 102, 153};
        const Samples onWhite16{65535, 45875, 26214, 39321};
        const Samples straight16{65535, 32896, 0, 39321};
        const Samples floats{bitsOf(1), bitsOf(0.7), bitsOf(0.4), bitsOf(0.6)};
        const char *pixel = "153,77,0,153", *opaque = "255,179,102,255";
        File large = pixelFile(rgb, 16, onWhite16, layerCount(-1, "Lr16", true));
        large.isLarge = true;
        comparePixels({
            {"layers", pixelFile(rgb, 8, onWhite, layerCount(-2)), pixel},
            {"layers of 16 bits", pixelFile(rgb, 16, onWhite16, layerCount(-1, "Lr16")), pixel},
            {"layers of 32 bits", pixelFile(rgb, 32, floats, layerCount(-1, "Lr32")), "153,113,0,153"},
            {"large", large, pixel},
            {"saved, with layers", pixelFile(rgb, 16, onWhite16, layerCount(1, "Lr16")), opaque},
            {"saved, without", pixelFile(rgb, 8, onWhite, none, saved), opaque},
            {"named", pixelFile(rgb, 16, straight16, none, transparency), pixel},
            {"nothing named", pixelFile(rgb, 16, straight16), pixel},
            {"two of them", pixelFile(gray, 8, {200, 102, 9}, layerCount(-1)), "47,47,47,102"},
            {"inks", pixelFile(cmyk, 8, {255, 179, 102, 255, 153}, layerCount(-1)), pixel},
            {"another ink", pixelFile(multichannel, 8, {255, 179, 102, 255, 153}), opaque},
            {"three inks", pixelFile(multichannel, 8, {255, 179, 102}), opaque},
            {"palette", pixelFile(indexed, 8, {255, 51}), "51,0,34,51"},
            // Half of a mid gray: L 53.6 on 100, and no color in either coding of it.
            {"lab 8", pixelFile(lab, 8, {196, 128, 128, 128}, layerCount(-1)), "64,64,64,128"},
            {"lab 16", pixelFile(lab, 16, {50266, 32768, 32768, 32896}, layerCount(-1, "Lr16")),
             "64,64,64,128"},
        });
    }

    void colorsComeOffTheirWhiteBackdropExactly() {
        const auto expected = noise(300, 40, 5);
        File file;
        file.channels = 4;
        file.width = 300;
        file.height = 40;
        file.packing = runs;
        file.layers = layerCount(-3);
        file.sampleAt = [&](uint32_t x, uint32_t y) {
            const PixelBytes p = expected->pixel(x, y);
            const uint32_t white = 255u - p[3];
            return Samples{p[0] + white, p[1] + white, p[2] + white, p[3]};
        };
        const auto picture = MergedReader::decode(bytesOf(file.bytes()));
        QVERIFY(picture);
        QCOMPARE(firstDifference(*picture->layer->toBuffer(), *expected), QString());
    }

    void oneStraightPixelMeansThatNoneIsOnWhite() {
        File file;
        file.channels = 4;
        file.height = 300;
        file.layers = layerCount(-1);
        file.sampleAt = [](uint32_t, uint32_t y) {
            return y == 299 ? Samples{0, 0, 0, 100} : Samples{240, 240, 240, 100};
        };
        const auto straight = MergedReader::decode(bytesOf(file.bytes()));
        QVERIFY(straight);
        QCOMPARE(text(straight->layer->pixel(0, 0)), QString("94,94,94,100"));
        QCOMPARE(text(straight->layer->pixel(0, 299)), QString("0,0,0,100"));
    }

    void anyFloatIsAColorAndACoverage() {
        const QColorSpace linear(QColorSpace::Primaries::DciP3D65, QColorSpace::TransferFunction::Linear);
        const QByteArray profile = psdResource(1039, {}, linear.iccProfile());
        constexpr uint32_t kInfinite = 0x7F800000;
        constexpr uint32_t kNoNumber = 0x7FC00000;
        const auto compare = [&](uint32_t bits, bool isFull) {
            const QString opaque = isFull ? "255,255,255,255" : "0,0,0,255";
            QCOMPARE(decodedPixel(pixelFile(gray, 32, {bits})), opaque);
            QCOMPARE(decodedPixel(pixelFile(gray, 32, {bits, bitsOf(0.5)})),
                     QString(opaque).replace("255", "128"));
            QCOMPARE(decodedPixel(pixelFile(rgb, 32, {bits, bits, bits}, {}, profile)), opaque);
            for (const QByteArray& layers : {QByteArray(), layerCount(-1)})
                QCOMPARE(decodedPixel(pixelFile(gray, 32, {bitsOf(1), bits}, layers)),
                         isFull ? opaque : "0,0,0,0");
        };
        for (const uint32_t bits : {bitsOf(1), bitsOf(1000), bitsOf(3e38), kInfinite}) compare(bits, true);
        for (const uint32_t bits : {bitsOf(0), bitsOf(-1), 1u, kInfinite | 1u << 31, kNoNumber})
            compare(bits, false);
    }

    void aProfileIsUsedWhereItFits() {
        const QByteArray icc = QColorSpace(QColorSpace::AdobeRgb).iccProfile();
        const QByteArray adobe = psdResource(1039, {}, icc);
        const QByteArray broken = psdResource(1039, {}, icc.left(200));
        const QColorSpace linearP3(QColorSpace::Primaries::DciP3D65, QColorSpace::TransferFunction::Linear);
        const QByteArray linear = psdResource(1039, {}, linearP3.iccProfile());
        const Samples floats{bitsOf(0.2), bitsOf(0.5), bitsOf(0.2)}, words{25700, 38550, 51400};
        // Computed from the definitions of the color spaces.
        comparePixels({
            {"8 bits", pixelFile(rgb, 8, {100, 150, 200}, {}, adobe), "66,151,203,255"},
            {"16 bits", pixelFile(rgb, 16, words, {}, adobe), "66,151,203,255"},
            {"palette", pixelFile(indexed, 8, {100}, {}, adobe), "60,156,31,255"},
            {"broken", pixelFile(rgb, 16, words, {}, broken), "100,150,200,255"},
            {"another model", pixelFile(gray, 8, {100}, {}, adobe), "100,100,100,255"},
            {"floats, curved", pixelFile(rgb, 32, floats, {}, adobe), "124,188,124,255"},
            {"floats, linear", pixelFile(rgb, 32, floats, {}, linear), "102,190,117,255"},
        });
    }

    void aFileSavedWithoutAPictureIsSaidToBe() {
        const QString words =
            "This Photoshop file was saved without a flattened picture, and its layers use a feature "
            "Qirn Paint can't read. Save it again with \"Maximize compatibility\" on.";
        const auto check = [](const QByteArray& layers, int flag, bool hasPicture, const QString& outcome) {
            File file = pixelFile(gray, 16, {65535}, layers);
            if (flag >= 0) file.resources = psdResource(1057, {}, big32(1) + static_cast<char>(flag));
            const QByteArray bytes = file.bytes().chopped(hasPicture ? 0 : 4);
            try {
                QCOMPARE(MergedReader::decode(bytesOf(bytes)) ? "opens" : "refused", outcome);
            } catch (const PSDFile::PSDError& error) {
                QCOMPARE(error.description(), outcome);
            }
        };
        check(layerCount(1, "Lr16"), 0, true, words); // of a blank picture
        check(layerCount(1, "Lr16"), 1, true, "opens");
        check(layerCount(1, "Lr16"), -1, true, "opens"); // nothing is said
        check(layerCount(1), 1, false, words);
        check({}, 0, true, "opens"); // no layers either
    }

    void aLyingSizeIsRefused() {
        constexpr std::array<uint32_t, 2> sizes[] = {{30000, 30000}, {30001, 1}, {1, 30001},
                                                     {0, 1},         {1, 0},     {~0u, ~0u}};
        for (const Packing packing : {raw, runs, deflated, differences}) {
            File file = pixelFile(rgb, 16, {1, 2, 3});
            file.packing = packing;
            for (const auto& [width, height] : sizes) {
                BEWriter out;
                // Without the picture, but with all the lengths of rows of no bytes.
                out.bytes(file.bytes().chopped(file.picture().size()) + QByteArray(400'000, '\0'));
                out.patchU32(14, height);
                out.patchU32(18, width);
                QVERIFY(!MergedReader::decode(bytesOf(out.data())));
            }
        }
    }
};

QIRN_TEST(tst_PSDPicture)
#include "tst_PSDPicture.moc"
