#include "AppFolders.h"
#include "Recovery.h"
#include "Trash.h"
#include "formats/native/PaintFile.h"
#include "platform/AtomicFile.h"
#include "platform/Bytes.h"
#include "support/NativeFiles.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr auto kWait = Recovery::Synchronously::yes;

void put(const QString& path, const QByteArray& bytes) {
    writeAtomically(path, bytesOf(bytes));
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::unique_ptr<DocSession> changedSession(const QString& name = QStringLiteral("Ébauche ✏️")) {
    return std::make_unique<DocSession>(richDocument(), name, QUrl(), QUuid::createUuid(),
                                        DocSession::Dirty::yes);
}

QStringList copiesOnDisk() {
    return QDir(AppFolders::autosave()).entryList(QDir::Files | QDir::Hidden);
}

/// The files in the Trash of this test's data folder.
QStringList trashed() {
    return QDir(qEnvironmentVariable("XDG_DATA_HOME") + "/Trash/files").entryList(QDir::Files);
}

QString errorOf(const Recovery::Item& item) {
    try {
        Recovery::restore(item);
        return {};
    } catch (const DescribedError& error) {
        return error.description();
    }
}

} // namespace

/// Each test has a data folder of its own, beside which nothing may appear.
class tst_Recovery : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() {
        world_ = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(world_->path()).mkpath(QStringLiteral("cwd")));
        qputenv("XDG_DATA_HOME", QFile::encodeName(world_->filePath(QStringLiteral("data"))));
        // Files go to the Trash of the home folder only when they lie on its disk.
        qputenv("HOME", QFile::encodeName(world_->path()));
        before_ = QDir::currentPath();
        QVERIFY(QDir::setCurrent(world_->filePath(QStringLiteral("cwd"))));
    }
    void cleanup() {
        QVERIFY(QDir::current().isEmpty());
        AppFolders::setBaseOverride({});
        QDir::setCurrent(before_);
        world_.reset();
    }

    void foldersAreMadeWhereTheyBelong();
    void anOverrideLeavesTheRealFolderAlone();
    void aCopyOutlivesACrash();
    void theRecordIsPlainJSON();
    void copiesOfOpenPicturesAreNotOffered();
    void aRecoveredPictureIsTheSameAndUnsaved();
    void aCopyKeepsItsMomentWhilePaintingGoesOn();
    void theNewestCopyComesFirst();
    void aCopyWithoutItsRecordIsListed_data();
    void aCopyWithoutItsRecordIsListed();
    void whatIsNoCopyIsIgnored();
    void aDiscardComesAfterAPendingWrite();
    void aDamagedCopyIsListedAndRefusedInWords();
    void aFailedWriteIsLoggedAndNothingElse();
    void aDiscardedCopyCanGoToTheTrash();
    void withoutATrashNothingIsLost();

private:
    std::unique_ptr<QTemporaryDir> world_;
    QString before_;
};

void tst_Recovery::foldersAreMadeWhereTheyBelong() {
    const QString base = world_->filePath(QStringLiteral("data/Qirn Paint"));
    QCOMPARE(AppFolders::autosave(), base + "/Autosave");
    QVERIFY(QDir(base + "/Autosave").exists());
    QCOMPARE(AppFolders::brushesFile(), base + "/My Brushes.json");
    QCOMPARE(AppFolders::palettesFile(), base + "/My Palettes.json");
}

void tst_Recovery::anOverrideLeavesTheRealFolderAlone() {
    const QString other = world_->filePath(QStringLiteral("other"));
    AppFolders::setBaseOverride(other);
    for (const QString& path : {AppFolders::base(), AppFolders::autosave(), AppFolders::brushesFile(),
                                AppFolders::palettesFile()}) {
        QVERIFY2(path.startsWith(other), qPrintable(path));
    }
    Recovery::write(*changedSession(), kWait);
    QCOMPARE(Recovery::pending({}).size(), std::size_t{1});
    QVERIFY(!QDir(world_->filePath(QStringLiteral("data"))).exists());
}

void tst_Recovery::aCopyOutlivesACrash() {
    auto session = changedSession();
    const QUuid id = session->id;
    QVERIFY(Recovery::pending({}).empty());
    Recovery::write(*session, kWait);
    QCOMPARE(session->autosavedChange, session->doc().changeCount());
    QVERIFY(session->lastAutosave.isValid());
    session.reset(); // never closed

    const std::vector<Recovery::Item> items = Recovery::pending({});
    QCOMPARE(items.size(), std::size_t{1});
    QCOMPARE(items[0].id, id);
    QCOMPARE(items[0].file, Recovery::fileURL(id));
    QCOMPARE(items[0].info.name, QStringLiteral("Ébauche ✏️"));
    QVERIFY(!items[0].info.originalPath);
    QCOMPARE(items[0].info.width, 300);
    QCOMPARE(items[0].info.height, 200);
    QCOMPARE(items[0].info.layers, 3);
    QVERIFY(items[0].info.date.secsTo(QDateTime::currentDateTime()) < 60);
    QCOMPARE(items[0].thumbnail().size(), QSize(300, 200));
}

void tst_Recovery::theRecordIsPlainJSON() {
    const auto session = changedSession(QStringLiteral("Sea"));
    session->fileURL = QUrl::fromLocalFile(QStringLiteral("/home/a b/Sea.qirnpaint"));
    Recovery::write(*session, kWait);
    const QString upper = session->id.toString(QUuid::WithoutBraces).toUpper();
    QCOMPARE(copiesOnDisk(), QStringList({upper + ".json", upper + ".qirnpaint"}));
    const QByteArray text = contentOf(Recovery::infoURL(session->id));
    QVERIFY2(text.startsWith("{\"name\":\"Sea\",\"originalPath\":\"/home/a b/Sea.qirnpaint\",\"date\":\"20"),
             text.constData());
    QVERIFY2(text.endsWith("Z\",\"width\":300,\"height\":200,\"layers\":3}"), text.constData());
    QCOMPARE(Recovery::pending({})[0].info.originalPath, QStringLiteral("/home/a b/Sea.qirnpaint"));
}

void tst_Recovery::copiesOfOpenPicturesAreNotOffered() {
    const auto open = changedSession();
    const auto lost = changedSession(QStringLiteral("Lost"));
    Recovery::write(*open, kWait);
    Recovery::write(*lost, kWait);
    const auto items = Recovery::pending({open->id});
    QCOMPARE(items.size(), std::size_t{1});
    QCOMPARE(items[0].id, lost->id);
    QVERIFY(Recovery::pending({open->id, lost->id}).empty());
}

void tst_Recovery::aRecoveredPictureIsTheSameAndUnsaved() {
    const auto session = changedSession();
    session->fileURL = QUrl::fromLocalFile(QStringLiteral("/somewhere/Picture.qirnpaint"));
    Recovery::write(*session, kWait);
    const SessionRef restored = Recovery::restore(Recovery::pending({})[0]);
    QCOMPARE(restored->doc().fingerprint(), session->doc().fingerprint());
    QCOMPARE(restored->name, QStringLiteral("Ébauche ✏️ (recovered)"));
    QVERIFY(restored->isDirty());
    QVERIFY(restored->fileURL.isEmpty());
    QCOMPARE(restored->id, session->id); // so that later copies replace this one
    QCOMPARE(copiesOnDisk().size(), 2);
}

void tst_Recovery::aCopyKeepsItsMomentWhilePaintingGoesOn() {
    const auto session = changedSession();
    const uint64_t moment = session->doc().fingerprint();
    Recovery::write(*session, Recovery::Synchronously::no);
    for (int i = 0; i < 50; ++i) {
        paintRect(session->doc(), session->doc().layer(0), {i, i, 100, 100}, {9, 8, 7, 255});
        session->doc().commit(QStringLiteral("Paint"));
    }
    Recovery::discard(QUuid::createUuid(), Recovery::MoveToTrash::no); // waits for the write
    QCOMPARE(PaintFile::decode(bytesOf(contentOf(Recovery::fileURL(session->id))))->fingerprint(), moment);
}

void tst_Recovery::theNewestCopyComesFirst() {
    const auto session = changedSession();
    Recovery::write(*session, kWait);
    const QByteArray copy = contentOf(Recovery::fileURL(session->id));
    for (const char* date : {"2024-05-01T00:00:00Z", "2026-01-01T00:00:00Z", "2025-12-31T23:59:59Z"}) {
        const QUuid id = QUuid::createUuid();
        put(Recovery::fileURL(id), copy);
        put(Recovery::infoURL(id), QByteArray("{\"layers\":1,\"name\":\"") + date + "\",\"date\":\"" + date +
                                       "\",\"width\":1,\"height\":1}");
    }
    QStringList names;
    for (const auto& item : Recovery::pending({session->id})) names << item.info.name;
    QCOMPARE(names, QStringList({"2026-01-01T00:00:00Z", "2025-12-31T23:59:59Z", "2024-05-01T00:00:00Z"}));
}

void tst_Recovery::aCopyWithoutItsRecordIsListed_data() {
    QTest::addColumn<QByteArray>("record");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("empty") << QByteArray("{}");
    QTest::newRow("cut") << QByteArray("{\"name\":\"x\",\"date\":\"2026-01-");
    QTest::newRow("wrong type") << QByteArray(
        "{\"name\":7,\"date\":\"2026-01-01T00:00:00Z\",\"width\":1,\"height\":1,\"layers\":1}");
    QTest::newRow("no date") << QByteArray(
        "{\"name\":\"x\",\"date\":\"\",\"width\":1,\"height\":1,\"layers\":1}");
}

void tst_Recovery::aCopyWithoutItsRecordIsListed() {
    QFETCH(QByteArray, record);
    const auto session = changedSession();
    Recovery::write(*session, kWait);
    QVERIFY(QFile::remove(Recovery::infoURL(session->id)));
    if (!record.isEmpty()) put(Recovery::infoURL(session->id), record);
    QFile copy(Recovery::fileURL(session->id));
    const QDateTime then(QDate(2025, 6, 7), QTime(8, 9, 10));
    QVERIFY(copy.open(QIODevice::ReadWrite) && copy.setFileTime(then, QFileDevice::FileModificationTime));
    copy.close();

    const auto items = Recovery::pending({});
    QCOMPARE(items.size(), std::size_t{1});
    QCOMPARE(items[0].info.name, QStringLiteral("Recovered picture"));
    QVERIFY(!items[0].info.originalPath);
    QCOMPARE(items[0].info.date, then);
    QCOMPARE(items[0].info.width + items[0].info.height + items[0].info.layers, 0);
    QVERIFY(!items[0].thumbnail().isNull());
    QCOMPARE(Recovery::restore(items[0])->doc().fingerprint(), session->doc().fingerprint());
}

void tst_Recovery::whatIsNoCopyIsIgnored() {
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    for (const QString& name :
         QStringList{"My picture.qirnpaint", '{' + id + "}.qirnpaint", id + ".old.qirnpaint", id + ".png",
                     id + ".json", id, ".qirnpaint", id.left(35) + ".qirnpaint"}) {
        put(AppFolders::autosave() + '/' + name, "x");
    }
    QVERIFY(QDir(AppFolders::autosave()).mkdir(id + ".qirnpaint"));
    QVERIFY(Recovery::pending({}).empty());
    QVERIFY(QDir(AppFolders::autosave()).removeRecursively());
    QVERIFY(Recovery::pending({}).empty());
}

void tst_Recovery::aDiscardComesAfterAPendingWrite() {
    const auto session =
        std::make_unique<DocSession>(randomDocument(1200, 900, 4, 3), QStringLiteral("Large"));
    for (int i = 0; i < 3; ++i) Recovery::write(*session, Recovery::Synchronously::no);
    Recovery::discard(session->id, Recovery::MoveToTrash::no);
    QCOMPARE(copiesOnDisk(), QStringList());
}

void tst_Recovery::aDamagedCopyIsListedAndRefusedInWords() {
    const auto session = changedSession();
    Recovery::write(*session, kWait);
    const QString path = Recovery::fileURL(session->id);
    const QByteArray whole = contentOf(path);
    put(path, whole.left(200));
    const Recovery::Item item = Recovery::pending({})[0];
    QVERIFY(item.thumbnail().isNull());
    QCOMPARE(errorOf(item), damaged("manifest size"));
    QVERIFY(QFile::remove(path)); // gone since the list was made
    QVERIFY(item.thumbnail().isNull());
    QVERIFY(errorOf(item).contains(QStringLiteral("No such file")));
}

void tst_Recovery::aFailedWriteIsLoggedAndNothingElse() {
    AppFolders::setBaseOverride(world_->filePath(QStringLiteral("full")));
    put(world_->filePath(QStringLiteral("full")), "a file where the folder should be");
    const auto session = changedSession();
    QTest::ignoreMessage(QtWarningMsg, "Qirn Paint autosave failed: The folder does not exist.");
    Recovery::write(*session, kWait);
    QCOMPARE(session->autosavedChange, session->doc().changeCount()); // not again before the next change
    Recovery::discard(session->id, Recovery::MoveToTrash::yes);
    QVERIFY(Recovery::pending({}).empty());
}

void tst_Recovery::aDiscardedCopyCanGoToTheTrash() {
    AppFolders::setBaseOverride(
        world_->filePath(QStringLiteral("elsewhere"))); // the data folder is not there yet
    const auto session = changedSession();
    Recovery::write(*session, kWait);
    const QByteArray copy = contentOf(Recovery::fileURL(session->id));
    Recovery::discard(session->id, Recovery::MoveToTrash::yes);
    QCOMPARE(copiesOnDisk(), QStringList());
    const QString name = QFileInfo(Recovery::fileURL(session->id)).fileName();
    QCOMPARE(trashed().size(), 2);
    QCOMPARE(contentOf(qEnvironmentVariable("XDG_DATA_HOME") + "/Trash/files/" + name), copy);

    Recovery::write(*session, kWait);
    Recovery::discard(session->id, Recovery::MoveToTrash::no);
    QCOMPARE(copiesOnDisk(), QStringList());
    QCOMPARE(trashed().size(), 2);
}

void tst_Recovery::withoutATrashNothingIsLost() {
    const QString path = world_->filePath(QStringLiteral("picture"));
    put(path, "work");
    put(world_->filePath(QStringLiteral("a file")), {});
    qputenv("XDG_DATA_HOME", QFile::encodeName(world_->filePath(QStringLiteral("a file/data"))));
    QVERIFY(!moveToTrash(path));
    QCOMPARE(contentOf(path), QByteArray("work"));

    // The Trash cannot be made either where a file has its name.
    QVERIFY(QDir(world_->path()).mkpath(QStringLiteral("data")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(world_->filePath(QStringLiteral("data"))));
    put(world_->filePath(QStringLiteral("data/Trash")), {});
    QVERIFY(!moveToTrash(path));
    QCOMPARE(contentOf(path), QByteArray("work"));
    QVERIFY(!moveToTrash(world_->filePath(QStringLiteral("nothing there"))));
}

QIRN_TEST(tst_Recovery)
#include "tst_Recovery.moc"
