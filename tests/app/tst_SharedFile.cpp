#include "app/files/UserPalettes.h"
#include "core/SeededRandom.h"
#include "platform/Bytes.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/TestMain.h"

#include <map>
#include <set>

#include <QDir>
#include <QTemporaryDir>

using namespace qirn;
using namespace qirn::test;

namespace {

using Names = std::map<QUuid, QString>;

Names namesIn(const std::vector<Palette>& palettes) {
    Names names;
    for (const Palette& palette : palettes) names[palette.id] = palette.name;
    return names;
}

} // namespace

class tst_SharedFile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nothingOfTwoWritersIsLostAndNothingComesBack() {
        for (uint64_t seed = 0; seed < 15; ++seed) {
            const QTemporaryDir folder;
            const QString path = folder.filePath("list.json");
            SeededRandom random(seed);
            const auto among = [&](std::size_t count) {
                return std::min(static_cast<std::size_t>(random.unit() * double(count)), count - 1);
            };
            UserPaletteFile writers[]{UserPaletteFile(path), UserPaletteFile(path)};
            Names expected;
            std::set<QUuid> made[2];
            for (int step = 0; step < 80; ++step) {
                const std::size_t who = among(2);
                UserPaletteFile& writer = writers[who];
                auto& list = writer.edit();
                Palette* const one = list.empty() ? nullptr : &list[among(list.size())];
                // Of one that both change the later writer's stays: here none is.
                const bool isLatest = one && expected.contains(one->id) && expected[one->id] == one->name;
                switch (among(8)) {
                case 0:
                case 1:
                    list.push_back({QUuid::createUuid(), QString::number(step), {}, false});
                    made[who].insert(list.back().id);
                    expected[list.back().id] = list.back().name;
                    break;
                case 2:
                    if (!isLatest || !made[who].contains(one->id)) break;
                    expected[one->id] = one->name = QString::number(step);
                    break;
                case 3:
                    if (!isLatest) break;
                    expected.erase(one->id);
                    list.erase(list.begin() + (one - list.data()));
                    break;
                case 4:
                    writer.write();
                    break;
                case 5:
                    QCoreApplication::processEvents();
                    break;
                case 6: {
                    const FullDisk full;
                    writer.flush();
                    break;
                }
                default:
                    writer.flush();
                }
            }
            for (UserPaletteFile& writer : writers) writer.flush();
            const auto stored = UserPaletteFormat::decode(bytesOf(bytesAt(path)));
            QVERIFY2(namesIn(stored.value_or(UserPaletteFormat::empty())) == expected,
                     qPrintable(QString::number(seed)));
            // What others have added is there for a program that writes, and in the same order.
            writers[0].edit().push_back({QUuid::createUuid(), "last", {}, false});
            writers[0].flush();
            QCOMPARE(*writers[0], *UserPaletteFormat::decode(bytesOf(bytesAt(path))));
        }
    }

    void ofAnIdThatStandsTwiceBothEntriesStay() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("list.json");
        const Palette palette{QUuid::createUuid(), "One", {}, false}, same{palette.id, "Other", {}, false};
        writeFile(path, PaletteStore::encode(std::vector{palette, same, palette}));
        UserPaletteFile one(path), two(path);
        one.load();
        two.load();
        QCOMPARE(one->size(), std::size_t{3});
        one.edit()[1].name = "Changed";
        one.flush();
        two.edit()[2].name = "As well";
        two.flush();
        QStringList names;
        for (const Palette& read : *two) names << read.name;
        QCOMPARE(names, QStringList({"One", "Changed", "As well"}));
    }

    void whoRemovesTheFileOrBreaksItTakesNothingOut() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("list.json");
        UserPaletteFile file(path);
        for (const bool isBroken : {false, true}) {
            file.edit().push_back({QUuid::createUuid(), "One", {}, false});
            file.flush();
            if (isBroken)
                writeFile(path, "[{");
            else
                QVERIFY(QFile::remove(path));
            UserPaletteFile another(path);
            another.load();
            QVERIFY(another->empty());
            if (isBroken) QCOMPARE(bytesAt(path), QByteArray("[{")); // until something is written
            file.edit().push_back({QUuid::createUuid(), "Two", {}, false});
            file.flush();
            QCOMPARE(*UserPaletteFormat::decode(bytesOf(bytesAt(path))), *file);
        }
        QCOMPARE(file->size(), std::size_t{4});
        const QStringList kept = QDir(folder.path()).entryList({"list (unreadable, *).json"});
        QVERIFY(kept.size() == 1 && bytesAt(folder.filePath(kept[0])) == "[{");
    }
};

QIRN_TEST(tst_SharedFile)
#include "tst_SharedFile.moc"
