#include "app/commands/CommandRows.h"
#include "app/desktop/FileTypes.h"
#include "app/model/Clipboard.h"
#include "brush/BrushFile.h"
#include "brush/BrushLibrary.h"
#include "formats/ImageImport.h"
#include "formats/native/PaintFile.h"
#include "formats/psd/PSDFile.h"
#include "platform/Bytes.h"
#include "platform/files/FilePath.h"
#include "program/arguments/CommandLine.h"
#include "support/FullDisk.h"
#include "support/PSDFiles.h"
#include "support/Studio.h"

#include <fcntl.h>

using namespace qirn;
using namespace qirn::test;

namespace {

/// A half-transparent picture on two layers, one of them hidden.
void paintPicture(Studio& studio) {
    studio.model.pictures().newDocument(333, 222, 300, std::nullopt, "Cats/dogs");
    studio.layer().load(*noise(333, 222, 3));
    LayerEdits::addLayer(studio.model);
    paintRect(studio.doc(), studio.layer(), {0, 0, 333, 222}, {0, 255, 0, 255});
    LayerEdits::toggleVisibility(studio.model);
}

} // namespace

class tst_FilesInOut : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aNameTellsWhatAFileIs() {
        for (const auto& [typed, written] : {std::pair{"/a.b/cat", "/a.b/cat.jpg"},
                                             {"/a.b/cat.jpg", "/a.b/cat.jpg"},
                                             {"/a.b/cat.JPEG", "/a.b/cat.JPEG"},
                                             {"/a.b/v1.2", "/a.b/v1.2.jpg"},
                                             {"/a.b/cat.png", "/a.b/cat.png.jpg"}})
            QCOMPARE(FileTypes::withExtension(typed, FileTypes::exported(ExportFormat::jpeg)), written);
        QCOMPARE(FileTypes::withExtension("/a/.jpg", FileTypes::exported(ExportFormat::jpeg)), "/a/.jpg.jpg");
        QCOMPARE(FileTypes::fileName(".a/b\n\x7f", "png"), "-a-b--.png"); // neither hidden nor in a folder
        const QString longName = FileTypes::fileName(QStringLiteral("日").repeated(100), "qirnpaint");
        QCOMPARE(longName, QStringLiteral("日").repeated(81) + ".qirnpaint"); // 243 bytes and 10
    }

    void ofADamagedDocumentOpensWhatCanBeRead() {
        Studio studio;
        const QString path = studio.path("cut.qirnpaint"), text = studio.path("text.qirnpaint");
        PaintDocument doc(600, 300, 72, PaintColor(0, 1, 0));
        QByteArray file = PaintFile::encode(doc);
        const auto manifest = PaintFile::manifestOf(bytesOf(file));
        const auto& lost = manifest.manifest.layers[0].tiles[5];
        file[static_cast<qsizetype>(manifest.blobOffset + lost.o + 5)] ^= 8;
        writeFile(path, file);
        writeFile(text, "not a paint file");
        const std::size_t before = studio.model.pictures().sessions().size();
        for (const int answer : {0, 1}) {
            studio.desktop.answers = {answer};
            studio.model.files().open(QStringList{text, path});
            QCOMPARE(studio.desktop.asked.back().buttons, QStringList({"OK", "Open What Can Be Read"}));
            QCOMPARE(studio.model.pictures().sessions().size(), before + std::size_t(answer));
        }
        const DocSession& session = *studio.model.current();
        QVERIFY(session.isDirty() && session.fileURL.isEmpty() && session.name == "cut");
        QCOMPARE(session.remark, "Tiles that could not be read, by layer: Background (1)");
        QCOMPARE(*studio.model.messages().hud(), session.remark);
        studio.model.files().open(text); // of which nothing can be read
        QCOMPARE(studio.desktop.asked.back().buttons, QStringList("OK"));
    }

    void picturesOpenUnderTheirNameAndAreNeverOverwritten() {
        Studio studio;
        const QString cat = studio.path("cat.png"), dog = studio.path("dog.v2.JPG");
        QImage image(30, 20, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(cat) && image.save(dog));
        studio.desktop.openPaths = {{cat, studio.path("missing.png"), dog}};
        studio.model.files().openPanel();
        QCOMPARE(studio.model.pictures().sessions().size(), std::size_t{3});
        QCOMPARE(studio.desktop.asked.size(), std::size_t{1});
        QCOMPARE(studio.desktop.asked[0].title, "Couldn't open missing.png");
        QCOMPARE(studio.desktop.usedFile, dog);
        studio.model.files().open(QStringList{"/no/a.png", studio.folder.path()});
        QCOMPARE(studio.desktop.asked.back().title, "Couldn't open 2 files");
        QVERIFY(studio.desktop.asked.back().text.startsWith("a.png: No such file") &&
                studio.desktop.asked.back().text.endsWith(": This is a folder."));
        // An ending of ours on another's content is no reason to overwrite it.
        QVERIFY(QFile::copy(cat, studio.path("png.qirnpaint")) && QFile::copy(cat, studio.path(".png")));
        studio.model.files().open(studio.path("png.qirnpaint"));
        QVERIFY(studio.session().fileURL.isEmpty() && studio.session().name == "png (from QIRNPAINT)");
        studio.model.pictures().close(studio.session());
        studio.model.files().open(studio.path(".png"));
        QCOMPARE(studio.session().name, ".png (from PNG)");
        studio.model.pictures().close(studio.session());
        QVERIFY(QFile::copy(cat, studio.path("plain")));
        studio.model.files().open(studio.path("plain"));
        QCOMPARE(studio.session().name, "plain");
        studio.model.pictures().close(studio.session());
        QCOMPARE(studio.session().name, "dog.v2 (from JPG)");
        QCOMPARE(studio.model.pictures().sessions()[1]->name, "cat (from PNG)");
        QVERIFY(studio.session().fileURL.isEmpty() && !studio.session().isDirty());
        QCOMPARE(studio.desktop.recentFiles, QStringList({cat, dog, studio.path("png.qirnpaint"),
                                                          studio.path(".png"), studio.path("plain")}));
        const QByteArray before = bytesAt(dog);
        QVERIFY(!studio.model.files().save(nullptr, PictureFiles::SaveAs::no)); // asks, and is cancelled
        QCOMPARE(studio.desktop.proposedNames.back(), "dog.v2 (from JPG).qirnpaint");
        QCOMPARE(bytesAt(dog), before);
    }

    void aFileBelongsToOneTabAndAnExportIsNoSave() {
        Studio studio;
        const QString path = studio.path("cat.qirnpaint");
        studio.desktop.savePaths = {path, path, ""};
        QVERIFY(studio.model.files().save(nullptr, PictureFiles::SaveAs::yes));
        const QByteArray cat = bytesAt(path);
        studio.model.pictures().newDocument(30, 20, 72, PaintColor::black(), "Dog");
        studio.fill({0, 0, 3, 3});
        QVERIFY(!studio.model.files().save(nullptr, PictureFiles::SaveAs::no));
        QCOMPARE(studio.model.messages().hud(), "\"cat\" is open in another tab.");
        QVERIFY(bytesAt(path) == cat && studio.session().fileURL.isEmpty());
        // Rather an export, asked while the picture is closed: it stays, and the sheet comes up for it.
        DocSession& dog = studio.session();
        studio.model.pictures().select(*studio.model.pictures().sessions().front());
        studio.desktop.answers = {0};
        QVERIFY(!studio.model.pictures().close(dog));
        QVERIFY(studio.model.current() == &dog &&
                studio.model.sheet() == PaintSheet{PaintSheet::Kind::exportPicture});
    }

    void aFileThatAnotherProgramChangedIsAskedAbout() {
        Studio studio;
        const QString path = studio.path("Sea.qirnpaint"), other = studio.path("other.qirnpaint");
        studio.desktop.savePaths = {path};
        const auto save = [&] { return studio.model.files().save(nullptr, PictureFiles::SaveAs::no); };
        QVERIFY(save() && save() && studio.desktop.asked.empty());
        const auto touch = [&](int64_t nanoseconds, const QByteArray& more = {}) {
            struct stat facts {};
            ::stat(qPrintable(path), &facts);
            if (!more.isEmpty())
                writeFile(path, bytesAt(path) + more); // and the time of its last change stays
            const timespec times[] = {
                facts.st_atim, {facts.st_mtim.tv_sec, more.isEmpty() ? nanoseconds : facts.st_mtim.tv_nsec}};
            ::utimensat(AT_FDCWD, qPrintable(path), times, 0);
        };
        touch(1);
        const QByteArray before = bytesAt(path);
        studio.fill({0, 0, 9, 9});
        studio.desktop.answers = {0};
        QVERIFY(!studio.model.pictures().shouldQuit() && bytesAt(path) == before); // cancelled
        QCOMPARE(studio.desktop.asked.back().title, "\"Sea.qirnpaint\" was changed by another program.");
        QCOMPARE(studio.desktop.asked.back().buttons, QStringList({"Overwrite", "Save As…", "Cancel"}));
        QCOMPARE(studio.desktop.asked.back().defaultButton, 1);
        studio.desktop.answers = {0};
        QVERIFY(save() && bytesAt(path) != before);
        touch(0, "x");
        studio.desktop.answers = {1, 1};
        studio.desktop.savePaths = {other};
        QVERIFY(save() && studio.session().fileURL == QUrl::fromLocalFile(other));
        studio.model.files().open(path);
        touch(3);
        studio.desktop.answers = {2, 0};
        QVERIFY(!save() && save());
        const std::size_t asked = studio.desktop.asked.size();
        QVERIFY(save());
        touch(2);
        QVERIFY(QFile::remove(path) && save());
        QCOMPARE(studio.desktop.asked.size(), asked);
    }

    void aCancelledQuitTellsWhatItClosed() {
        Studio studio;
        for (const char* name : {"Two", "Three"}) {
            studio.fill({0, 0, 9, 9});
            studio.model.pictures().newDocument(30, 20, 72, std::nullopt, name);
        }
        studio.fill({0, 0, 9, 9});
        studio.model.showSheet({PaintSheet::Kind::imageSize}); // which does not stay over another picture
        studio.desktop.answers = {0, 2, 1};                    // save, don't, cancel
        studio.desktop.savePaths = {studio.path("One.qirnpaint")};
        QVERIFY(!studio.model.pictures().shouldQuit());
        QCOMPARE(studio.model.messages().hud(), "Closed: One, Two");
        QVERIFY(studio.session().name == "Three" && !studio.model.sheet());
        QCOMPARE(studio.model.files().recentFiles().front(), studio.path("One.qirnpaint"));
    }

    void argumentsNameFilesAndModes() {
        using Mode = CommandLine::Mode;
        const struct {
            QStringList arguments;
            Mode mode;
            QStringList files;
        } cases[] = {
            {{"/a b.png", "-x", "--unknown", "file:///c%20d.png", "file://localhost/%E9"},
             Mode::none,
             {"/a b.png", "/c d.png", pathFromBytes("/\xE9")}},
            {{"/a", "--", "-b", "--selftest", "--"},
             Mode::none,
             {"/a", absolutePath("-b"), absolutePath("--selftest"), absolutePath("--")}},
            {{"--benchmark", "--selftest"}, Mode::selfTest, {}},
            {{"--make-sample"}, Mode::none, {}},
            {{"--export=png", "/a", "/b"}, Mode::exportPictures, {}},
            {{"--version", "--help"}, Mode::help, {}},
            {{"--recover", "--benchmark"}, Mode::benchmark, {}},
            {{"--recover", "/a", "--new-canvas", "--help"}, Mode::newCanvas, {"/a"}},
        };
        for (const auto& [arguments, mode, files] : cases) {
            const CommandLine line = CommandLine::parsed(QStringList("QirnPaint") + arguments);
            QVERIFY2(line.mode == mode, qPrintable(arguments.join(u' ')));
            if (line.opensStudio()) QCOMPARE(line.files, files);
            QCOMPARE(line.sheet().has_value(), mode == Mode::newCanvas);
        }
        QCOMPARE(CommandLine::parsed({"QirnPaint", "--make-sample", "/x"}).samplePath, "/x");
        QVERIFY(CommandLine::parsed({}).files.isEmpty());
    }

    void aPictureIsImportedAsALayer() {
        Studio studio;
        const QString path = studio.path("cat.v2.png");
        const auto picture = noise(40, 20, 8);
        QVERIFY(picture->makeImage().save(path));
        studio.desktop.openPaths = {{path}};
        studio.model.clipboard().importImageAsLayer();
        QCOMPARE(studio.layer().name, "cat.v2");
        QCOMPARE(studio.doc().undoName(), "Paste");
        QCOMPARE(studio.model.messages().hud(), "Pasted as a new layer — use Move (V) to position it");
        QCOMPARE(text(studio.layer().pixel(180 + 7, 140 + 9)), text(picture->pixel(7, 9)));
        writeFile(path, "no picture");
        // Its layers alone: such a file has no picture to import.
        PSDParts layers;
        layers.resources = psdResource(1057, {}, big32(1) + '\0');
        layers.records = {PSDRecord{}};
        const QString psd = studio.path("layers.psd");
        writeFile(psd, layers.joined());
        QVERIFY_THROWS_EXCEPTION(PSDFile::PSDError, ImageImport::decode(bytesOf(bytesAt(psd))));
        const int64_t before = studio.doc().changeCount();
        for (const QString& file : {path, studio.path("missing.png"), psd})
            studio.model.clipboard().importImage(file);
        studio.desktop.content->setUrls({QUrl::fromLocalFile(psd)});
        studio.model.clipboard().paste();
        QCOMPARE(studio.model.messages().hud(), "There's no picture on the clipboard");
        QCOMPARE(studio.desktop.asked.size(), std::size_t{3});
        QCOMPARE(studio.desktop.asked[0].title, "Couldn't import");
        QCOMPARE(studio.desktop.asked[2].text, "This picture could not be read.");
        QCOMPARE(studio.doc().changeCount(), before);
    }

    void anExportIsTheFinishedPicture() {
        for (const ExportFormatRow& row : kExportFormats) {
            const ExportFormat format = row.format;
            Studio studio;
            paintPicture(studio);
            const int64_t changes = studio.doc().changeCount();
            studio.desktop.savePaths = {studio.path("out")};
            studio.model.files().exportPicture(format, 0.9, PaintColor::white());
            const QString extension = QLatin1String(rowOf(format).fileExtension);
            QCOMPARE(studio.desktop.proposedNames.back(), QStringLiteral("Cats-dogs.") + extension);
            QCOMPARE(studio.model.messages().hud(), QStringLiteral("Exported out.") + extension);
            QCOMPARE(bytesAt(studio.path(QStringLiteral("out.") + extension)),
                     ImageExport::data(studio.doc(), format, 0.9, PaintColor::white()));
            QVERIFY(studio.session().isDirty() && studio.session().fileURL.isEmpty());
            QCOMPARE(studio.session().name, "Cats/dogs");
            QCOMPARE(studio.doc().changeCount(), changes);
            QVERIFY(studio.desktop.recentFiles.isEmpty());
        }
    }

    void recentFilesAreAListOfTheFileMenu() {
        Studio studio;
        const auto choices = [&] { return commandNamed("openRecent").choices(studio.model); };
        const auto titles = [&] {
            QStringList all;
            for (const CommandChoice& choice : choices()) all << choice.title;
            return all.join(u'|');
        };
        QCOMPARE(titles(), "Clear");
        for (int i = 0; i < 13; ++i) {
            studio.desktop.savePaths = {studio.path(QString("%1.qirnpaint").arg(i % 12))};
            QVERIFY(studio.model.files().save(nullptr, PictureFiles::SaveAs::yes));
        }
        QFile::remove(studio.path("9.qirnpaint"));
        const QString sep = ".qirnpaint|";
        QCOMPARE(titles(), "0" + sep + "11" + sep + "10" + sep + "8" + sep + "7" + sep + "6" + sep + "5" +
                               sep + "4" + sep + "3" + sep + "|Clear");
        choices()[2].run();
        QCOMPARE(studio.model.current()->name, "10");
        QVERIFY(titles().startsWith("10" + sep + "0" + sep + "11"));
        choices().back().run();
        QCOMPARE(titles(), "Clear");
    }

    void brushesGoOutAndComeIn() {
        Studio studio;
        const QString path = studio.path("mine.qirnbrushes");
        studio.desktop.savePaths = {studio.path("mine"), path};
        studio.desktop.openPaths = {{path}, {path}};
        studio.model.brushes().exportBrushes(); // none of one's own: the active one
        QCOMPARE(studio.desktop.proposedNames.back(), "My Qirn Paint Brushes.qirnbrushes");
        QCOMPARE(studio.model.messages().hud(), "Exported 1 brush(es)");
        QCOMPARE(BrushFile::decode(bytesOf(bytesAt(path)))->front(), studio.model.brushes().activeBrush());
        studio.model.brushes().importBrushes();
        studio.model.brushes().importBrushes();
        QCOMPARE(studio.model.messages().hud(), "Imported 1 brush(es)");
        const auto& own = studio.model.brushes().userBrushes();
        QCOMPARE(own.size(), std::size_t{2});
        QVERIFY(own[0].id != own[1].id && own[0].id != studio.model.brushes().activeBrush().id);
        QVERIFY(!own[0].isBuiltIn);
        QCOMPARE(own[0].category, "My Brushes");
        QCOMPARE(own[0].name, "Studio Pen");
        studio.model.brushes().exportBrushes();
        QCOMPARE(studio.model.messages().hud(), "Exported 2 brush(es)");
        QCOMPARE(BrushFile::decode(bytesOf(bytesAt(path))), std::optional(own));
        studio.model.brushes().flush();
        QCOMPARE(
            PaintModel(PaintModel::LoadStores::yes, studio.desktop, studio.store).brushes().userBrushes(),
            own);
        studio.desktop.savePaths = {studio.path("no such folder/a")};
        studio.model.brushes().exportBrushes();
        QCOMPARE(studio.desktop.asked.back().title, "Couldn't export brushes");
        studio.desktop.asked.clear();
        writeFile(path, "[{\"name\":\"a\"},{\"name\":5}]");
        studio.desktop.openPaths = {{path}, {studio.path("missing")}};
        for (std::size_t asked = 1; asked <= 2; ++asked) {
            studio.model.brushes().importBrushes();
            QCOMPARE(studio.desktop.asked.size(), asked);
            QCOMPARE(studio.desktop.asked.back().title, "Couldn't import brushes");
            QCOMPARE(studio.desktop.asked.back().text, "This file isn't an Qirn Paint brush file.");
        }
        QCOMPARE(own.size(), std::size_t{2});
    }
};

QIRN_TEST(tst_FilesInOut)
#include "tst_FilesInOut.moc"
