#include "SmallPictures.h"
#include "core/SeededRandom.h"
#include "support/Profiles.h"
#include "support/TestMain.h"

#include <cstring>

#include <sys/resource.h>

using namespace qirn;
using namespace qirn::test;

namespace {

/// A small sound file of each format, the larger ones of few bytes.
std::vector<std::pair<const char*, QByteArray>> soundFiles() {
    return {{"png", withPngChunk(written(blocks(true), "png"), "iCCP", iccpBody(displayP3Profile()))},
            {"jpeg", withJpegSegment(jpegOf(blocks()), 0xE1, QByteArray("Exif\0\0", 6) + exifBlock(6, 300))},
            {"tiff", tiffOf(blocks(), {{274, 3, {5}}, {282, 5, {300, 1}}})},
            {"bmp", written(blocks(), "bmp")},
            {"webp", webpOf(blocks(true), displayP3Profile(), exifBlock(3, 300))},
            {"gif", testData("blocks.gif")},
            {"heic", testData("turned.heic")}};
}

} // namespace

class tst_ImageDamage : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void tooLargeASideIsRefused();
    void aFewBytesTakeLittleMemory_data();
    void aFewBytesTakeLittleMemory();
    void cutFilesNeverCrash();
    void damagedFilesNeverCrash();
    void aFileCutLateGivesItsUpperPart();
};

void tst_ImageDamage::tooLargeASideIsRefused() {
    for (const char* format : {"png", "jpg", "tiff", "bmp"}) {
        QImage wide(30'001, 100, QImage::Format_RGB888);
        wide.fill(Qt::red);
        QVERIFY(!decoded(written(wide, format)));
        QVERIFY(!decoded(written(QImage(wide.constBits(), 3, 30'001, 12, QImage::Format_RGB888), format)));
        QVERIFY(decoded(written(wide.copy(0, 0, 30'000, 2), format)));
    }
    QImage wide(30'001, 1, QImage::Format_RGB888);
    wide.fill(0);
    const QByteArray file = written(wide, "png");
    QVERIFY_THROWS_EXCEPTION(ExportError, ImageImport::document(bytesOf(file), {}));
}

void tst_ImageDamage::aFewBytesTakeLittleMemory_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("pixel"); // of a true picture
    const auto patched = [](QByteArray file, qsizetype at, const QByteArray& bytes) {
        return file.replace(at, bytes.size(), bytes);
    };
    const QByteArray sides16("\x30\x75\x30\x75", 4); // 30,000 low byte first, twice
    const QByteArray sides32("\x30\x75\0\0\x30\x75\0\0", 8);
    QTest::newRow("png") << pngFile(30'000, 30'000, QByteArray("\x10\x06\0\0\0", 5), {}) << "";
    for (const char* chunk : {"tEXt", "zTXt", "iTXt", "sPLT", "pCAL", "sCAL", "iCCP", "eXIf", "PLTE"})
        QTest::newRow(chunk) << claimingPng(chunk) << "";
    const QByteArray jpeg = jpegOf(blocks());
    const qsizetype frame = jpeg.indexOf("\xFF\xC0");
    QTest::newRow("jpeg") << patched(jpeg, frame + 5, QByteArray("\x75\x30\x75\x30", 4)) << "";
    QByteArray progressive = patched(jpeg, frame + 5, QByteArray("\x75\x30\x75\x30", 4));
    progressive[frame + 1] = '\xC2';
    QTest::newRow("jpeg progressive") << progressive << "";
    auto tags = tiffTags(30'000, 30'000, 2, 3, 16);
    for (const uint32_t compression : {1u, 5u, 7u, 8u, 32773u}) {
        tags[3].values = {compression};
        QTest::addRow("tiff %u", compression) << tiffFile(tags, QByteArray(200, '\0')) << "";
        auto tiled = tags;
        tiled.erase(tiled.begin() + 6);
        tiled.insert(tiled.end(),
                     {{322, 4, {1u << 20}}, {323, 4, {1u << 20}}, {324, 4, {8}}, {325, 4, {100}}});
        tiled[0].values = tiled[1].values = {900};
        QTest::addRow("tiff tiles %u", compression) << tiffFile(tiled) << "";
    }
    QTest::newRow("tiff of a blank fax page") << faxPage(30'000) << "255,255,255,255";
    auto planar = tiffTags(12'800, 12'800, 2, 3, 8);
    planar[3].values = {32773};
    planar.back().values = {2};
    QTest::newRow("tiff in blank planes")
        << planarTiff(planar, QByteArray("\x81\0", 2).repeated(3 * 100 * 12'800), 3) << "0,0,0,255";
    QTest::newRow("png interlaced") << pngFile(16'000, 16'000, QByteArray("\1\0\0\0\1", 5),
                                               QByteArray(33'000'000, '\0'))
                                    << "0,0,0,255";
    QTest::newRow("bmp") << patched(written(blocks(), "bmp"), 18, sides32) << "";
    QTest::newRow("bmp of runs")
        << patched(patched(written(blocks().convertToFormat(QImage::Format_Indexed8), "bmp"), 18, sides32),
                   30, QByteArray("\1\0\0\0", 4))
        << "";
    QTest::newRow("gif") << patched(testData("blocks.gif"), 6, sides16) << "";
    QTest::newRow("webp") << patched(webpOf(flat(Qt::red), srgbProfile(), {}), 24,
                                     QByteArray("\xFE\x3F\0\xFE\x3F\0", 6))
                          << "";
    QByteArray heic = testData("blocks.heic");
    for (qsizetype at = heic.indexOf("ispe"); at > 0; at = heic.indexOf("ispe", at + 1))
        heic = patched(heic, at + 8, bigEndianWords({29'000, 29'000}));
    QTest::newRow("heic") << heic << "";
}

void tst_ImageDamage::aFewBytesTakeLittleMemory() {
    QFETCH(QByteArray, file);
    QFETCH(QString, pixel);
    const auto kilobytes = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss; // the most there ever was
    };
    const long before = kilobytes();
    const auto picture = decoded(file);
    QCOMPARE(picture ? text(picture->layer->pixel(12'700, 12'700)) : QString(), pixel);
    QVERIFY2(kilobytes() - before < 64 * 1024, qPrintable(QString::number(kilobytes() - before)));
}

void tst_ImageDamage::cutFilesNeverCrash() {
    for (const auto& [name, file] : soundFiles()) {
        const auto whole = decoded(file);
        QVERIFY2(whole, name);
        for (qsizetype cut = 0; cut < file.size(); cut += 1 + file.size() / 150) {
            const auto picture = decoded(file.left(cut));
            if (picture)
                QVERIFY(picture->layer->grid().width <= 30'000 && picture->layer->grid().height <= 30'000);
        }
    }
}

void tst_ImageDamage::damagedFilesNeverCrash() {
    SeededRandom random(11);
    for (const auto& [name, file] : soundFiles()) {
        for (int i = 0; i < 150; ++i) {
            QByteArray damaged = file;
            const int bytes = 1 + static_cast<int>(random.next() % 6);
            for (int b = 0; b < bytes; ++b) {
                const auto at = static_cast<qsizetype>(
                    random.next() % static_cast<uint64_t>(std::min<qsizetype>(file.size(), 4000)));
                damaged[at] = static_cast<char>(random.next());
            }
            if (const auto picture = decoded(damaged)) {
                QVERIFY(picture->dpi >= 1 && picture->dpi <= 100'000);
                const auto pixels = picture->layer->toBuffer();
                for (int64_t p = 0; p < pixels->byteCount(); p += 4) {
                    const uint8_t* pixel = pixels->data() + p;
                    QVERIFY(pixel[0] <= pixel[3] && pixel[1] <= pixel[3] && pixel[2] <= pixel[3]);
                }
            }
        }
    }
}

void tst_ImageDamage::aFileCutLateGivesItsUpperPart() {
    const auto source = noise(200, 200, 2);
    const QImage image = source->makeImage();
    PaintDocument doc(200, 200, 72, std::nullopt);
    doc.layer(0).load(*source);
    const QByteArray files[] = {written(image, "png"),
                                ImageExport::data(doc, ExportFormat::tiff, 1, PaintColor::white())};
    for (const QByteArray& file : files) {
        const auto picture = decoded(file.left(file.size() * 2 / 3));
        if (!picture) continue; // a TIFF has its directory at the end
        QCOMPARE(picture->layer->grid().height, 200);
        QCOMPARE(std::memcmp(picture->layer->toBuffer()->data(), source->data(), 200 * 4 * 100), 0);
        QCOMPARE(text(picture->layer->pixel(100, 199)), QStringLiteral("0,0,0,0"));
    }
}

QIRN_TEST(tst_ImageDamage)
#include "tst_ImageDamage.moc"
