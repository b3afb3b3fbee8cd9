#include "formats/palettes/PaletteLibrary.h"
#include "platform/Bytes.h"
#include "support/Files.h"
#include "support/Studio.h"
#include "support/TestMain.h"

#include <QDir>

using namespace qirn;
using namespace qirn::test;

namespace {

using Edit = void (*)(PaintModel&);

const Palette& builtIn(const char* name) {
    for (const Palette& palette : PaletteLibrary::builtIn()) {
        if (palette.name == QLatin1String(name)) return palette;
    }
    qFatal("No palette %s.", name);
}

/// What is on disk.
std::vector<Palette> stored() {
    return PaletteStore::decode(bytesOf(bytesAt(AppFolders::palettesFile())))
        .value_or(std::vector<Palette>());
}

} // namespace

class tst_UserPalettes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anEditOfABuiltInPaletteGoesToACopy_data() {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<int>("colors");
        QTest::addColumn<QString>("name");
        const QString copy = QStringLiteral("Basic (my copy)");
        QTest::newRow("add") << Edit([](PaintModel& m) { m.addToPalette(PaintColor(0.2, 0.4, 0.6)); }) << 13
                             << copy;
        QTest::newRow("remove") << Edit([](PaintModel& m) { m.removeFromPalette(0); }) << 11 << copy;
        QTest::newRow("rename") << Edit([](PaintModel& m) { m.renamePalette(QStringLiteral("Ma pálette")); })
                                << 12 << QStringLiteral("Ma pálette");
    }
    void anEditOfABuiltInPaletteGoesToACopy() {
        QFETCH(Edit, edit);
        QFETCH(int, colors);
        QFETCH(QString, name);
        Studio studio;
        const Palette before = builtIn("Basic");
        studio.model.selectPalette(before.id);
        edit(studio.model);
        QCOMPARE(builtIn("Basic"), before);
        const Palette& own = studio.model.currentPalette();
        QCOMPARE(own.name, name);
        QCOMPARE(own.colors.size(), static_cast<std::size_t>(colors));
        QVERIFY(!own.isBuiltIn && own.id != before.id);
        QCOMPARE(stored(), std::vector<Palette>{own});
        // The copy itself is edited in place.
        const QUuid id = own.id;
        studio.model.addToPalette(PaintColor::black());
        studio.model.addToPalette(PaintColor::black());
        QCOMPARE(studio.model.userPalettes().size(), std::size_t{1});
        QCOMPARE(studio.model.currentPalette().id, id);
        QCOMPARE(studio.model.currentPalette().colors.size(), static_cast<std::size_t>(colors + 2));
        QCOMPARE(stored(), studio.model.userPalettes());
    }

    void anEditThatIsNoneMakesNoCopy() {
        Studio studio;
        studio.model.removeFromPalette(99);
        studio.model.renamePalette({});
        studio.model.deletePalette(); // a built-in one stays
        QVERIFY(studio.model.userPalettes().empty());
        QVERIFY(studio.desktop.asked.empty());
        QVERIFY(!QFile::exists(AppFolders::palettesFile()));
    }

    void newPalettesHoldWhatIsInHand() {
        Studio studio;
        studio.model.pick(PaintColor(1, 0, 0), PaintModel::AddRecent::yes);
        studio.model.pick(PaintColor(0, 1, 0), PaintModel::AddRecent::yes);
        studio.model.newPalette({}, PaintModel::FromRecent::no);
        QCOMPARE(studio.model.currentPalette().name, QStringLiteral("My Palette"));
        QCOMPARE(studio.model.currentPalette().colors,
                 (std::vector<PaletteColor>{{PaintColor(0, 1, 0), QString()}}));
        studio.model.newPalette(QStringLiteral("Recent"), PaintModel::FromRecent::yes);
        QCOMPARE(studio.model.currentPalette().colors,
                 (std::vector<PaletteColor>{{PaintColor(0, 1, 0), {}}, {PaintColor(1, 0, 0), {}}}));
        QCOMPARE(studio.model.allPalettes().size(), PaletteLibrary::builtIn().size() + 2);
        // Both come back, and the chosen one is chosen.
        studio.model.saveState();
        const PaintModel again(PaintModel::LoadStores::yes, studio.desktop, studio.store);
        QCOMPARE(again.userPalettes(), studio.model.userPalettes());
        QCOMPARE(again.currentPalette(), studio.model.currentPalette());
        const PaintModel fresh(PaintModel::LoadStores::no, studio.desktop, studio.store);
        QCOMPARE(fresh.currentPalette(), PaletteLibrary::builtIn().front());
    }

    void deletingAsksAndFallsBack() {
        Studio studio;
        studio.model.newPalette(QStringLiteral("Doomed"), PaintModel::FromRecent::no);
        studio.desktop.answers = {1, 0};
        studio.model.deletePalette();
        QCOMPARE(studio.model.userPalettes().size(), std::size_t{1});
        studio.model.deletePalette();
        QCOMPARE(studio.desktop.asked.back().title, QStringLiteral("Delete the palette \"Doomed\"?"));
        QCOMPARE(studio.desktop.asked.back().text,
                 QStringLiteral("Only this color palette is removed. Your pictures are not changed."));
        QVERIFY(studio.model.userPalettes().empty() && stored().empty());
        QCOMPARE(studio.model.currentPalette(), PaletteLibrary::builtIn().front());
        QCOMPARE(QUuid(*studio.store.text(QStringLiteral("qirn.pt.palette"))),
                 PaletteLibrary::builtIn().front().id);
    }

    void aChoiceThatIsGoneShowsTheFirst() {
        Studio studio;
        for (const char* stored : {"1B671A64-40D5-491E-99B0-DA01FF1F3341", "no id"}) {
            studio.store.setText(QStringLiteral("qirn.pt.palette"), QLatin1String(stored));
            PaintModel model(PaintModel::LoadStores::yes, studio.desktop, studio.store);
            QCOMPARE(model.currentPalette(), PaletteLibrary::builtIn().front());
        }
    }

    void palettesAreExchanged_data() {
        QTest::addColumn<PaintModel::PaletteFile>("file");
        QTest::addColumn<QString>("extension");
        QTest::newRow("GIMP") << PaintModel::PaletteFile::gpl << QStringLiteral("gpl");
        QTest::newRow("Photoshop") << PaintModel::PaletteFile::aco << QStringLiteral("aco");
    }
    void palettesAreExchanged() {
        QFETCH(PaintModel::PaletteFile, file);
        QFETCH(QString, extension);
        Studio studio;
        const Palette& neon = builtIn("Neon Night");
        studio.model.selectPalette(neon.id);
        studio.desktop.savePaths = {studio.path(QStringLiteral("neon"))};
        studio.model.exportPalette(file);
        QCOMPARE(studio.desktop.proposedNames.back(), QStringLiteral("Neon Night.") + extension);
        QCOMPARE(studio.model.hud(), QStringLiteral("Exported neon.") + extension);
        const QString damaged = studio.path(QStringLiteral("bad.aco"));
        writeFile(damaged, QByteArray("\0\1\0\5\0", 5));
        const QString path = studio.path(QStringLiteral("neon.") + extension);
        studio.desktop.openPaths = {{path, damaged, studio.path(QStringLiteral("missing.gpl"))}};
        studio.model.importPalette();
        QCOMPARE(studio.model.userPalettes().size(), std::size_t{1});
        const Palette& back = studio.model.currentPalette();
        QCOMPARE(back.colors, neon.colors);
        const QString name = file == PaintModel::PaletteFile::gpl ? neon.name : QStringLiteral("neon");
        QCOMPARE(back.name, name);
        QCOMPARE(studio.model.hud(), QStringLiteral("Imported 9 colors from %1").arg(name));
        QCOMPARE(stored(), studio.model.userPalettes());
        QCOMPARE(studio.desktop.asked.size(), std::size_t{2});
        QCOMPARE(studio.desktop.asked[0].title, QStringLiteral("Couldn't import bad.aco"));
        QCOMPARE(studio.desktop.asked[0].text,
                 QStringLiteral("This palette file can't be read: the file is cut short."));
        QCOMPARE(studio.desktop.asked[1].title, QStringLiteral("Couldn't import missing.gpl"));
        studio.desktop.savePaths = {studio.path(QStringLiteral("no such folder/a"))};
        studio.model.exportPalette(file);
        QCOMPARE(studio.desktop.asked.back().title, QStringLiteral("Couldn't export the palette"));
    }

    void aStoreThatCannotBeReadIsMovedAside() {
        Studio studio;
        const QByteArray damaged("[{\"name\": \"Years of work\"}]");
        writeFile(AppFolders::palettesFile(), damaged);
        PaintModel model(PaintModel::LoadStores::yes, studio.desktop, studio.store);
        QVERIFY(model.userPalettes().empty());
        QCOMPARE(bytesAt(AppFolders::palettesFile()), damaged);
        model.newPalette(QStringLiteral("New"), PaintModel::FromRecent::no);
        QCOMPARE(stored(), model.userPalettes());
        const QStringList kept =
            QDir(AppFolders::base()).entryList({QStringLiteral("My Palettes (unreadable*).json")});
        QCOMPARE(kept.size(), 1);
        QCOMPARE(bytesAt(QDir(AppFolders::base()).filePath(kept[0])), damaged);
    }
};

QIRN_TEST(tst_UserPalettes)
#include "tst_UserPalettes.moc"
