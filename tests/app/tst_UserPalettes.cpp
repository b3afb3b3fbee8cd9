#include "app/model/Palettes.h"
#include "formats/palettes/PaletteLibrary.h"
#include "platform/Bytes.h"
#include "support/Studio.h"

#include <algorithm>

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
std::vector<Palette> stored(Studio& studio) {
    studio.model.palettes().flush();
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
        } cases[] = {{[](PaintModel& m) { m.palettes().addToPalette(PaintColor(0.2, 0.4, 0.6)); }, 13,
                      "Basic (my copy)"},
                     {[](PaintModel& m) { m.palettes().removeFromPalette(0); }, 11, "Basic (my copy)"},
                     {[](PaintModel& m) { m.palettes().moveInPalette(2, 5); }, 12, "Basic (my copy)"},
                     {[](PaintModel& m) { m.palettes().renamePalette("Ma pálette"); }, 12, "Ma pálette"}};
        for (const auto& [edit, colors, name] : cases) {
            Studio studio;
            const Palette before = builtIn("Basic");
            studio.model.palettes().selectPalette(before.id);
            edit(studio.model);
            QCOMPARE(builtIn("Basic"), before);
            const Palette own = studio.model.palettes().currentPalette();
            QCOMPARE(own.name, name);
            QCOMPARE(own.colors.size(), colors);
            QVERIFY(!own.isBuiltIn && own.id != before.id);
            QCOMPARE(stored(studio), std::vector<Palette>{own});
            // The copy itself is edited in place.
            for (int i = 0; i < 2; ++i) studio.model.palettes().addToPalette(PaintColor::black());
            QCOMPARE(studio.model.palettes().userPalettes().size(), std::size_t{1});
            QCOMPARE(studio.model.palettes().currentPalette().id, own.id);
            QCOMPARE(studio.model.palettes().currentPalette().colors.size(), colors + 2);
            QCOMPARE(stored(studio), studio.model.palettes().userPalettes());
        }
    }

    void newPalettesHoldWhatIsInHand() {
        Studio studio;
        studio.model.colors().pick(PaintColor(1, 0, 0), Colors::AddRecent::yes);
        studio.model.colors().pick(PaintColor(0, 1, 0), Colors::AddRecent::yes);
        studio.model.palettes().newPalette({}, Palettes::FromRecent::no);
        QCOMPARE(studio.model.palettes().currentPalette().name, "My Palette");
        QCOMPARE(studio.model.palettes().currentPalette().colors,
                 (std::vector<PaletteColor>{{PaintColor(0, 1, 0), QString()}}));
        studio.model.palettes().newPalette("Recent", Palettes::FromRecent::yes);
        QCOMPARE(studio.model.palettes().currentPalette().colors,
                 (std::vector<PaletteColor>{{PaintColor(0, 1, 0), {}}, {PaintColor(1, 0, 0), {}}}));
        QCOMPARE(studio.model.palettes().allPalettes().size(), PaletteLibrary::builtIn().size() + 2);
        // Both come back, and the chosen one is chosen.
        studio.model.flushState();
        const PaintModel again(PaintModel::LoadStores::yes, studio.desktop, studio.store);
        QCOMPARE(again.palettes().userPalettes(), studio.model.palettes().userPalettes());
        QCOMPARE(again.palettes().currentPalette(), studio.model.palettes().currentPalette());
        for (const char* gone : {"1B671A64-40D5-491E-99B0-DA01FF1F3341", "no id"}) {
            studio.store.setText("qirn.pt.palette", gone);
            const PaintModel model(PaintModel::LoadStores::yes, studio.desktop, studio.store);
            QCOMPARE(model.palettes().currentPalette(), PaletteLibrary::builtIn().front());
        }
    }

    void deletingAsksAndFallsBack() {
        Studio studio;
        studio.model.palettes().removeFromPalette(99); // edits that are none make no copy
        for (const auto& [from, to] : {std::pair{99, 0}, {0, 99}, {2, 2}})
            studio.model.palettes().moveInPalette(static_cast<std::size_t>(from),
                                                  static_cast<std::size_t>(to));
        studio.model.palettes().renamePalette({});
        studio.model.palettes().deletePalette(); // a built-in one stays
        QVERIFY(studio.model.palettes().userPalettes().empty() && studio.desktop.asked.empty());
        QVERIFY(!QFile::exists(AppFolders::palettesFile()));
        studio.model.palettes().newPalette("Doomed", Palettes::FromRecent::no);
        studio.desktop.answers = {1, 0};
        studio.model.palettes().deletePalette();
        QCOMPARE(studio.model.palettes().userPalettes().size(), std::size_t{1});
        studio.model.palettes().deletePalette();
        QCOMPARE(studio.desktop.asked.back().title, "Delete the palette \"Doomed\"?");
        QCOMPARE(studio.desktop.asked.back().text,
                 "Only this color palette is removed. Your pictures are not changed.");
        QVERIFY(studio.model.palettes().userPalettes().empty() && stored(studio).empty());
        QCOMPARE(studio.model.palettes().currentPalette(), PaletteLibrary::builtIn().front());
        QCOMPARE(QUuid(*studio.store.text("qirn.pt.palette")), PaletteLibrary::builtIn().front().id);
    }

    void palettesAreExchanged() {
        for (const auto& [file, extension] : {std::pair{Palettes::PaletteFile::gpl, QString("gpl")},
                                              {Palettes::PaletteFile::aco, QString("aco")}}) {
            Studio studio;
            const Palette& neon = builtIn("Neon Night");
            studio.model.palettes().selectPalette(neon.id);
            studio.desktop.savePaths = {studio.path("neon")};
            studio.model.palettes().exportPalette(file);
            QCOMPARE(studio.desktop.proposedNames.back(), QStringLiteral("Neon Night.") + extension);
            QCOMPARE(studio.model.messages().hud(), QStringLiteral("Exported neon.") + extension);
            const QString damaged = studio.path("bad.aco");
            writeFile(damaged, QByteArray("\0\1\0\5\0", 5));
            const QString path = studio.path(QStringLiteral("neon.") + extension);
            studio.desktop.openPaths = {{path, damaged, studio.path("missing.gpl")}, {path, path}};
            studio.model.palettes().importPalette();
            QCOMPARE(studio.model.palettes().userPalettes().size(), std::size_t{1});
            const Palette& back = studio.model.palettes().currentPalette();
            QCOMPARE(back.colors, neon.colors);
            const QString name = file == Palettes::PaletteFile::gpl ? neon.name : QStringLiteral("neon");
            QCOMPARE(back.name, name);
            const QString told = QStringLiteral("Imported %1 colors from %2");
            QCOMPARE(studio.model.messages().hud(), told.arg(9).arg(name));
            QCOMPARE(stored(studio), studio.model.palettes().userPalettes());
            QCOMPARE(studio.desktop.asked.size(), std::size_t{2});
            QCOMPARE(studio.desktop.asked[0].title, "Couldn't import bad.aco");
            QCOMPARE(studio.desktop.asked[0].text, "This palette file can't be read: the file is cut short.");
            QCOMPARE(studio.desktop.asked[1].title, "Couldn't import missing.gpl");
            studio.model.palettes().importPalette();
            QCOMPARE(studio.model.messages().hud(), told.arg(18).arg(name + ", " + name));
            studio.desktop.savePaths = {studio.path("no such folder/a")};
            studio.model.palettes().exportPalette(file);
            QCOMPARE(studio.desktop.asked.back().title, "Couldn't export the palette");
        }
    }
};

QIRN_TEST(tst_UserPalettes)
#include "tst_UserPalettes.moc"
