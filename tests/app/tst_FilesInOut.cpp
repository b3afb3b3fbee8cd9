#include "ChromeSegments.h"
#include "ChromeSlider.h"
#include "FileTypes.h"
#include "brush/BrushFile.h"
#include "brush/BrushLibrary.h"
#include "compositing/CompositeInputs.h"
#include "formats/pictures/ImageImport.h"
#include "formats/psd/PSDFile.h"
#include "platform/Bytes.h"
#include "sheets/ExportSheet.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/PSDFiles.h"
#include "support/Pictures.h"
#include "support/Studio.h"
#include "support/TestMain.h"

#include <QAbstractButton>
#include <QLabel>
#include <QListWidget>

using namespace qirn;
using namespace qirn::test;

Q_DECLARE_METATYPE(qirn::ExportFormat)

namespace {

/// A half-transparent picture on two layers, one of them hidden.
void paintPicture(Studio& studio) {
    studio.model.newDocument(333, 222, 300, std::nullopt, QStringLiteral("Cats/dogs"));
    studio.layer().load(*noise(333, 222, 3));
    studio.model.addLayer();
    paintRect(studio.doc(), studio.layer(), {0, 0, 333, 222}, {0, 255, 0, 255});
    studio.model.toggleVisibility();
}

} // namespace

class tst_FilesInOut : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theOpenPanelOffersWhatCanBeRead() {
        QStringList offered;
        for (const FileType& type : FileTypes::open()) offered << type.extensions.front();
        QCOMPARE(offered, QStringLiteral("qirnpaint png jpg tiff heic gif bmp psd webp").split(u' '));
        QCOMPARE(FileTypes::import().size(), FileTypes::open().size() - 1);
    }

    void aNameTellsWhatAFileIs_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("written");
        const QString jpg = QStringLiteral("/a.b/cat.jpg");
        QTest::newRow("none") << QStringLiteral("/a.b/cat") << jpg;
        QTest::newRow("own") << jpg << jpg;
        QTest::newRow("own, other case")
            << QStringLiteral("/a.b/cat.JPEG") << QStringLiteral("/a.b/cat.JPEG");
        QTest::newRow("a dot in the name") << QStringLiteral("/a.b/v1.2") << QStringLiteral("/a.b/v1.2.jpg");
        QTest::newRow("another's") << QStringLiteral("/a.b/cat.png") << QStringLiteral("/a.b/cat.png.jpg");
    }
    void aNameTellsWhatAFileIs() {
        QFETCH(QString, typed);
        QFETCH(QString, written);
        QCOMPARE(FileTypes::withExtension(typed, FileTypes::exported(ExportFormat::jpeg)), written);
        QCOMPARE(FileTypes::fileName(QStringLiteral(".a/b"), QStringLiteral("png")),
                 QStringLiteral("-a-b.png")); // neither hidden nor in a folder
    }

    void picturesOpenUnderTheirNameAndAreNeverOverwritten() {
        Studio studio;
        const QString cat = studio.path(QStringLiteral("cat.png")),
                      dog = studio.path(QStringLiteral("dog.v2.JPG"));
        QImage image(30, 20, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(cat) && image.save(dog));
        studio.desktop.openPaths = {{cat, studio.path(QStringLiteral("missing.png")), dog}};
        studio.model.openPanel();
        QCOMPARE(studio.model.sessions().size(), std::size_t{3});
        QCOMPARE(studio.desktop.asked.size(), std::size_t{1});
        QCOMPARE(studio.desktop.asked[0].title, QStringLiteral("Couldn't open missing.png"));
        QCOMPARE(studio.session().name, QStringLiteral("dog.v2 (from JPG)"));
        QCOMPARE(studio.model.sessions()[1]->name, QStringLiteral("cat (from PNG)"));
        QVERIFY(studio.session().fileURL.isEmpty() && !studio.session().isDirty());
        QCOMPARE(studio.desktop.recentFiles, QStringList({cat, dog}));
        const QByteArray before = bytesAt(dog);
        QVERIFY(!studio.model.save(nullptr, PaintModel::SaveAs::no)); // asks, and is cancelled
        QCOMPARE(studio.desktop.proposedNames.back(), QStringLiteral("dog.v2 (from JPG).qirnpaint"));
        QCOMPARE(bytesAt(dog), before);
    }

    void aPictureIsImportedAsALayer() {
        Studio studio;
        const QString path = studio.path(QStringLiteral("cat.v2.png"));
        const auto picture = noise(40, 20, 8);
        QVERIFY(picture->makeImage().save(path));
        studio.desktop.openPaths = {{path}};
        studio.model.importImageAsLayer();
        QCOMPARE(studio.layer().name, QStringLiteral("cat.v2"));
        QCOMPARE(studio.doc().undoName(), QStringLiteral("Paste"));
        QCOMPARE(studio.model.hud(), QStringLiteral("Pasted as a new layer — use Move (V) to position it"));
        QCOMPARE(text(studio.layer().pixel(180 + 7, 140 + 9)), text(picture->pixel(7, 9)));
        writeFile(path, "no picture");
        // Its layers alone: such a file has no picture to import.
        PSDParts layers;
        layers.resources = psdResource(1057, {}, big32(1) + '\0');
        layers.records = {PSDRecord{}};
        const QString psd = studio.path(QStringLiteral("layers.psd"));
        writeFile(psd, layers.joined());
        QVERIFY_THROWS_EXCEPTION(PSDFile::PSDError, ImageImport::decode(bytesOf(bytesAt(psd))));
        const int64_t before = studio.doc().changeCount();
        for (const QString& file : {path, studio.path(QStringLiteral("missing.png")), psd})
            studio.model.importImage(file);
        studio.desktop.content->setUrls({QUrl::fromLocalFile(psd)});
        studio.model.paste();
        QCOMPARE(studio.model.hud(), QStringLiteral("There's no picture on the clipboard"));
        QCOMPARE(studio.desktop.asked.size(), std::size_t{3});
        QCOMPARE(studio.desktop.asked[0].title, QStringLiteral("Couldn't import"));
        QCOMPARE(studio.desktop.asked[2].text, QStringLiteral("This picture could not be read."));
        QCOMPARE(studio.doc().changeCount(), before);
    }

    void anExportIsTheFinishedPicture_data() {
        QTest::addColumn<ExportFormat>("format");
        for (const ExportFormatRow& row : kExportFormats) QTest::newRow(row.id) << row.format;
    }
    void anExportIsTheFinishedPicture() {
        QFETCH(ExportFormat, format);
        Studio studio;
        paintPicture(studio);
        const int64_t changes = studio.doc().changeCount();
        studio.desktop.savePaths = {studio.path(QStringLiteral("out"))};
        studio.model.exportPicture(format, 0.9, PaintColor::white());
        const QString extension = QLatin1String(rowOf(format).fileExtension);
        QCOMPARE(studio.desktop.proposedNames.back(), QStringLiteral("Cats-dogs.") + extension);
        QCOMPARE(studio.model.hud(), QStringLiteral("Exported out.") + extension);
        const QByteArray file = bytesAt(studio.path(QStringLiteral("out.") + extension));
        const auto read = ImageImport::document(bytesOf(file), extension);
        QCOMPARE(read->grid(), studio.doc().grid());
        QCOMPARE(read->dpi, 300.0);
        if (format != ExportFormat::jpeg)
            QCOMPARE(firstDifference(*flattened(*read), *flattened(studio.doc())), QString());
        QVERIFY(studio.session().isDirty() && studio.session().fileURL.isEmpty());
        QCOMPARE(studio.session().name, QStringLiteral("Cats/dogs"));
        QCOMPARE(studio.doc().changeCount(), changes);
        QVERIFY(studio.desktop.recentFiles.isEmpty());
    }

    void anExportThatFailsLeavesTheOldFile() {
        Studio studio;
        paintPicture(studio);
        const QString path = studio.path(QStringLiteral("old.png"));
        writeFile(path, "what was there");
        const QStringList files = QDir(studio.folder.path()).entryList();
        studio.desktop.savePaths = {path, path};
        studio.model.flash(QStringLiteral("-"));
        {
            const FullDisk full;
            studio.model.exportPicture(ExportFormat::png, 0.9, PaintColor::white());
        }
        QCOMPARE(studio.desktop.asked.size(), std::size_t{1});
        QCOMPARE(studio.desktop.asked[0].title, QStringLiteral("Couldn't export"));
        QVERIFY(!studio.desktop.asked[0].text.isEmpty());
        QCOMPARE(studio.model.hud(), QStringLiteral("-"));
        QCOMPARE(bytesAt(path), QByteArray("what was there"));
        QCOMPARE(QDir(studio.folder.path()).entryList(), files);
        studio.model.exportPicture(ExportFormat::png, 0.9, PaintColor::white());
        QVERIFY(bytesAt(path).size() > 1000);
    }

    void anExportPutsFloatingPixelsDown() {
        Studio studio;
        paintRect(studio.doc(), studio.layer(), {10, 10, 20, 20}, {255, 0, 0, 255});
        studio.doc().commit(QStringLiteral("Dot"));
        studio.model.beginTransform();
        studio.desktop.savePaths = {studio.path(QStringLiteral("out.png"))};
        studio.model.exportPicture(ExportFormat::png, 0.9, PaintColor::white());
        QCOMPARE(QImage(studio.path(QStringLiteral("out.png"))).pixelColor(15, 15), QColor(Qt::red));
    }

    void theExportSheetAsksAndRemembers() {
        Studio studio;
        paintPicture(studio);
        studio.model.setPrimary(PaintColor(0, 1, 0));
        studio.model.swapColors();
        studio.store.setText(QStringLiteral("qirn.pt.exportFormat"), QStringLiteral("no such format"));
        {
            ExportSheet sheet(studio.model, nullptr);
            sheet.show();
            auto& formats = *sheet.findChild<QListWidget*>();
            auto& quality = *sheet.findChild<ChromeSlider*>();
            auto& background = *sheet.findChild<ChromeSegments*>();
            QCOMPARE(formats.count(), static_cast<int>(kExportFormats.size()));
            QCOMPARE(formats.currentRow(), 0); // a stored format that is none counts as PNG
            QVERIFY(!quality.isVisible());
            QCOMPARE(sheet.findChild<QLabel*>(QStringLiteral("facts"))->text(),
                     QStringLiteral("333 × 222 px · 300 DPI · 2 layer(s)"));
            QTest::keyClick(&formats, Qt::Key_Down);
            QVERIFY(quality.isVisible());
            QCOMPARE(quality.value(), 0.9);
            QTest::keyClick(&quality, Qt::Key_Home);
            QTest::mouseClick(background.findChildren<QAbstractButton*>()[2], Qt::LeftButton);
            studio.desktop.savePaths = {studio.path(QStringLiteral("out.jpg"))};
            QTest::keyClick(&sheet, Qt::Key_Return);
            QVERIFY(!sheet.isVisible());
            QVERIFY(studio.desktop.proposedNames.isEmpty()); // the sheet goes first
        }
        QTRY_VERIFY(QFile::exists(studio.path(QStringLiteral("out.jpg"))));
        QCOMPARE(studio.store.text(QStringLiteral("qirn.pt.exportFormat")), QStringLiteral("jpeg"));
        QCOMPARE(studio.store.number(QStringLiteral("qirn.pt.jpegQuality")), std::optional(0.3));
        // The second colour shows where the picture is transparent.
        QCOMPARE(bytesAt(studio.path(QStringLiteral("out.jpg"))),
                 ImageExport::data(studio.doc(), ExportFormat::jpeg, 0.3, PaintColor(0, 1, 0)));
        QCOMPARE(ExportSheet(studio.model, nullptr).findChild<ChromeSlider*>()->value(), 0.3);
    }

    void brushesGoOutAndComeIn() {
        Studio studio;
        const QString path = studio.path(QStringLiteral("mine.qirnbrushes"));
        studio.desktop.savePaths = {studio.path(QStringLiteral("mine")), path};
        studio.desktop.openPaths = {{path}, {path}};
        studio.model.exportBrushes(); // none of one's own: the active one
        QCOMPARE(studio.desktop.proposedNames.back(), QStringLiteral("My Qirn Paint Brushes.qirnbrushes"));
        QCOMPARE(studio.model.hud(), QStringLiteral("Exported 1 brush(es)"));
        QCOMPARE(BrushFile::decode(bytesOf(bytesAt(path)))->front(), studio.model.activeBrush());
        studio.model.importBrushes();
        studio.model.importBrushes();
        QCOMPARE(studio.model.hud(), QStringLiteral("Imported 1 brush(es)"));
        const auto& own = studio.model.userBrushes();
        QCOMPARE(own.size(), std::size_t{2});
        QVERIFY(own[0].id != own[1].id && own[0].id != studio.model.activeBrush().id);
        QVERIFY(!own[0].isBuiltIn);
        QCOMPARE(own[0].category, QStringLiteral("My Brushes"));
        QCOMPARE(own[0].name, QStringLiteral("Studio Pen"));
        studio.model.exportBrushes();
        QCOMPARE(studio.model.hud(), QStringLiteral("Exported 2 brush(es)"));
        QCOMPARE(BrushFile::decode(bytesOf(bytesAt(path))), std::optional(own));
        QCOMPARE(PaintModel(PaintModel::LoadStores::yes, studio.desktop, studio.store).userBrushes(), own);
    }

    void brushFilesOfOtherHands_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("imported"); // -1: refused
        QTest::newRow("few keys") << QByteArray("[{\"name\":\"Old file brush\",\"size\":42}]") << 1;
        QTest::newRow("empty list") << QByteArray("[]") << 0;
        QTest::newRow("one bad record") << QByteArray("[{\"name\":\"a\"},{\"name\":5}]") << -1;
        QTest::newRow("no list") << QByteArray("{}") << -1;
        QTest::newRow("no JSON") << QByteArray("words") << -1;
        QTest::newRow("no file") << QByteArray() << -1;
    }
    void brushFilesOfOtherHands() {
        QFETCH(QByteArray, file);
        QFETCH(int, imported);
        Studio studio;
        const QString path = studio.path(QStringLiteral("a.json"));
        if (!file.isNull()) writeFile(path, file);
        studio.desktop.openPaths = {{path}};
        studio.model.importBrushes();
        QCOMPARE(studio.model.userBrushes().size(), static_cast<std::size_t>(std::max(imported, 0)));
        if (imported < 0) {
            QCOMPARE(studio.desktop.asked.back().title, QStringLiteral("Couldn't import brushes"));
            QCOMPARE(studio.desktop.asked.back().text,
                     QStringLiteral("This file isn't an Qirn Paint brush file."));
        } else {
            QCOMPARE(studio.model.hud(), QStringLiteral("Imported %1 brush(es)").arg(imported));
        }
        if (imported == 1) QCOMPARE(studio.model.userBrushes()[0].size, 42.0);
    }

    void brushesThatCannotBeWrittenAreToldOf() {
        Studio studio;
        const QString path = studio.path(QStringLiteral("mine.qirnbrushes"));
        writeFile(path, "what was there");
        studio.desktop.savePaths = {path};
        const FullDisk full;
        studio.model.exportBrushes();
        QCOMPARE(studio.desktop.asked.back().title, QStringLiteral("Couldn't export brushes"));
        QCOMPARE(bytesAt(path), QByteArray("what was there"));
    }
};

QIRN_TEST(tst_FilesInOut)
#include "tst_FilesInOut.moc"
