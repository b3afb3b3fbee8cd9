#include "FlatPSDFiles.h"
#include "SmallPictures.h"
#include "core/SeededRandom.h"
#include "formats/native/PaintFile.h"
#include "formats/psd/PSDFile.h"
#include "support/NativeFiles.h"
#include "support/Profiles.h"
#include "support/TestMain.h"

#include <set>

#include <QBuffer>
#include <QImageWriter>

#include <sys/resource.h>

using namespace qirn;
using namespace qirn::test;

namespace {

/// In one layer, of 16 bits, with an alpha channel.
QByteArray flatPsd(Packing packing) {
    File file;
    file.depth = 16;
    file.packing = packing;
    file.isLarge = packing == runs;
    file.channels = 4;
    file.width = 9;
    file.height = 7;
    file.sampleAt = noiseOf(rgb, 16);
    file.layers = layerCount(-1, "Lr16", file.isLarge);
    return file.bytes();
}

/// A small sound file of each format, the larger ones of few bytes.
std::vector<std::pair<const char*, QByteArray>> soundFiles() {
    const auto doc = randomDocument(40, 30, 3, 5);
    return {{"png", withPngChunk(written(blocks(true), "png"), "iCCP", iccpBody(displayP3Profile()))},
            {"jpeg", withJpegSegment(jpegOf(blocks()), 0xE1, QByteArray("Exif\0\0", 6) + exifBlock(6, 300))},
            {"tiff", tiffOf(blocks(), {{274, 3, {5}}, {282, 5, {300, 1}}})},
            {"bmp", written(blocks(), "bmp")},
            {"webp", webpOf(blocks(true), displayP3Profile(), exifBlock(3, 300))},
            {"gif", testData("blocks.gif")},
            {"heic", testData("turned.heic")},
            {"native", PaintFile::encode(*richDocument())},
            {"layered psd", PSDFile::write(*doc, PSDFile::Layered::yes)},
            {"raw psd", flatPsd(raw)},
            {"psd of runs", flatPsd(runs)},
            {"deflated psd", flatPsd(deflated)},
            {"psd of differences", flatPsd(differences)}};
}

/// Empty if a file is refused with an error, or opens with all numbers and pixels in range.
QString harmOf(const QByteArray& file, bool isNative) {
    try {
        const auto doc = ImageImport::document(bytesOf(file), {});
        const TileGrid& grid = doc->grid();
        if (grid.width < 1 || grid.height < 1 || grid.width > 30'000 || grid.height > 30'000)
            return QStringLiteral("size");
        if (!(doc->dpi >= 1 && doc->dpi <= 100'000)) return QStringLiteral("dots an inch");
        if (doc->layerCount() < 1 || !(doc->activeLayer().opacity <= 1)) return QStringLiteral("layers");
        std::set<const Tile*> tiles;
        for (const LayerRef& layer : doc->layers()) tiles.merge(tilesOf(*layer));
        for (const Tile* tile : tiles) {
            const uint8_t* p = tile->pixels();
            for (int i = 0; i < kTilePixels && !isNative; ++i, p += 4) {
                if (std::max({p[0], p[1], p[2]}) > p[3]) return QStringLiteral("pixels");
            }
        }
        return {};
    } catch (const DescribedError& error) {
        return error.description().isEmpty() ? QStringLiteral("no words") : QString();
    }
}

} // namespace

class tst_ImageDamage : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void tooLargeASideIsRefused() {
        for (const char* format : {"png", "jpg", "tiff", "bmp"}) {
            QImage wide(30'001, 100, QImage::Format_RGB888);
            wide.fill(Qt::red);
            QVERIFY(!decoded(written(wide, format)));
            QVERIFY(
                !decoded(written(QImage(wide.constBits(), 3, 30'001, 12, QImage::Format_RGB888), format)));
            QVERIFY(decoded(written(wide.copy(0, 0, 30'000, 2), format)));
        }
        QImage wide(30'001, 1, QImage::Format_RGB888);
        wide.fill(0);
        const QByteArray file = written(wide, "png");
        QVERIFY_THROWS_EXCEPTION(ExportError, ImageImport::document(bytesOf(file), {}));
    }

    void aFewBytesTakeLittleMemory() {
        const auto kilobytes = [] {
            rusage usage{};
            getrusage(RUSAGE_SELF, &usage);
            return usage.ru_maxrss; // the most there ever was
        };
        const auto row = [&](const QString& name, const QByteArray& file, const QString& pixel = {}) {
            const long before = kilobytes();
            const auto picture = decoded(file); // a true one has this pixel
            QCOMPARE(name + (picture ? text(picture->layer->pixel(12'700, 12'700)) : QString()),
                     name + pixel);
            const long taken = kilobytes() - before;
            QVERIFY2(taken < 64 * 1024 + file.size() / 8,
                     qPrintable(name + QString(" took %1 KB").arg(taken)));
        };
        const auto patched = [](QByteArray file, qsizetype at, const QByteArray& bytes) {
            return file.replace(at, bytes.size(), bytes);
        };
        const QByteArray sides16("\x30\x75\x30\x75", 4); // 30,000 low byte first, twice
        const QByteArray sides32("\x30\x75\0\0\x30\x75\0\0", 8);
        row("png", pngFile(30'000, 30'000, QByteArray("\x10\x06\0\0\0", 5), {}));
        for (const char* chunk : {"tEXt", "zTXt", "iTXt", "sPLT", "pCAL", "sCAL", "iCCP", "eXIf", "PLTE"})
            row(chunk, claimingPng(chunk));
        const QByteArray jpeg = jpegOf(blocks());
        const qsizetype frame = jpeg.indexOf("\xFF\xC0");
        row("jpeg", patched(jpeg, frame + 5, QByteArray("\x75\x30\x75\x30", 4)));
        QByteArray progressive = patched(jpeg, frame + 5, QByteArray("\x75\x30\x75\x30", 4));
        progressive[frame + 1] = '\xC2';
        row("jpeg progressive", progressive);
        // Enough bytes for the size, but not for all the coefficients that it stands for.
        progressive = patched(progressive, frame + 5, QByteArray("\x3E\x80\x3E\x80", 4)); // 16,000 twice
        progressive[progressive.indexOf("\xFF\xDA") + 12] = '\0'; // of each block the first
        row("jpeg progressive, longer", progressive + QByteArray(600'000, 'x'));
        auto tags = tiffTags(30'000, 30'000, 2, 3, 16);
        for (const uint32_t compression : {1u, 5u, 7u, 8u, 32773u}) {
            tags[3].values = {compression};
            row(QString::asprintf("tiff %u", compression), tiffFile(tags, QByteArray(200, '\0')));
            auto tiled = tags;
            tiled.erase(tiled.begin() + 6);
            tiled.insert(tiled.end(),
                         {{322, 4, {1u << 20}}, {323, 4, {1u << 20}}, {324, 4, {8}}, {325, 4, {100}}});
            tiled[0].values = tiled[1].values = {900};
            row(QString::asprintf("tiff tiles %u", compression), tiffFile(tiled));
        }
        row("tiff of a blank fax page", faxPage(30'000), "255,255,255,255");
        auto planar = tiffTags(12'800, 12'800, 2, 3, 8);
        planar[3].values = {32773};
        planar.back().values = {2};
        row("tiff in blank planes",
            tiffFile(planar, QByteArray("\x81\0", 2).repeated(3 * 100 * 12'800), ByteOrder::little, 3),
            "0,0,0,255");
        row("png interlaced",
            pngFile(16'000, 16'000, QByteArray("\1\0\0\0\1", 5), QByteArray(33'000'000, '\0')), "0,0,0,255");
        row("bmp", patched(written(blocks(), "bmp"), 18, sides32));
        row("bmp of runs",
            patched(patched(written(blocks().convertToFormat(QImage::Format_Indexed8), "bmp"), 18, sides32),
                    30, QByteArray("\1\0\0\0", 4)));
        row("gif", patched(testData("blocks.gif"), 6, sides16));
        row("gif without a row", senselessGif());
        row("webp without a row", senselessWebP());
        row("webp",
            patched(webpOf(flat(Qt::red), srgbProfile(), {}), 24, QByteArray("\xFE\x3F\0\xFE\x3F\0", 6)));
        QByteArray heic = testData("blocks.heic");
        for (qsizetype at = heic.indexOf("ispe"); at > 0; at = heic.indexOf("ispe", at + 1))
            heic = patched(heic, at + 8, bigEndianWords({29'000, 29'000}));
        row("heic", heic);
    }

    void whatCameBeforeTheDamageIsShown() {
        const auto rowOf = [](const QByteArray& file, int64_t y) {
            QByteArray row;
            const auto picture = decoded(file);
            for (int64_t x = 0; picture && x < picture->layer->grid().width; ++x)
                row += QByteArray(reinterpret_cast<const char*>(picture->layer->pixel(x, y).data()), 4);
            return row;
        };
        // The second half of the rows in between are lost: they repeat those above.
        const QByteArray gif = testData("interlaced.gif"), cutGif = gif.left(1000);
        for (const int64_t y : {0, 1, 24, 28, 30}) QCOMPARE(rowOf(cutGif, y), rowOf(gif, y));
        QCOMPARE(rowOf(cutGif, 31), rowOf(gif, 30));
        QImage many(200, 200, QImage::Format_RGB888);
        SeededRandom random(3);
        for (int i = 0; i < 40'000; ++i)
            many.setPixel(i % 200, i / 200, static_cast<uint32_t>(random.next()));
        const QByteArray webp = written(many, "webp"), cutWebP = webp.left(webp.size() / 2);
        for (const int64_t y : {0, 80}) QCOMPARE(rowOf(cutWebP, y), rowOf(webp, y));
        QCOMPARE(rowOf(cutWebP, 150), QByteArray(800, '\0'));
        QByteArray jpeg;
        QBuffer buffer(&jpeg);
        QImageWriter writer(&buffer, "jpg");
        writer.setProgressiveScanWrite(true);
        QVERIFY(writer.write(blocks()));
        QByteArray spoiled = jpeg;
        spoiled[jpeg.lastIndexOf("\xFF\xDA") + 4] = '\0'; // a scan of no channel
        for (const int64_t y : {0, 31}) QCOMPARE(rowOf(spoiled, y), rowOf(jpeg, y));
        spoiled[jpeg.indexOf("\xFF\xDA") + 4] = '\0';
        QVERIFY(!decoded(spoiled));
    }

    void aSpoiledFileIsRefusedOrSound() {
        for (const auto& [name, file] : soundFiles()) {
            const bool isNative = name == QByteArray("native");
            QVERIFY2(ImageImport::document(bytesOf(file), {}), name);
            for (qsizetype cut = 0; cut < file.size(); cut += 1 + file.size() / 150)
                QCOMPARE(harmOf(file.left(cut), isNative), QString());
            SeededRandom random(11);
            for (int i = 0; i < 200; ++i) {
                QByteArray spoiled = file;
                for (uint64_t bytes = 1 + random.next() % 6; bytes > 0; --bytes)
                    spoiled[static_cast<qsizetype>(
                        random.next() % static_cast<uint64_t>(std::min<qsizetype>(file.size(), 4000)))] =
                        static_cast<char>(random.next());
                const QString harm = harmOf(spoiled, isNative);
                QVERIFY2(harm.isEmpty(), qPrintable(QString("%1, %2: %3").arg(name).arg(i).arg(harm)));
            }
        }
    }
};

QIRN_TEST(tst_ImageDamage)
#include "tst_ImageDamage.moc"
