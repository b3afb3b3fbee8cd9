#include "app/desktop/Trash.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FileCalls.h"
#include "platform/files/FilePath.h"
#include "support/FileFaults.h"
#include "support/Studio.h"

#include <QDateTime>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

const QString kName = "Ä 100%.qirnpaint";

QStringList namesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

class tst_Trash : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> world_;

    QString at(const QString& name) const { return world_->filePath(name); }
    QString made() const { // a file with content of its own
        static int count = 0;
        const QString path = at("disk/copy");
        writeFile(path, QByteArray::number(++count));
        return path;
    }
    int errorOf(const FileCalls& calls) const {
        const FileCallsInstead inUse(calls);
        try {
            moveToTrash(made(), kName, "/b c");
            return 0;
        } catch (const FileError& error) {
            return error.systemError();
        }
    }
    /// As if the folder were where another disk is mounted.
    FileCalls withDisk() const {
        FileCalls calls = FileCalls::ofSystem();
        calls.stat = [disk = QFile::encodeName(at("disk")).toStdString()](const char* path,
                                                                          struct stat* facts) {
            const int result = ::stat(path, facts);
            if (std::string(path).starts_with(disk)) ++facts->st_dev;
            return result;
        };
        return calls;
    }

private Q_SLOTS:
    void aDocumentInATrashIsUnsaved() {
        Studio studio; // whose data folder is "data"
        PaintDocument doc(30, 20, 72, PaintColor::white());
        const QByteArray file = PaintFile::encode(doc);
        for (const auto& [folder, isTrash] : {std::pair{"data/Trash/files", true},
                                              {"data/Trash/files/a folder/files", true},
                                              {"disk/.Trash-7/files", true},
                                              {"disk/.Trash/7/files", true},
                                              {"disk/Trash/files", false}, // no record can be beside it
                                              {"disk/.Trash/files", false}}) {
            const QString place = studio.path(folder), link = place + ".qirnpaint";
            QVERIFY(QDir().mkpath(place) && (!isTrash || QDir().mkpath(place + "/../info")));
            for (const QByteArray name : {"Sea.qirnpaint", "S\xe9.qirnpaint"}) {
                const QString path = place + u'/' + pathFromBytes(name);
                writeAtomically(path, bytesOf(file));
                studio.model.files().open(path);
                QCOMPARE(studio.session().fileURL.isEmpty() && studio.session().isDirty(), isTrash);
                QCOMPARE(studio.desktop.usedFile == path, !isTrash);
            }
            QVERIFY(QFile::link(place + "/Sea.qirnpaint", link));
            studio.model.files().open(link);
            QCOMPARE(studio.session().fileURL.isEmpty(), isTrash);
        }
    }

    void init() {
        world_ = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkpath(at("disk")) && QDir().mkpath(at("data")));
        qputenv("XDG_DATA_HOME", QFile::encodeName(at("data")));
    }

    void aFileGoesWhereItCanBeTakenBack() {
        const QString files = at("data/Trash/files/"), infos = at("data/Trash/info/");
        QVERIFY(QDir().mkpath(files));
        writeFile(files + QStringLiteral("Ä 100% 2.qirnpaint"), "of another program, without a record");
        for (const char* name : {"Ä 100%.qirnpaint", "Ä 100% 3.qirnpaint"}) {
            const QString path = made();
            const QByteArray content = bytesAt(path);
            moveToTrash(path, kName, "/b c");
            QVERIFY(!QFile::exists(path));
            QCOMPARE(bytesAt(files + name), content);
            const QByteArray info = bytesAt(infos + name + ".trashinfo");
            QVERIFY2(info.startsWith("[Trash Info]\nPath=/b%20c/%C3%84%20100%25.qirnpaint\nDeletionDate=20"),
                     info.constData());
            const auto date =
                QDateTime::fromString(QString::fromLatin1(info.trimmed().right(19)), Qt::ISODate);
            QVERIFY(std::abs(date.secsTo(QDateTime::currentDateTime())) < 60);
        }
        QCOMPARE(bytesAt(files + QStringLiteral("Ä 100% 2.qirnpaint")).left(2), QByteArray("of"));
        const QString longest = QString(127, u'Ä') + QStringLiteral("🎨.qirnpaint");
        for (int i = 0; i < 2; ++i) moveToTrash(made(), longest, "/b");
        QCOMPARE(namesIn(files).filter(QRegularExpression("^Ä{100,}( 2)?\\.qirnpaint$")).size(), 2);
        struct stat facts {};
        QCOMPARE(stat(QFile::encodeName(infos).constData(), &facts), 0);
        QCOMPARE(facts.st_mode & 07777, mode_t{0700});
    }

    void whatFailsLeavesTheFile() {
        for (const char* call : {"stat", "lstat", "mkdir", "open", "write", "rename"}) {
            init();
            int failures = 0;
            QCOMPARE(errorOf(withEachCall(FileCalls::ofSystem(),
                                          [&](const char* name) {
                                              const bool fails = qstrcmp(name, call) == 0;
                                              failures += fails;
                                              return fails ? EACCES : 0;
                                          })),
                     EACCES);
            QCOMPARE(failures, qstrcmp(call, "rename") == 0 ? 2 : 1); // only this, and no other name is tried
            QVERIFY(QFile::exists(at("disk/copy")));
            QVERIFY(namesIn(at("data/Trash/info")).isEmpty() && namesIn(at("data/Trash/files")).isEmpty());
            QCOMPARE(errorOf(FileCalls::ofSystem()), 0);
        }
    }

    void anotherDiskHasItsOwn() {
        for (const int mode : {0, 01777, 0777, -1}) { // of a common Trash; -1: a link, 0: none
            init();
            const bool isCommon = mode == 01777;
            const QByteArray common = QFile::encodeName(at("disk/.Trash"));
            if (mode > 0)
                QVERIFY(mkdir(common.constData(), 0777) == 0 &&
                        chmod(common.constData(), static_cast<mode_t>(mode)) == 0);
            if (mode < 0) QCOMPARE(symlink("/tmp", common.constData()), 0);
            const QString user = QString::number(getuid());
            const QString trash = at(isCommon ? "disk/.Trash/" + user : "disk/.Trash-" + user);
            {
                const FileCallsInstead inUse(withDisk());
                moveToTrash(made(), kName, at("disk/in"));
                moveToTrash(made(), kName, "/b");
            }
            QCOMPARE(namesIn(trash + "/files").size(), 2);
            QVERIFY(bytesAt(trash + "/info/" + kName + ".trashinfo").contains("\nPath=in/%C3%84"));
            QVERIFY(bytesAt(trash + "/info/Ä 100% 2.qirnpaint.trashinfo").contains("\nPath=/b/"));
            if (isCommon) continue;
            // Under a name that another has taken nothing is put.
            QVERIFY(QDir(trash).removeRecursively());
            QCOMPARE(symlink("/tmp", QFile::encodeName(trash).constData()), 0);
            QCOMPARE(errorOf(withDisk()), EACCES);
        }
    }
};

QIRN_TEST(tst_Trash)
#include "tst_Trash.moc"
