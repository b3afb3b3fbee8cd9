// The program that makes thumbnails, as a process.
#include "formats/native/PaintFile.h"
#include "formats/pictures/SmallPng.h"
#include "platform/Bytes.h"
#include "support/Files.h"
#include "support/NativeFiles.h"
#include "support/PictureFiles.h"
#include "support/Pictures.h"
#include "support/Rows.h"
#include "support/TestMain.h"
#include "thumbnailer/Thumbnail.h"

#include <QProcess>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace qirn;
using namespace qirn::test;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
constexpr bool isSanitized = __has_feature(address_sanitizer);
#else
constexpr bool isSanitized = false;
#endif
// The libraries that it loads, of which that of Unicode's tables is half, and 20 MB. With Qt Gui they alone have more.
constexpr rlim_t kMostAddresses = rlim_t{80} << 20;

QByteArray documentWithPreview(const QByteArray& png) {
    NativeFile parts = NativeFile::takenApart(PaintFile::encode(*richDocument()));
    parts.manifest["thumbnail"] = {{"i", -1}, {"o", parts.blob.size()}, {"n", png.size()}, {"c", 2}};
    parts.blob += png;
    return parts.joined();
}

} // namespace

class tst_Thumbnailer : public QObject {
    Q_OBJECT

    QTemporaryDir folder_;
    QString output_ = folder_.filePath("out.png");

    /// The exit code. What is made comes into the file that was there, as a file manager holds it open; on failure there
    /// is one line of words, and nothing in the file.
    int made(const QString& side, const QString& document, const QString& output) {
        QFile held(output_);
        if (!held.open(QIODevice::ReadWrite | QIODevice::Truncate)) return -4;
        QProcess program;
        if (!isSanitized)
            program.setChildProcessModifier([] {
                const rlimit most{kMostAddresses, kMostAddresses};
                setrlimit(RLIMIT_AS, &most);
            });
        program.start(QCoreApplication::applicationDirPath() + "/../qirnpaint-thumbnailer",
                      {side, document, output});
        if (!program.waitForFinished() || program.exitStatus() != QProcess::NormalExit) return -1;
        const bool isMade = program.exitCode() == 0;
        const QByteArray words = program.readAllStandardError();
        const auto names = QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden);
        if (words.count('\n') != (isMade ? 0 : program.exitCode() == 2 ? 2 : 1)) return -2;
        if ((held.size() > 0) != isMade || names.filter("qirn-").size() != 0) return -3;
        return program.exitCode();
    }
    int made(const QString& side, const QByteArray& document) {
        const QString path = folder_.filePath("document.qirnpaint");
        writeFile(path, document);
        return made(side, path, output_);
    }

private Q_SLOTS:
    void aThumbnailIsThePreviewAndNeverLarger() {
        for (const auto& [width, height] : {std::pair{3840, 2160}, {300, 200}, {1, 3000}, {1, 1}}) {
            const QByteArray file = PaintFile::encode(*randomDocument(width, height, 2, 5));
            const auto preview = RGBABuffer::fromImage(*PaintFile::thumbnailOf(bytesOf(file)));
            for (const int side : {1, 128, 256, 1024}) {
                QCOMPARE(made(QString::number(side), file), 0);
                const QByteArray png = bytesAt(output_);
                const auto picture = readSmallPng(bytesOf(png), side);
                QVERIFY(picture);
                if (side >= PaintFile::kPreviewSide)
                    QCOMPARE(firstDifference(*picture, *preview), QString());
                else
                    QCOMPARE(png, thumbnail(*preview, side));
            }
        }
        const QByteArray png =
            withPngChunk(written(QImage(9, 9, QImage::Format_RGB32), "png"), "tEXt", "passed on");
        QCOMPARE(made("128", documentWithPreview(png)), 0);
        QVERIFY(!bytesAt(output_).contains("passed on"));
    }

    void memoryDoesNotGrowWithTheManifest() {
        NativeFile parts = NativeFile::takenApart(PaintFile::encode(*richDocument()));
        OrderedJson& tiles = parts.manifest["layers"][0]["tiles"];
        const OrderedJson tile = tiles[0];
        for (int i = 0; i < (isSanitized ? 1'000 : 400'000); ++i) tiles.push_back(tile);
        QCOMPARE(made("128", parts.joined()), 0);
    }

    void whatHasNoPreviewIsRefused() {
        const QByteArray good = PaintFile::encode(*richDocument());
        const NativeFile parts = NativeFile::takenApart(good);
        const auto manifest = QByteArray::fromStdString(jsonBytes(parts.manifest));
        const auto withText = [&](const QByteArray& text) { return parts.joinedWith(text); };
        const auto picture = [](int side) { return written(QImage(side, 1, QImage::Format_RGB32), "png"); };
        QByteArray huge = good;
        huge.replace(8, 4, "\xff\xff\xff\xff");
        QCOMPARE(made("64", documentWithPreview(picture(320))), 0);
        forRows<QByteArray>(
            {
                {"empty", ""},
                {"another kind of file", picture(9)},
                {"cut in the header", good.first(11)},
                {"cut in the manifest", good.first(300)},
                {"cut in the preview", good.chopped(1)},
                {"another checksum", withManifest(good, [](OrderedJson& m) { m["thumbnail"]["k"] = 1; })},
                {"a manifest of 4 GB", huge},
                {"a manifest above 64 MB",
                 withText('{' + QByteArray(R"("x":1,)").repeated(12 << 20) + manifest.mid(1))},
                {"a word of 40 MB",
                 withText("{\"x\":\"" + QByteArray(40 << 20, 'x') + "\"," + manifest.mid(1))},
                {"a number of 40 MB",
                 withText(R"({"x":)" + QByteArray(40 << 20, '1') + ',' + manifest.mid(1))},
                {"more behind a gap", withText(manifest + QByteArray(2 << 20, ' ') + '}')},
                {"no preview", withManifest(good, [](OrderedJson& m) { m.erase("thumbnail"); })},
                {"an empty manifest", withText("")},
                {"a list", withText(R"([{"thumbnail":{"i":-1,"o":0,"n":1,"c":2}}])")},
                {"nested too deep", withText(QByteArray(1'000'000, '['))},
                {"deep in the preview's entry", withText(R"({"thumbnail":)" + QByteArray(1'000'000, '['))},
                {"a million values in it",
                 withManifest(good,
                              [](OrderedJson& m) { m["thumbnail"]["x"] = std::vector<int>(1'000'000); })},
                {"40 MB of words in it",
                 withText(R"({"thumbnail":[)" + ('"' + QByteArray(1 << 19, 'x') + "\",").repeated(80))},
                {"a zero byte", withText(manifest + QByteArray("\0 ", 2))},
                {"321 pixels", documentWithPreview(picture(321))},
                {"above 4 MB", documentWithPreview(picture(9) + QByteArray(4 << 20, 'x'))},
                {"a chunk that claims a gigabyte", documentWithPreview(claimingPng("zTXt"))},
            },
            [&](const QByteArray& file) { QCOMPARE(made("128", file), 1); });
    }

    void wrongPlacesAndSizesEndAtOnce() {
        const QString document = folder_.filePath("good.qirnpaint"), pipe = folder_.filePath("pipe");
        const QByteArray whole = PaintFile::encode(*richDocument());
        writeFile(document, whole);
        QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
        forRows<QString, QString, QString, int>(
            {
                {"a pipe", "128", pipe, output_, 3},
                {"a device", "128", "/dev/zero", output_, 3},
                {"a folder", "128", folder_.path(), output_, 3},
                {"no file", "128", "/no/such", output_, 3},
                {"no folder for it", "128", document, "/no/such/out.png", 4},
                {"a full disk for it", "128", document, "/dev/full", 4},
                {"the document itself", "128", document, folder_.path() + "/./good.qirnpaint", 4},
                {"no size", "0", document, output_, 2},
                {"no number", "12x", document, output_, 2},
            },
            [&](const QString& side, const QString& in, const QString& out, const int& code) {
                QCOMPARE(made(side, in, out), code);
            });
        QCOMPARE(bytesAt(document), whole);
    }

    void itLoadsNoLibraryOfPicturesOrWindows() {
        QProcess loader;
        loader.setProcessEnvironment([] {
            auto environment = QProcessEnvironment::systemEnvironment();
            environment.insert("LD_TRACE_LOADED_OBJECTS", "1");
            return environment;
        }());
        loader.start(QCoreApplication::applicationDirPath() + "/../qirnpaint-thumbnailer", QStringList());
        QVERIFY(loader.waitForFinished());
        const QByteArray libraries = loader.readAllStandardOutput();
        QVERIFY(libraries.contains("libpng"));
        for (const char* name : {"Qt6Gui", "Qt6Widgets", "tbb", "lcms", "heif", "tiff", "lzfse"})
            QVERIFY2(!libraries.contains(name), name);
    }
};

QIRN_TEST(tst_Thumbnailer)
#include "tst_Thumbnailer.moc"
