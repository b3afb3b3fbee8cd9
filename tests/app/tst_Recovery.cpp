#include "app/desktop/AppFolders.h"
#include "app/desktop/BackgroundQueue.h"
#include "app/files/CopyFiles.h"
#include "app/files/CopyLock.h"
#include "app/files/DocSession.h"
#include "app/files/Recovery.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FilePath.h"
#include "support/FileFaults.h"
#include "support/Files.h"
#include "support/NativeFiles.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <sys/stat.h>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr auto kWait = Recovery::Synchronously::yes;

std::unique_ptr<DocSession> changedSession(const QString& name = "Ébauche ✏️") {
    auto document = richDocument();
    document->commit("Paint");
    return std::make_unique<DocSession>(std::move(document), name, QUrl(), QUuid::createUuid(),
                                        DocSession::Dirty::yes);
}

/// What its program leaves behind when it ends with a copy written.
std::unique_ptr<DocSession> endedSession(const QString& name = "Ébauche ✏️") {
    auto session = changedSession(name);
    Recovery::write(*session, kWait);
    session->copy.files.reset();
    return session;
}

QStringList namesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden);
}

QStringList copiesOnDisk() {
    return namesIn(AppFolders::autosave());
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
        qputenv("XDG_DATA_HOME", QFile::encodeName(world_->filePath("data")));
    }
    void cleanup() { AppFolders::setBaseOverride({}); }

    void foldersAreMadeWhereTheyBelong() {
        const QString other = world_->filePath("other");
        AppFolders::setBaseOverride(other);
        Recovery::write(*changedSession(), kWait);
        QVERIFY(!QDir(world_->filePath("data")).exists());
        for (const QString& base : {other, world_->filePath("data/Qirn Paint")}) {
            QCOMPARE(AppFolders::autosave(), base + "/Autosave");
            QVERIFY(QDir(base + "/Autosave").exists());
            for (const QString& file : {AppFolders::brushesFile(), AppFolders::palettesFile()})
                QVERIFY(file.startsWith(base + "/My "));
            AppFolders::setBaseOverride({});
        }
    }

    void aCopyOutlivesACrash() {
        auto session = changedSession();
        const QUuid id = session->id;
        const uint64_t committed = session->doc().fingerprint();
        const int64_t change = session->doc().changeCount();
        session->fileURL = QUrl::fromLocalFile("/home/a b/Sea.qirnpaint");
        const auto paint = [&](int at) {
            paintRect(session->doc(), session->doc().layer(0), {at, at, 100, 100}, {9, 8, 7, 255});
        };
        paint(0); // a stroke under way, which the copy leaves out
        Recovery::write(*session, Recovery::Synchronously::no);
        for (int i = 0; i < 50; ++i) { // and what is painted while it is written
            paint(i);
            session->doc().commit("Paint");
        }
        BackgroundQueue::files().finish();
        QVERIFY(!Recovery::isUpToDate(*session) && Recovery::settle(*session));
        QVERIFY(session->lastAutosave.isValid() && session->autosavedChange == change);
        const QString upper = id.toString(QUuid::WithoutBraces).toUpper();
        QCOMPARE(copiesOnDisk(), QStringList({upper + ".json", upper + ".lock", upper + ".qirnpaint"}));
        const QByteArray text = bytesAt(Recovery::infoURL(id));
        QVERIFY2(text.startsWith("{\"name\":\"Ébauche ✏️\",\"originalPath\":\"/home/a "
                                 "b/Sea.qirnpaint\",\"originalStamp\":[0,0,0],\"date\":\"20"),
                 text.constData());
        QVERIFY2(text.endsWith("Z\",\"width\":300,\"height\":200,\"layers\":3}"), text.constData());
        session.reset(); // never closed

        const std::vector<Recovery::Item> items = Recovery::pending({});
        QCOMPARE(items.size(), std::size_t{1});
        QCOMPARE(items[0].id, id);
        QCOMPARE(items[0].info.name, "Ébauche ✏️");
        QCOMPARE(items[0].info.originalPath, "/home/a b/Sea.qirnpaint");
        QCOMPARE(QList<int64_t>({items[0].info.width, items[0].info.height, items[0].info.layers}),
                 QList<int64_t>({300, 200, 3}));
        QVERIFY(items[0].info.date.secsTo(QDateTime::currentDateTime()) < 60);
        QCOMPARE(items[0].thumbnail().size(), QSize(300, 200));
        const SessionRef restored = Recovery::restore(items[0]);
        QCOMPARE(restored->doc().fingerprint(), committed);
        QCOMPARE(restored->name, "Ébauche ✏️ (recovered)");
        QVERIFY(restored->isDirty() && restored->fileURL.isEmpty());
        QCOMPARE(restored->id, id); // so that later copies replace this one
        QCOMPARE(copiesOnDisk().size(), 3);
    }

    void whatAnotherHasOpenIsNotOffered() {
        // Whoever asks here is to the lock as another program would be.
        const auto open = changedSession();
        auto lost = changedSession("Lost");
        const QUuid id = lost->id;
        for (const auto& session : {std::cref(open), std::cref(lost)}) Recovery::write(*session.get(), kWait);
        QVERIFY(Recovery::pending({}).empty());
        lost.reset();
        writeFile(AppFolders::autosave() + "/killed before its copy.lock", {});
        QVERIFY(Recovery::pending({id}).empty());
        auto items = Recovery::pending({});
        QCOMPARE(items.size(), std::size_t{1});
        QCOMPARE(items[0].id, id);
        QVERIFY(Recovery::pending({}).empty()); // one program offers it at a time
        SessionRef restored = Recovery::restore(items[0]);
        QVERIFY(Recovery::isUpToDate(*restored));
        items.clear();
        QVERIFY(Recovery::pending({}).empty());
        QCOMPARE(copiesOnDisk().filter(".lock").size(), 2);

        // A picture whose copy another has got hold of writes no more over it.
        auto other = CopyLock::take(QString(Recovery::fileURL(id)).replace(".qirnpaint", ".lock"));
        QVERIFY(!other);
        restored->copy.files.reset();
        other = CopyLock::take(QString(Recovery::fileURL(id)).replace(".qirnpaint", ".lock"));
        QVERIFY(other && other->isHeld());
        const QByteArray copy = bytesAt(Recovery::fileURL(id));
        paintRect(restored->doc(), restored->doc().layer(0), {0, 0, 9, 9}, {9, 8, 7, 255});
        restored->doc().commit("Paint");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Qirn Paint autosave failed: "));
        Recovery::write(*restored, kWait);
        QVERIFY(!Recovery::isUpToDate(*restored));
        QCOMPARE(bytesAt(Recovery::fileURL(id)), copy);
    }

    void theNewestCopyComesFirst() {
        const auto session = endedSession();
        for (const char* date : {"2004-05-01T00:00:00Z", "2036-01-01T00:00:00Z", "2005-12-31T23:59:59Z"}) {
            const QUuid id = QUuid::createUuid();
            writeFile(Recovery::fileURL(id), bytesAt(Recovery::fileURL(session->id)));
            writeFile(Recovery::infoURL(id), QByteArray("{\"layers\":1,\"name\":\"") + date +
                                                 "\",\"date\":\"" + date + "\",\"width\":1,\"height\":1}");
        }
        QStringList years;
        for (const auto& item : Recovery::pending({})) years << item.info.name.left(4);
        QCOMPARE(years, QStringList({"2036", "Ébau", "2005", "2004"}));
    }

    void aCopyWithoutItsRecordIsListed() {
        for (const char* record :
             {"", "{}", "a pipe", "{\"name\":\"x\",\"date\":\"2026-01-",
              "{\"name\":7,\"date\":\"2026-01-01T00:00:00Z\",\"width\":1,\"height\":1,\"layers\":1}",
              "{\"name\":\"x\",\"date\":\"\",\"width\":1,\"height\":1,\"layers\":1}"}) {
            init();
            const auto session = endedSession();
            QVERIFY(QFile::remove(Recovery::infoURL(session->id)));
            if (*record) writeFile(Recovery::infoURL(session->id), record);
            if (*record == 'a')
                QVERIFY(QFile::remove(Recovery::infoURL(session->id)) &&
                        ::mkfifo(QFile::encodeName(Recovery::infoURL(session->id)).constData(), 0600) == 0);
            QFile copy(Recovery::fileURL(session->id));
            const QDateTime then(QDate(2025, 6, 7), QTime(8, 9, 10));
            QVERIFY(copy.open(QIODevice::ReadWrite) &&
                    copy.setFileTime(then, QFileDevice::FileModificationTime));
            copy.close();

            const auto items = Recovery::pending({});
            QVERIFY2(items.size() == 1 && items[0].info.name == "Recovered picture", record);
            QVERIFY(!items[0].info.originalPath);
            QCOMPARE(items[0].info.date, then);
            QCOMPARE(items[0].info.width + items[0].info.height + items[0].info.layers, 0);
            QVERIFY(!items[0].thumbnail().isNull());
            QCOMPARE(Recovery::restore(items[0])->doc().fingerprint(), session->doc().fingerprint());
        }
    }

    void whatIsNoCopyIsIgnored() {
        const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        for (const QString& name :
             QStringList{"My picture.qirnpaint", '{' + id + "}.qirnpaint", id + ".old.qirnpaint", id + ".png",
                         id + ".json", id, ".qirnpaint", id.left(35) + ".qirnpaint"}) {
            writeFile(AppFolders::autosave() + '/' + name, "x");
        }
        QVERIFY(QDir(AppFolders::autosave()).mkdir(id + ".qirnpaint"));
        const QString itself = Recovery::fileURL(QUuid::createUuid());
        QVERIFY(QFile::link(itself, itself));
        QVERIFY(Recovery::pending({}).empty());
        QVERIFY(QDir(AppFolders::autosave()).removeRecursively());
        QVERIFY(Recovery::pending({}).empty());
    }

    void aDiscardComesAfterAPendingWrite() {
        const auto session = std::make_unique<DocSession>(randomDocument(1200, 900, 4, 3), "Large");
        for (int round = 0; round < 2; ++round) { // and the next copy after the discard
            for (int i = 0; i < 3; ++i) Recovery::write(*session, Recovery::Synchronously::no);
            Recovery::discard(*session);
        }
        BackgroundQueue::files().finish();
        QVERIFY(!Recovery::settle(*session) && !session->lastAutosave.isValid());
        QCOMPARE(copiesOnDisk(), QStringList());
    }

    void aCopyIsNeverWithoutItsRecord() {
        const auto session = changedSession();
        const QString copy = Recovery::fileURL(session->id), record = Recovery::infoURL(session->id);
        bool isBare = false;
        const FileCallsInstead watched(withEachCall(FileCalls::ofSystem(), [&](const char*) {
            isBare |= QFile::exists(copy) && !QFile::exists(record);
            return 0;
        }));
        Recovery::write(*session, kWait);
        session->name = "Renamed";
        Recovery::write(*session, kWait);
        QVERIFY(bytesAt(record).contains("Renamed"));
        Recovery::discard(*session);
        BackgroundQueue::files().finish();
        QVERIFY(!isBare && copiesOnDisk().isEmpty());
    }

    void whatIsLeftOfACopyIsSweptAndNothingWhereNobodyKnows() {
        const auto living = changedSession("Living");
        for (const bool hasLocks : {false, true}) {
            std::optional<FileCallsInstead> calls;
            if (!hasLocks) {
                calls.emplace(withEachCall(FileCalls::ofSystem(), [](const char* name) {
                    return qstrcmp(name, "flock") == 0 ? ENOLCK : 0;
                }));
            }
            Recovery::write(*living, kWait);
            const auto ended = endedSession();
            for (const QUuid& id : {living->id, ended->id}) QVERIFY(QFile::remove(Recovery::fileURL(id)));
            QVERIFY(Recovery::pending({}).empty());
            QVERIFY(QFile::exists(Recovery::infoURL(living->id)));
            QCOMPARE(QFile::exists(Recovery::infoURL(ended->id)), !hasLocks);
            const auto copied = endedSession();
            {
                const FileCallsInstead blind(withEachCall(FileCalls::ofSystem(), [](const char* name) {
                    return qstrcmp(name, "lstat") == 0 ? EIO : 0;
                }));
                QVERIFY(Recovery::pending({}).empty()); // what cannot be seen may be there
            }
            QVERIFY(QFile::exists(Recovery::infoURL(copied->id)));
            const auto items = Recovery::pending({});
            QVERIFY(items.size() == 1 && items[0].mayBeOpenElsewhere() == !hasLocks);
            QVERIFY(QFile::remove(items[0].file));
            Recovery::write(*living, kWait);
            Recovery::discard(*living);
            BackgroundQueue::files().finish();
            QVERIFY(!QFile::exists(Recovery::lockURL(living->id)));
            calls.reset();
        }
    }

    void whatIsClearedAwayComesBack() {
        const auto session = changedSession();
        for (const bool isAll : {false, true}) {
            Recovery::write(*session, kWait);
            if (isAll) QVERIFY(QDir(AppFolders::base()).removeRecursively());
            if (!isAll) QVERIFY(QFile::remove(Recovery::lockURL(session->id)));
            Recovery::write(*session, kWait);
            QCOMPARE(copiesOnDisk().size(), 3);
            QVERIFY(Recovery::pending({}).empty()); // it is open
        }
        QVERIFY(QFile::remove(Recovery::fileURL(session->id)));
        Recovery::moveToTrash(*session);
        QCOMPARE(copiesOnDisk(), QStringList());
    }

    void aCopyOfWhatWasSavedSinceSaysSo() {
        for (const int kind : {0, 1, 2, 3}) {
            const bool isFirstSave = kind % 2, isEarly = kind / 2;
            init();
            const QString path = pathFromBytes(bytesOfPath(world_->path()) + "/Sea \xff.qirnpaint");
            auto session = changedSession();
            if (!isFirstSave) {
                writeAtomically(path, bytesOf(QByteArray("as it was")));
                session->fileURL = QUrl::fromLocalFile(path);
            }
            // Also where the save comes while the copy is being written.
            Recovery::write(*session, isEarly ? Recovery::Synchronously::no : kWait);
            session->copy.files->noteSaving(path);
            BackgroundQueue::files().finish();
            session.reset(); // killed in the save
            QVERIFY(!Recovery::pending({})[0].info.isSavedSince());
            writeAtomically(path, bytesOf(QByteArray("saved"))); // or just after it
            const Recovery::Item item = Recovery::pending({})[0];
            QVERIFY(item.info.isSavedSince());
            QCOMPARE(Recovery::restore(item)->originalPath, path);
        }
    }

    void aDamagedCopyIsListedAndRefusedInWords() {
        const QString path = Recovery::fileURL(endedSession()->id);
        writeFile(path, bytesAt(path).left(200));
        const Recovery::Item item = Recovery::pending({})[0];
        QVERIFY(item.thumbnail().isNull());
        QCOMPARE(errorOf(item), damaged("manifest size"));
        {
            const FileCallsInstead refused(withEachCall(FileCalls::ofSystem(), [](const char* name) {
                return qstrcmp(name, "open") == 0 ? EACCES : 0;
            }));
            QCOMPARE(errorOf(item), "Permission denied");
        }
        QVERIFY(QFile::remove(path)); // gone since the list was made
        QVERIFY(item.thumbnail().isNull());
        QVERIFY(errorOf(item).contains("No such file"));
    }

    void unsavedWorkGoesToTheTrashUnderItsName() {
        const auto session = changedSession("A/B");
        session->fileURL = QUrl::fromLocalFile("/home/a b/old.qirnpaint");
        const QDateTime before = QDateTime::currentDateTime();
        Recovery::moveToTrash(*session); // there was no copy yet
        QCOMPARE(copiesOnDisk(), QStringList());
        const QString name = "A-B (autosaved " + QLocale().toString(before, "d MMM hh.mm") + ").qirnpaint";
        const QString trash = qEnvironmentVariable("XDG_DATA_HOME") + "/Trash";
        QCOMPARE(namesIn(trash + "/files"), QStringList(name));
        QCOMPARE(PaintFile::decode(bytesOf(bytesAt(trash + "/files/" + name)))->fingerprint(),
                 session->doc().fingerprint());
        QVERIFY(bytesAt(trash + "/info/" + name + ".trashinfo").contains("Path=/home/a%20b/A-B%20%28"));

        // As it was when its program ended, at the time of that copy, where pictures are.
        endedSession("Lost");
        Recovery::Item item = Recovery::pending({})[0];
        item.info.date = QDateTime(QDate(2025, 11, 22), QTime(0, 30));
        Recovery::moveToTrash(item);
        const QString lostName =
            "Lost (autosaved " + QLocale().toString(item.info.date, "d MMM hh.mm") + ").qirnpaint";
        QVERIFY(namesIn(trash + "/files").contains(lostName));
        const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
        QVERIFY(bytesAt(trash + "/info/" + lostName + ".trashinfo")
                    .contains("Path=" + pictures.toUtf8().toPercentEncoding("/") + "/Lost"));
    }

private:
    std::unique_ptr<QTemporaryDir> world_;
};

QIRN_TEST(tst_Recovery)
#include "tst_Recovery.moc"
