#include "core/PaintDocument.h"
#include "core/SeededRandom.h"
#include "formats/native/PaintFile.h"
#include "platform/AtomicFile.h"
#include "platform/Bytes.h"
#include "platform/ReadFile.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <functional>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr int kKills = 200;
constexpr int kMostLeft = 25; // killed between taking a name and the next step, where a busy machine may rest
constexpr int64_t kLongestLife = 12'000; // microseconds after the first save
constexpr uid_t kNobody = 65534;

const QByteArray kOld(50'000, 'o');
const QByteArray kNew(3'000'000, 'n');

// What a child process tells when it is no error's number.
constexpr int kCannotBeMade = 255;
constexpr int kOldFileHarmed = 254;
constexpr int kSomethingLeft = 253;
constexpr int kUnexpected = 252;

/// What goes wrong beneath the writing: limits, rights and mounts, which end with the process that has them. False
/// where this machine does not let it be made.
using Trouble = std::function<bool(const QString& path)>;

QByteArray folderOf(const QString& path) {
    return QFile::encodeName(QFileInfo(path).path());
}

QStringList namesBeside(const QString& path) {
    return QFileInfo(path).dir().entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                           QDir::NoDotAndDotDot);
}

/// A disk of which no file may have more.
bool limitFiles(const QString&) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100'000, 100'000};
    return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

/// A folder that another owns; root, who may do anything, becomes nobody.
bool takeRightsAway(const QString& path) {
    return chmod(folderOf(path).constData(), 0555) == 0 &&
           (geteuid() != 0 || (setgid(kNobody) == 0 && setuid(kNobody) == 0));
}

/// Who this process is where it may mount as it likes: the same as outside.
bool mapIds(uid_t user, gid_t group) {
    const auto put = [](const char* path, const QByteArray& text) {
        QFile file(QString::fromLatin1(path));
        return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(text) == text.size();
    };
    const auto same = [](unsigned id) {
        return QByteArray::number(id) + ' ' + QByteArray::number(id) + " 1";
    };
    return put("/proc/self/setgroups", "deny") && put("/proc/self/uid_map", same(user)) &&
           put("/proc/self/gid_map", same(group));
}

/// Mounts that only this process sees; a plain user may have them where the system allows it.
bool ownMounts() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0) return false;
    if (user != 0 && !mapIds(user, group)) return false;
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool useSmallDisk(const QString& path) {
    if (!ownMounts() || mount("small", folderOf(path).constData(), "tmpfs", 0, "size=1m") != 0) return false;
    writeAtomically(path, bytesOf(kOld));
    return true;
}

bool useReadOnlyDisk(const QString& path) {
    const QByteArray folder = folderOf(path);
    return ownMounts() && mount(folder.constData(), folder.constData(), nullptr, MS_BIND, nullptr) == 0 &&
           mount(nullptr, folder.constData(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
}

/// Writes over the old file; the error's number, 0 when it was written, or one of the above.
int writeInTrouble(const QString& path, const Trouble& trouble) {
    if (!trouble(path)) return kCannotBeMade;
    try {
        writeAtomically(path, bytesOf(kNew));
        return 0;
    } catch (const FileError& error) {
        if (readFile(path) != kOld) return kOldFileHarmed;
        return namesBeside(path).size() == 1 ? error.systemError() : kSomethingLeft;
    }
}

/// The result of a function that runs in a process of its own.
int inChild(const std::function<int()>& body) {
    const pid_t child = fork();
    if (child == 0) {
        try {
            _exit(body());
        } catch (...) {
            _exit(kUnexpected); // nothing may get back into the test
        }
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Saves one file after the other, telling of each save by a byte, until it is killed.
[[noreturn]] void saveForever(const QString& path, const std::array<QByteArray, 2>& files,
                              const FileCalls& calls, int progress) {
    for (std::size_t i = 1;; ++i) {
        try {
            writeAtomically(path, bytesOf(files[i % 2]), calls);
        } catch (const FileError&) {
            _exit(1);
        }
        if (write(progress, ".", 1) != 1) _exit(1);
    }
}

/// Lets a child save and kills it after some microseconds; the number of saves that it ended, or a negative one.
int saveAndKill(const QString& path, const std::array<QByteArray, 2>& files, const FileCalls& calls,
                int64_t life) {
    int ends[2];
    if (pipe(ends) != 0) return -1;
    const pid_t child = fork();
    if (child == 0) saveForever(path, files, calls, ends[1]);
    close(ends[1]);
    char progress[256];
    int saves = read(ends[0], progress, 1) == 1 ? 1 : -1;
    const timespec time{0, life * 1000};
    nanosleep(&time, nullptr);
    kill(child, SIGKILL);
    int status = 0;
    const bool wasKilled = waitpid(child, &status, 0) == child && WIFSIGNALED(status);
    for (ssize_t count; (count = read(ends[0], progress, sizeof progress)) > 0;)
        saves += static_cast<int>(count);
    close(ends[0]);
    return wasKilled ? saves : -1;
}

} // namespace

class tst_SafeSave : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        path_ = folder_->filePath(QStringLiteral("picture.qirnpaint"));
        writeAtomically(path_, bytesOf(kOld));
        // Others may write the file: what is refused to them is a new one beside it.
        QVERIFY(chmod(folderOf(path_).constData(), 0777) == 0);
        QVERIFY(chmod(QFile::encodeName(path_).constData(), 0666) == 0);
    }

    void aSaveThatFailsLeavesTheOldFileWhole_data();
    void aSaveThatFailsLeavesTheOldFileWhole();
    void aSaveThatIsKilledLeavesTheOldFileOrTheNew_data();
    void aSaveThatIsKilledLeavesTheOldFileOrTheNew();

private:
    std::unique_ptr<QTemporaryDir> folder_;
    QString path_;
};

void tst_SafeSave::aSaveThatFailsLeavesTheOldFileWhole_data() {
    QTest::addColumn<Trouble>("trouble");
    QTest::addColumn<int>("error");
    QTest::newRow("files may not grow") << Trouble(limitFiles) << EFBIG;
    QTest::newRow("full disk") << Trouble(useSmallDisk) << ENOSPC;
    QTest::newRow("read-only disk") << Trouble(useReadOnlyDisk) << EROFS;
    QTest::newRow("folder of another") << Trouble(takeRightsAway) << EACCES;
}

void tst_SafeSave::aSaveThatFailsLeavesTheOldFileWhole() {
    QFETCH(Trouble, trouble);
    QFETCH(int, error);
    const int result = inChild([&] { return writeInTrouble(path_, trouble); });
    QVERIFY(chmod(folderOf(path_).constData(), 0777) == 0);
    // Mounts need rights that containers and some desktops withhold; the limit on files can be set everywhere.
    if (result == kCannotBeMade && trouble.target<bool (*)(const QString&)>() &&
        *trouble.target<bool (*)(const QString&)>() != limitFiles)
        QSKIP("Mounting, or becoming another user, is not allowed to this user on this machine.");
    QCOMPARE(result, error);
    QCOMPARE(readFile(path_), kOld);
    QCOMPARE(namesBeside(path_).size(), 1);
    // Nothing stays that would refuse the next save.
    writeAtomically(path_, bytesOf(kNew));
    QCOMPARE(readFile(path_), kNew);
}

void tst_SafeSave::aSaveThatIsKilledLeavesTheOldFileOrTheNew_data() {
    QTest::addColumn<bool>("unnamed");
    QTest::newRow("through a file without a name") << true;
    QTest::newRow("where there are no such files") << false;
}

void tst_SafeSave::aSaveThatIsKilledLeavesTheOldFileOrTheNew() {
    QFETCH(bool, unnamed);
    FileCalls calls = FileCalls::ofSystem();
    const auto openNamed = [](const char* path, int flags, mode_t mode) {
        errno = EOPNOTSUPP;
        return (flags & O_TMPFILE) == O_TMPFILE ? -1 : ::open(path, flags, mode);
    };
    if (!unnamed) {
        calls.open = openNamed;
    } else if (const int file = ::open(folderOf(path_).constData(), O_TMPFILE | O_WRONLY, 0600); file >= 0) {
        ::close(file);
    } else {
        QSKIP("The file system of the temporary folder has no files without a name.");
    }
    std::array<QByteArray, 2> files;
    std::array<uint64_t, 2> fingerprints;
    for (std::size_t i = 0; i < 2; ++i) {
        const auto doc = randomDocument(400, 300, 1, i + 1);
        files[i] = PaintFile::encode(*doc);
        fingerprints[i] = doc->fingerprint();
    }
    QVERIFY(fingerprints[0] != fingerprints[1]);
    SeededRandom random(1);
    int saves = 0;
    int left = 0;
    std::array<int, 2> found{};
    for (int i = 0; i < kKills; ++i) {
        writeAtomically(path_, bytesOf(files[0]));
        const auto life = static_cast<int64_t>(random.unit() * kLongestLife);
        const int count = saveAndKill(path_, files, calls, life);
        QVERIFY2(count > 0, "the child did not save");
        saves += count;
        const QByteArray file = readFile(path_);
        const std::size_t which = file == files[1] ? 1 : 0;
        QVERIFY2(file == files[which], qPrintable(QStringLiteral("neither file after %1 saves").arg(count)));
        QCOMPARE(PaintFile::decode(bytesOf(file))->fingerprint(), fingerprints[which]);
        ++found[which];
        // What a killed save was writing can be told by its name, and stands in nobody's way.
        for (const QString& name : namesBeside(path_)) {
            if (name == QFileInfo(path_).fileName()) continue;
            QVERIFY2(QRegularExpression(QStringLiteral("^\\.qirn-[0-9a-f]{12}$")).match(name).hasMatch(),
                     qPrintable(name));
            QVERIFY(QFile::remove(folder_->filePath(name)));
            ++left;
        }
    }
    qInfo("%d saves, %d kills, %d files left beside; the first file found %d times, the second %d times",
          saves, kKills, left, found[0], found[1]);
    QVERIFY(saves >= kKills && found[0] > 0 && found[1] > 0);
    QVERIFY2(unnamed ? left <= kMostLeft : left > 0, qPrintable(QString::number(left)));
}

QIRN_TEST(tst_SafeSave)
#include "tst_SafeSave.moc"
