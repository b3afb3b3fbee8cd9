#include "app/files/CopyLock.h"

#include "platform/files/FileCalls.h"
#include "platform/files/FilePath.h"

#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <sys/file.h>

namespace qirn {

namespace {

/// Whether the path names this open file; nothing where the system does not tell.
std::optional<bool> isFileAt(const QByteArray& path, int file) {
    const FileCalls& calls = FileCalls::inUse();
    struct stat opened {
    }, named{};
    if (calls.fstat(file, &opened) < 0) return std::nullopt;
    if (calls.lstat(path.constData(), &named) < 0)
        return errno == ENOENT ? std::optional(false) : std::nullopt;
    return opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

} // namespace

std::shared_ptr<CopyLock> CopyLock::take(const QString& path) {
    const FileCalls& calls = FileCalls::inUse();
    const QByteArray name = bytesOfPath(path);
    while (true) {
        const int file =
            calls.open(name.constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
        if (file < 0 && errno == EINTR) continue;
        if (file < 0) return std::make_shared<CopyLock>(name, -1);
        int locked = 0;
        do {
            locked = calls.flock(file, LOCK_EX | LOCK_NB);
        } while (locked < 0 && errno == EINTR);
        if (locked < 0) {
            const bool isElsewhere = errno == EWOULDBLOCK;
            calls.close(file);
            return isElsewhere ? nullptr : std::make_shared<CopyLock>(name, -1);
        }
        const std::optional<bool> isIt = isFileAt(name, file);
        if (isIt.value_or(false)) return std::make_shared<CopyLock>(name, file);
        calls.close(file);
        if (!isIt) return std::make_shared<CopyLock>(name, -1);
        // Its holder released and removed it between open and lock.
    }
}

bool CopyLock::isHeld() const {
    return file_ >= 0 && isFileAt(path_, file_).value_or(true);
}

CopyLock::~CopyLock() {
    if (file_ < 0) return;
    const FileCalls& calls = FileCalls::inUse();
    // Removed before the lock is released, so that nobody can hold a lock on a removed file.
    if (isFileAt(path_, file_).value_or(false)) calls.unlink(path_.constData());
    calls.close(file_);
}

} // namespace qirn
