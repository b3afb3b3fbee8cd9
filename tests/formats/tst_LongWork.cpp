#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "formats/native/PaintFile.h"
#include "operations/LayerOperations.h"
#include "operations/Reshape.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/ReadFile.h"
#include "support/Files.h"
#include "support/PSDFiles.h"
#include "support/PictureFiles.h"
#include "support/Pictures.h"
#include "support/TestMain.h"
#include "support/Watched.h"

#include <QBuffer>
#include <QDir>
#include <QImageWriter>
#include <QTemporaryDir>

using namespace qirn;
using namespace qirn::test;

namespace {

using Document = std::unique_ptr<PaintDocument>;

Document picture() {
    auto doc = randomDocument(520, 300, 2, 7);
    doc->selection = Selection::make(rectangle(100, 100, 400, 180), SelectionOp::replace, nullptr, 520, 300,
                                     Antialias::no);
    for (const LayerRef& layer : doc->layers()) layer->isVisible = true;
    return doc;
}

/// What an operation makes of the picture, as a number; it changes the picture, or hands over something else.
using Work = std::function<uint64_t(PaintDocument&, const Progress&)>;

Work change(std::function<void(PaintDocument&, const Progress&)> operation) {
    return [operation](PaintDocument& doc, const Progress& progress) {
        operation(doc, progress);
        return doc.fingerprint();
    };
}

Work exportAs(ExportFormat format) {
    return [format](PaintDocument& doc, const Progress& progress) {
        return qHash(ImageExport::data(doc, format, 0.9, PaintColor::white(), progress));
    };
}

Work opening(const QByteArray& file) {
    return [file](PaintDocument&, const Progress& progress) {
        return ImageImport::imported(bytesOf(file), progress).document->fingerprint();
    };
}

QByteArray progressiveJpeg(const QImage& image) {
    QByteArray file;
    QBuffer buffer(&file);
    QImageWriter writer(&buffer, "jpeg");
    writer.setProgressiveScanWrite(true);
    writer.write(image);
    return file;
}

/// Black, 256 pixels on a side.
QByteArray interlacedPng() {
    constexpr int kPixels = 256 * 256, kRows = 32 + 32 + 32 + 64 + 64 + 128 + 128;
    return pngFile(256, 256, QByteArray("\x08\x02\0\0\1", 5), QByteArray(kRows + 3 * kPixels, '\0'));
}

bool isStopped(const std::function<void()>& work) {
    try {
        work();
    } catch (const Cancelled&) {
        return true;
    }
    return false;
}

struct Row {
    const char* name;
    Work work;
    int64_t fewestQuestions;
};

std::vector<Row> operations() {
    const auto exported = [](ExportFormat format) {
        return ImageExport::data(*picture(), format, 0.9, PaintColor::white());
    };
    const QImage image = QImage::fromData(exported(ExportFormat::png));
    const PSDParts gray{.width = 300,
                        .height = 300,
                        .channels = 1,
                        .mode = 1,
                        .picture = big16(0) + rawChannel(300, 300, 90)};
    return {
        {"rotate", change([](auto& doc, auto& progress) { rotate(doc, 1, progress); }), 8},
        {"flip", change([](auto& doc, auto& p) { flipCanvas(doc, FlipAxis::vertical, p); }), 8},
        {"crop", change([](auto& doc, auto& p) { cropTo(doc, doc.selection->bounds(), p); }), 4},
        {"merge down", change([](auto& doc, auto& progress) { mergeDown(doc, 1, progress); }), 3},
        {"merge visible", change([](auto& doc, auto& progress) { mergeVisible(doc, progress); }), 6},
        {"flatten", change([](auto& doc, auto& progress) { flattenImage(doc, progress); }), 6},
        {"encode",
         [](PaintDocument& doc, const Progress& progress) {
             const QByteArray file = PaintFile::encode(snapshot(doc), 64, {}, progress);
             return PaintFile::decode(bytesOf(file))->fingerprint();
         },
         20},
        {"export PNG", exportAs(ExportFormat::png), 7},
        {"export JPEG", exportAs(ExportFormat::jpeg), 100},
        {"export TIFF", exportAs(ExportFormat::tiff), 290},
        {"export WebP", exportAs(ExportFormat::webp), 5},
        {"export lossy WebP", exportAs(ExportFormat::webpLossy), 5},
        {"export OpenRaster", exportAs(ExportFormat::openRaster), 8},
        {"export layered PSD", exportAs(ExportFormat::psdLayered), 80},
        {"export flat PSD", exportAs(ExportFormat::psdFlat), 30},
        {"open native", opening(PaintFile::encode(*picture())), 4},
        {"open PNG", opening(exported(ExportFormat::png)), 290},
        {"open interlaced PNG", opening(interlacedPng()), 256},
        {"open interlaced GIF", opening(testData("interlaced.gif")), 10},
        {"open HEIC", opening(testData("blocks.heic")), 10},
        {"open JPEG", opening(exported(ExportFormat::jpeg)), 290},
        {"open progressive JPEG", opening(progressiveJpeg(image)), 310},
        {"open TIFF", opening(exported(ExportFormat::tiff)), 290},
        {"open BMP", opening(written(image, "bmp")), 290},
        {"open WebP", opening(written(image, "webp")), 290},
        {"open OpenRaster", opening(exported(ExportFormat::openRaster)), 500},
        {"open layered PSD", opening(exported(ExportFormat::psdLayered)), 4},
        {"open merged PSD", opening(gray.joined()), 1},
    };
}

} // namespace

/// What operations that may take long tell of themselves, and what is left of them where they are stopped.
class tst_LongWork : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aStoppedOperationHasChangedNothing() {
        for (const auto& [name, work, fewestQuestions] : operations()) {
            const auto atOnce = picture(), watched = picture(), stopped = picture();
            const uint64_t before = stopped->fingerprint();
            const auto selection = stopped->selection;
            Watched willing;
            const uint64_t result = work(*atOnce, {});
            QVERIFY2(work(*watched, Progress(willing)) == result, name);
            QVERIFY2(willing.asked() >= fewestQuestions,
                     qPrintable(QString("%1: %2").arg(name).arg(willing.asked())));
            QVERIFY2(willing.largest() > 0.85 && willing.largest() <= 1, name);
            for (int64_t k = 0; k < willing.asked(); k += 1 + willing.asked() / 8) {
                Watched tired(k);
                if (isStopped([&, run = work] { run(*stopped, Progress(tired)); }))
                    QVERIFY2(stopped->fingerprint() == before && stopped->selection == selection, name);
                else // less is left to do than the first time, as of tiles that are encoded
                    QVERIFY2(tired.asked() <= k && qstrcmp(name, "encode") == 0, name);
            }
            QVERIFY2(work(*stopped, {}) == result, name);
        }
    }

    void aFileThatIsNotWantedAnyMoreLeavesTheOldOne() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("cat.qirnpaint");
        const QByteArray old(100, 'o'), fresh(3 << 20, 'f');
        for (int64_t k = 0;; ++k) {
            writeAtomically(path, bytesOf(old));
            Watched tired(k);
            if (!isStopped([&] { writeAtomically(path, bytesOf(fresh), Progress(tired)); })) {
                QVERIFY(k >= 4);
                break;
            }
            QCOMPARE(readFile(path), old);
            QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
        }
        Watched willing, tired(2);
        QVERIFY(readFile(path, fresh.size(), Progress(willing)) == fresh);
        QVERIFY(willing.asked() >= 3);
        QVERIFY_THROWS_EXCEPTION(Cancelled, readFile(path, fresh.size(), Progress(tired)));
    }
};

QIRN_TEST(tst_LongWork)
#include "tst_LongWork.moc"
