// Not a test: a process that saves, for tst_SafeSave to kill or to put into trouble.
#include "SavingProcess.h"

#include "platform/AtomicFile.h"
#include "platform/Bytes.h"
#include "platform/ReadFile.h"

#include <cerrno>
#include <csignal>
#include <string_view>

#include <QFile>
#include <QFileInfo>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr uid_t kNobody = 65534;

/// Limits and rights, which end with the process that has them.
bool make(std::string_view trouble, const QString& path) {
    if (trouble == "limit") { // a disk of which no file may have more
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100'000, 100'000};
        return setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    // A folder that another owns; root, who may do anything, becomes nobody.
    return chmod(QFile::encodeName(QFileInfo(path).path()).constData(), 0555) == 0 &&
           (geteuid() != 0 || (setgid(kNobody) == 0 && setuid(kNobody) == 0));
}

/// The system's calls, of which the one of a number kills the process before it is made.
FileCalls killedBefore(int64_t number, bool unnamed) {
    FileCalls calls = FileCalls::ofSystem();
    const auto counted = [left = std::make_shared<int64_t>(number)](auto& call) {
        call = [left, made = call](auto... arguments) {
            if (--*left == 0) std::raise(SIGKILL);
            return made(arguments...);
        };
    };
    if (!unnamed) {
        calls.open = [](const char* path, int flags, mode_t mode) {
            errno = EOPNOTSUPP;
            return (flags & O_TMPFILE) == O_TMPFILE ? -1 : ::open(path, flags, mode);
        };
    }
    counted(calls.readlink);
    counted(calls.stat);
    counted(calls.access);
    counted(calls.open);
    counted(calls.fchmod);
    counted(calls.write);
    counted(calls.fsync);
    counted(calls.close);
    counted(calls.link);
    counted(calls.rename);
    counted(calls.unlink);
    return calls;
}

} // namespace

/// SavingProcess <path> <file with the bytes to save> kill <number> named|unnamed, or ... trouble <which>
int main(int argc, char** argv) {
    if (argc < 5) return kUnexpected;
    const QString path = QFile::decodeName(argv[1]);
    try {
        const QByteArray bytes = readFile(QFile::decodeName(argv[2])), old = readFile(path);
        if (argv[3] == std::string_view("kill")) {
            writeAtomically(path, bytesOf(bytes),
                            killedBefore(std::atoi(argv[4]), argv[5] == std::string_view("unnamed")));
            return 0;
        }
        if (!make(argv[4], path)) return kUnexpected;
        try {
            writeAtomically(path, bytesOf(bytes));
            return 0;
        } catch (const FileError& error) {
            if (readFile(path) != old) return kOldFileHarmed;
            return error.systemError();
        }
    } catch (...) {
        return kUnexpected;
    }
}
