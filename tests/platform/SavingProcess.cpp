// Not a test: a process that saves, for tst_SafeSave to kill.
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FileCalls.h"
#include "platform/files/ReadFile.h"
#include "support/FileFaults.h"

#include <cerrno>
#include <csignal>
#include <string_view>

#include <QFile>
#include <fcntl.h>

using namespace qirn;

namespace {

/// The system's calls, of which the one of a number kills the process before it is made.
FileCalls killedBefore(int64_t number, bool unnamed) {
    FileCalls calls = FileCalls::ofSystem();
    if (!unnamed) {
        calls.open = [](const char* path, int flags, mode_t mode) {
            errno = EOPNOTSUPP;
            return (flags & O_TMPFILE) == O_TMPFILE ? -1 : ::open(path, flags, mode);
        };
    }
    return test::withEachCall(calls, [left = std::make_shared<int64_t>(number)](const char*) {
        if (--*left == 0) std::raise(SIGKILL);
        return 0;
    });
}

} // namespace

/// SavingProcess <path> <file with the bytes to save> <number> named|unnamed
int main(int argc, char** argv) {
    if (argc < 5) return 1;
    const QByteArray bytes = readFile(QFile::decodeName(argv[2]));
    const FileCallsInstead inUse(killedBefore(std::atoi(argv[3]), argv[4] == std::string_view("unnamed")));
    writeAtomically(QFile::decodeName(argv[1]), bytesOf(bytes));
    return 0;
}
