#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FileCalls.h"
#include "platform/files/ReadFile.h"
#include "platform/files/TemporaryFile.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <atomic>
#include <cerrno>
#include <thread>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

const QByteArray kOld(5000, 'o');
const QByteArray kNew(100'000, 'n');

QByteArray contentOf(const QString& path) {
    return QFile::exists(path) ? bytesAt(path) : QByteArray("(none)");
}

/// The error's number, or 0 when the file was written.
int errorOf(const QString& path, const FileCalls& calls = FileCalls::ofSystem()) {
    const FileCallsInstead inUse(calls);
    try {
        writeAtomically(path, bytesOf(kNew));
        return 0;
    } catch (const FileError& error) {
        return error.systemError();
    }
}

int failWith(int error) {
    errno = error;
    return -1;
}

/// Whether a system has unnamed files.
enum class Unnamed { all, noneToOpen, noneToLink };
constexpr std::pair<const char*, Unnamed> kSystems[] = {
    {"unnamed", Unnamed::all}, {"by name", Unnamed::noneToOpen}, {"no way to link", Unnamed::noneToLink}};

FileCalls callsWith(Unnamed unnamed) {
    FileCalls calls = FileCalls::ofSystem();
    if (unnamed == Unnamed::noneToOpen)
        calls.open = [](const char* path, int flags, mode_t mode) {
            return (flags & O_TMPFILE) == O_TMPFILE ? failWith(EOPNOTSUPP) : ::open(path, flags, mode);
        };
    if (unnamed == Unnamed::noneToLink) calls.link = [](auto...) { return failWith(ENOENT); };
    return calls;
}

} // namespace

/// What a save makes of links, modes, names and failing calls is told by the rows of tests/durability.
class tst_AtomicFile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void programsMayWriteOneFileAtOnce() {
        for (const auto& [system, unnamed] : kSystems) {
            FileCalls calls = callsWith(unnamed);
            calls.fsync = [](int) { return 0; }; // takes long
            const FileCallsInstead inUse(calls);
            std::atomic<int> failures = 0;
            const auto write = [&](char letter) {
                for (int i = 0; i < 100; ++i) {
                    try {
                        writeAtomically(at("picture"), bytesOf(QByteArray(1000, letter)));
                    } catch (const FileError&) {
                        ++failures;
                    }
                }
            };
            std::vector<std::thread> programs; // as good as others: a lock belongs to an open file
            for (const char letter : {'a', 'b', 'c', 'd', 'e'}) programs.emplace_back(write, letter);
            for (std::thread& program : programs) program.join();
            QCOMPARE(failures.load(), 0);
            const QByteArray content = contentOf(at("picture"));
            QCOMPARE(content, QByteArray(1000, content[0]));
            QCOMPARE(names(), QStringList("picture"));
        }
    }

    void whatEndedProgramsLeftIsRemoved() {
        const char *ours = ".picture.qirn-5456fc54-1", *another = ".picture 2.qirn-0dc0ffee-1",
                   *longest = ".picture.qirn-5456fc54-0123456789ab", *old = ".qirn-0123456789ab",
                   *user = ".notes.qirn-x";
        for (const char* name : {ours, another, longest, old, user}) writeFile(at(name), kOld);
        const int writing = ::open(QFile::encodeName(at(another)).constData(), O_WRONLY | O_CLOEXEC);
        QVERIFY(::flock(writing, LOCK_EX) == 0);
        QCOMPARE(errorOf(at("picture")), 0);
        QVERIFY(!QFile::exists(at(ours)) && QFile::exists(at(longest)));
        sweepTemporaries(folder_->path());
        QCOMPARE(names(), QStringList({user, another, "picture"}));
        ::close(writing);
        sweepTemporaries(folder_->path());
        QCOMPARE(names(), QStringList({user, "picture"}));
        // Long names that begin alike, also within a character.
        for (const char end : {'1', '2'}) {
            const QString longName = u'x' + QString(125, u'Ä') + u'.' + QChar(end);
            FileCalls calls = callsWith(Unnamed::noneToOpen);
            calls.rename = [](auto...) { return failWith(EIO); };
            calls.unlink = [](auto...) { return failWith(EIO); };
            QCOMPARE(errorOf(folder_->filePath(longName), calls), EIO);
        }
        const QStringList left = names().filter("Ä");
        QVERIFY(left.size() == 2 && left[0].startsWith(".x" + QString(49, u'Ä') + ".qirn-"));
    }

    void onlyFilesThatFitIntoMemoryAreRead() {
        writeFile(at("file"), kNew);
        const auto answer = [this](const char* name, int64_t most = kNew.size()) {
            try {
                return QString(readFile(at(name), most) == kNew ? "read" : "other");
            } catch (const ReadError& error) {
                return error.description();
            }
        };
        QCOMPARE(answer("file"), "read");
        QCOMPARE(answer("file", kNew.size() - 1), "The file is too large for the memory that is free.");
        QVERIFY(readFile("/proc/self/status").contains("VmPeak")); // it says that it is empty
    }

private:
    QString at(const char* name) const { return folder_->filePath(QString::fromUtf8(name)); }
    QStringList names() const {
        return QDir(folder_->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

QIRN_TEST(tst_AtomicFile)
#include "tst_AtomicFile.moc"
