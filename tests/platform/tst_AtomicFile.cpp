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

mode_t modeOf(const QString& path) {
    struct stat facts {};
    return ::stat(QFile::encodeName(path).constData(), &facts) == 0 ? facts.st_mode & 07777 : 0;
}

int failWith(int error) {
    errno = error;
    return -1;
}

bool isUnnamed(int flags) {
    return (flags & O_TMPFILE) == O_TMPFILE; // it holds O_DIRECTORY
}

/// Whether the file system of a folder has unnamed files.
bool hasUnnamedFiles(const QString& folder) {
    const int file = ::open(QFile::encodeName(folder).constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    return file >= 0 && ::close(file) == 0;
}

/// Whether a system has unnamed files.
enum class Unnamed { all, noneToOpen, noneToLink };
constexpr std::pair<const char*, Unnamed> kSystems[] = {
    {"unnamed", Unnamed::all}, {"by name", Unnamed::noneToOpen}, {"no way to link", Unnamed::noneToLink}};

FileCalls callsWith(Unnamed unnamed) {
    FileCalls calls = FileCalls::ofSystem();
    if (unnamed == Unnamed::noneToOpen)
        calls.open = [](const char* path, int flags, mode_t mode) {
            return isUnnamed(flags) ? failWith(EOPNOTSUPP) : ::open(path, flags, mode);
        };
    if (unnamed == Unnamed::noneToLink) calls.link = [](auto...) { return failWith(ENOENT); };
    return calls;
}

} // namespace

class tst_AtomicFile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void aFileIsMadeOrReplaced() {
        const QString path = at("Ébauche ✏️.qirnpaint");
        writeAtomically(path, bytesOf(kOld));
        QCOMPARE(contentOf(path), kOld);
        writeAtomically(path, bytesOf(kNew));
        QCOMPARE(contentOf(path), kNew);
        writeAtomically(path, {});
        QCOMPARE(contentOf(path), QByteArray(""));
        const QString longest = at(QByteArray(255, 'x').constData());
        writeAtomically(longest, bytesOf(kNew));
        QCOMPARE(contentOf(longest), kNew);
        QCOMPARE(names().size(), 2);
    }

    void contentIsFlushedBeforeTheRenameAndTheFolderAfter() {
        for (const auto& [system, unnamed] : kSystems) {
            FileCalls calls = callsWith(unnamed);
            QStringList order;
            calls.fsync = [&order](int file) {
                struct stat facts {};
                ::fstat(file, &facts);
                order << (S_ISDIR(facts.st_mode)         ? "folder"
                          : facts.st_size == kNew.size() ? "content"
                                                         : "part");
                return ::fsync(file);
            };
            calls.link = [&order, link = calls.link](int file, const char* path) {
                order << "link";
                return link(file, path);
            };
            calls.rename = [&order](const char* from, const char* to) {
                order << "rename";
                return ::rename(from, to);
            };
            QCOMPARE(errorOf(at("picture"), calls), 0);
            const QStringList byName{"content", "rename", "folder"};
            if (unnamed == Unnamed::noneToOpen || !hasUnnamedFiles(folder_->path()))
                QCOMPARE(order, byName);
            else
                QCOMPARE(order, QStringList({"content", "link"}) + byName);
        }
    }

    void aNewNameThatCannotBeFlushedIsReported() {
        writeFile(at("picture"), kOld);
        FileCalls calls = FileCalls::ofSystem();
        int folderError = EIO;
        calls.fsync = [&](int file) {
            struct stat facts {};
            ::fstat(file, &facts);
            return S_ISDIR(facts.st_mode) ? failWith(folderError) : 0;
        };
        QCOMPARE(errorOf(at("picture"), calls), EIO);
        QCOMPARE(contentOf(at("picture")), kNew); // too late to go back, and the new file is whole
        QCOMPARE(names(), QStringList("picture"));
        folderError = EINVAL; // a file system that cannot flush folders
        QCOMPARE(errorOf(at("picture"), calls), 0);
    }

    void theModeIsKept() {
        for (const auto& [system, unnamed] : kSystems) {
            writeFile(at("picture"), kOld);
            for (const mode_t mode : {0600u, 0664u, 0640u}) {
                QCOMPARE(::chmod(QFile::encodeName(at("picture")).constData(), mode), 0);
                QCOMPARE(errorOf(at("picture"), callsWith(unnamed)), 0);
                QCOMPARE(modeOf(at("picture")), mode);
            }
            const mode_t before = ::umask(027);
            QCOMPARE(errorOf(at(system), callsWith(unnamed)), 0);
            ::umask(before);
            QCOMPARE(modeOf(at(system)), mode_t{0640});
        }
    }

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

    void aLinkStaysAndItsTargetIsReplaced() {
        QVERIFY(QDir(folder_->path()).mkpath("deep/deeper"));
        writeFile(at("deep/deeper/picture"), kOld);
        const auto link = [&](const char* target, const char* name) {
            QCOMPARE(::symlink(target, QFile::encodeName(at(name)).constData()), 0);
        };
        link("deeper/picture", "deep/relative");
        link("deep/relative", "link to a link");
        link("deep/not yet", "dangling");
        link("ring 2", "ring 1");
        link("ring 1", "ring 2");

        QCOMPARE(errorOf(at("link to a link")), 0);
        QCOMPARE(contentOf(at("deep/deeper/picture")), kNew);
        QVERIFY(QFileInfo(at("link to a link")).isSymLink() && QFileInfo(at("deep/relative")).isSymLink());
        QCOMPARE(errorOf(at("dangling")), 0);
        QCOMPARE(contentOf(at("deep/not yet")), kNew);
        QCOMPARE(errorOf(at("ring 1")), ELOOP);
    }

    void onlyFilesThatFitIntoMemoryAreRead() {
        QCOMPARE(::mkfifo(QFile::encodeName(at("pipe")).constData(), 0600),
                 0); // nobody will ever write to it
        writeFile(at("sparse"), {});
        QVERIFY(QFile::resize(at("sparse"), 100'000'000'000));
        writeFile(at("file"), kNew);
        const auto answer = [this](const char* name, int64_t most = kNew.size()) {
            try {
                return readFile(*name == '/' ? QString(name) : at(name), most) == kNew ? QString("read")
                                                                                       : QString("other");
            } catch (const ReadError& error) {
                return QString::number(error.systemError()) + ' ' + error.description();
            }
        };
        const QString tooLarge = "0 The file is too large for the memory that is free.";
        QCOMPARE(answer("file"), QString("read"));
        QCOMPARE(answer("file", kNew.size() - 1), tooLarge);
        QCOMPARE(answer("sparse", std::numeric_limits<int64_t>::max()), tooLarge);
        QCOMPARE(answer(""), QString("0 This is a folder."));
        for (const char* name : {"pipe", "/dev/zero"})
            QCOMPARE(answer(name), QString("0 This is a device or a pipe, not a file."));
        QVERIFY(answer("none").startsWith(QString::number(ENOENT)));
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
