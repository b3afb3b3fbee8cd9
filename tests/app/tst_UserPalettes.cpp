#include "formats/palettes/PaletteLibrary.h"
#include "platform/Bytes.h"
#include "support/Studio.h"

#include <QFile>

using namespace qirn;
using namespace qirn::test;

namespace {

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
    void anEditOfABuiltInPaletteGoesToACopy() {
        const struct {
            void (*edit)(PaintModel&);
            std::size_t colors;
            const char* name;
        } cases[] = {
            {[](PaintModel& m) { m.addToPalette(PaintColor(0.2, 0.4, 0.6)); }, 13, "Basic (my copy)"},
            {[](PaintModel& m) { m.removeFromPalette(0); }, 11, "Basic (my copy)"},
            {[](PaintModel& m) { m.renamePalette("Ma pálette"); }, 12, "Ma pálette"}};
        for (const auto& [edit, colors, name] : cases) {
            Studio studio;
            const Palette before = builtIn("Basic");
            studio.model.selectPalette(before.id);
            edit(studio.model);
            QCOMPARE(builtIn("Basic"), before);
            const Palette own = studio.model.currentPalette();
            QCOMPARE(own.name, name);
            QCOMPARE(own.colors.size(), colors);
            QVERIFY(!own.isBuiltIn && own.id != before.id);
            QCOMPARE(stored(), std::vector<Palette>{own});
            // The copy itself is edited in place.
            for (int i = 0; i < 2; ++i) studio.model.addToPalette(PaintColor::black());
            QCOMPARE(studio.model.userPalettes().size(), std::size_t{1});
            QCOMPARE(studio.model.currentPalette().id, own.id);
            QCOMPARE(studio.model.currentPalette().colors.size(), colors + 2);
            QCOMPARE(stored(), studio.model.userPalettes());
        }
    }

    void newPalettesHoldWhatIsInHand() {
        Studio studio;
        studio.model.pick(PaintColor(1, 0, 0), PaintModel::AddRecent::yes);
        studio.model.pick(PaintColor(0, 1, 0), PaintModel::AddRecent::yes);
        studio.model.newPalette({}, PaintModel::FromRecent::no);
        QCOMPARE(studio.model.currentPalette().name, "My Palette");
        QCOMPARE(studio.model.currentPalette().colors,
                 (std::vector<PaletteColor>{{PaintColor(0, 1, 0), QString()}}));
        studio.model.newPalette("Recent", PaintModel::FromRecent::yes);
        QCOMPARE(studio.model.currentPalette().colors,
                 (std::vector<PaletteColor>{{PaintColor(0, 1, 0), {}}, {PaintColor(1, 0, 0), {}}}));
        QCOMPARE(studio.model.allPalettes().size(), PaletteLibrary::builtIn().size() + 2);
        // Both come back, and the chosen one is chosen.
        studio.model.saveState();
        const PaintModel again(PaintModel::LoadStores::yes, studio.desktop, studio.store);
        QCOMPARE(again.userPalettes(), studio.model.userPalettes());
        QCOMPARE(again.currentPalette(), studio.model.currentPalette());
        for (const char* gone : {"1B671A64-40D5-491E-99B0-DA01FF1F3341", "no id"}) {
            studio.store.setText("qirn.pt.palette", gone);
            const PaintModel model(PaintModel::LoadStores::yes, studio.desktop, studio.store);
            QCOMPARE(model.currentPalette(), PaletteLibrary::builtIn().front());
        }
    }

    void deletingAsksAndFallsBack() {
        Studio studio;
        studio.model.removeFromPalette(99); // edits that are none make no copy
        studio.model.renamePalette({});
        studio.model.deletePalette(); // a built-in one stays
        QVERIFY(studio.model.userPalettes().empty() && studio.desktop.asked.empty());
        QVERIFY(!QFile::exists(AppFolders::palettesFile()));
        studio.model.newPalette("Doomed", PaintModel::FromRecent::no);
        studio.desktop.answers = {1, 0};
        studio.model.deletePalette();
        QCOMPARE(studio.model.userPalettes().size(), std::size_t{1});
        studio.model.deletePalette();
        QCOMPARE(studio.desktop.asked.back().title, "Delete the palette \"Doomed\"?");
        QCOMPARE(studio.desktop.asked.back().text,
                 "Only this color palette is removed. Your pictures are not changed.");
        QVERIFY(studio.model.userPalettes().empty() && stored().empty());
        QCOMPARE(studio.model.currentPalette(), PaletteLibrary::builtIn().front());
        QCOMPARE(QUuid(*studio.store.text("qirn.pt.palette")), PaletteLibrary::builtIn().front().id);
    }

    void palettesAreExchanged() {
        for (const auto& [file, extension] : {std::pair{PaintModel::PaletteFile::gpl, QString("gpl")},
                                              {PaintModel::PaletteFile::aco, QString("aco")}}) {
            Studio studio;
            const Palette& neon = builtIn("Neon Night");
            studio.model.selectPalette(neon.id);
            studio.desktop.savePaths = {studio.path("neon")};
            studio.model.exportPalette(file);
            QCOMPARE(studio.desktop.proposedNames.back(), QStringLiteral("Neon Night.") + extension);
            QCOMPARE(studio.model.hud(), QStringLiteral("Exported neon.") + extension);
            const QString damaged = studio.path("bad.aco");
            writeFile(damaged, QByteArray("\0\1\0\5\0", 5));
            const QString path = studio.path(QStringLiteral("neon.") + extension);
            studio.desktop.openPaths = {{path, damaged, studio.path("missing.gpl")}};
            studio.model.importPalette();
            QCOMPARE(studio.model.userPalettes().size(), std::size_t{1});
            const Palette& back = studio.model.currentPalette();
            QCOMPARE(back.colors, neon.colors);
            const QString name = file == PaintModel::PaletteFile::gpl ? neon.name : QStringLiteral("neon");
            QCOMPARE(back.name, name);
            QCOMPARE(studio.model.hud(), QStringLiteral("Imported 9 colors from %1").arg(name));
            QCOMPARE(stored(), studio.model.userPalettes());
            QCOMPARE(studio.desktop.asked.size(), std::size_t{2});
            QCOMPARE(studio.desktop.asked[0].title, "Couldn't import bad.aco");
            QCOMPARE(studio.desktop.asked[0].text, "This palette file can't be read: the file is cut short.");
            QCOMPARE(studio.desktop.asked[1].title, "Couldn't import missing.gpl");
            studio.desktop.savePaths = {studio.path("no such folder/a")};
            studio.model.exportPalette(file);
            QCOMPARE(studio.desktop.asked.back().title, "Couldn't export the palette");
        }
    }
};

QIRN_TEST(tst_UserPalettes)
#include "tst_UserPalettes.moc"
