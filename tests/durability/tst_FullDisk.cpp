#include "durability/Row.h"
#include "durability/Writers.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr int64_t kPage = 4096;

void put(const char* path, const QByteArray& text) {
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0) return;
    [[maybe_unused]] const ssize_t written =
        ::write(file, text.constData(), static_cast<std::size_t>(text.size()));
    ::close(file);
}

/// Mounts a small disk in memory where only this process sees it. False where that is not allowed.
bool mountDisk(const QByteArray& folder) {
    const uid_t user = ::getuid();
    const gid_t group = ::getgid();
    if (::unshare(CLONE_NEWNS) < 0) { // as nobody special, in a space where this user is root
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) < 0) return false;
        put("/proc/self/setgroups", "deny");
        put("/proc/self/uid_map", "0 " + QByteArray::number(user) + " 1");
        put("/proc/self/gid_map", "0 " + QByteArray::number(group) + " 1");
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("disk", folder.constData(), "tmpfs", 0, "size=4m") == 0;
}

/// Fills the disk but for so many pages. The file goes with the descriptor.
int fillBut(const QByteArray& folder, int64_t pages) {
    const int file = ::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    struct statvfs disk {};
    if (file >= 0 && ::statvfs(folder.constData(), &disk) == 0) {
        const auto bytes =
            static_cast<int64_t>(disk.f_bfree) * static_cast<int64_t>(disk.f_frsize) - pages * kPage;
        if (bytes > 0 && ::posix_fallocate(file, 0, bytes) != 0) std::puts("cannot be filled");
    }
    return file;
}

/// Each writer on a disk with 0, 1, 2... pages left, until it has room enough: FOLDER STEP.
int writesOnFullDisks(const QStringList& arguments) {
    const QByteArray folder = QFile::encodeName(arguments[0]);
    if (!mountDisk(folder)) {
        std::puts("not allowed");
        return 0;
    }
    qputenv("TMPDIR", folder);
    qInstallMessageHandler([](auto...) {}); // of copies that fail
    int64_t full = 0;
    for (const Writer& writer : kWriters) {
        for (const System system : kSystems) {
            const Reference reference = referenceOf(writer, system);
            for (int64_t pages = 0;; pages += arguments[1].toLongLong()) {
                WritingWorld world;
                const FileCallsInstead fast(callsOf(system));
                writer.prepare(world);
                finishWriting();
                const int filler = fillBut(folder, pages);
                const Told told = writer.write(world);
                finishWriting();
                ::close(filler);
                const QString content = writer.content(world.folder.path());
                const QString wrong = wrongIn(reference, told, content);
                if (!wrong.isEmpty())
                    std::printf("%s, %d pages: %s\n", writer.name, static_cast<int>(pages),
                                qPrintable(wrong));
                if (told.isDone == false && writer.isOfPicture && !world.session().isDirty())
                    std::printf("%s, %d pages: counts as saved\n", writer.name, static_cast<int>(pages));
                if (content == reference.after && told.isDone != false) break;
                ++full;
            }
        }
    }
    std::printf("%lld\n", static_cast<long long>(full));
    return 0;
}
QIRN_HELPER(writesOnFullDisks)

} // namespace

class tst_FullDisk : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theOldContentStaysOrTheNewIsWhole() {
        const QTemporaryDir folder, disk;
        QProcess process;
        startHelper(process, QStringLiteral("writesOnFullDisks"),
                    isLongForm() ? QStringList{disk.path(), "1", "--", "long"}
                                 : QStringList{disk.path(), "5"},
                    folder.path());
        const QByteArray said = nextLine(process, 600'000).value_or("nothing");
        // A disk of a few kilobytes has to be mounted, for which the system wants root or name spaces of the user's own. The
        // row of failing calls has every writer meet ENOSPC all the same.
        if (said == "not allowed") {
            tellRow(QStringLiteral("really full disk"), 0, QStringLiteral("not tried"),
                    QStringLiteral("this user may not mount a disk"));
            QSKIP("This user may not mount a disk.");
        }
        QVERIFY(process.waitForFinished(60'000));
        bool isNumber = false;
        const int64_t full = said.toLongLong(&isNumber);
        QVERIFY2(isNumber && full > 30, (said + '\n' + process.readAllStandardOutput()).constData());
        tellRow(QStringLiteral("really full disk in steps of %1 KB, %2 writers")
                    .arg(isLongForm() ? 4 : 20)
                    .arg(kWriters.size()),
                full,
                QStringLiteral(
                    "0 false successes; the old content, or the new one whole; pictures still changed"),
                QStringLiteral("a disk in memory (tmpfs)"));
    }
};

QIRN_TEST(tst_FullDisk)
#include "tst_FullDisk.moc"
