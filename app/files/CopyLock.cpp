#include "app/files/CopyLock.h"

#include <cerrno>

#include <QFile>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qirn {

namespace {

bool isFileAt(const QByteArray& path, int file) {
    struct stat opened {
    }, named{};
    return ::fstat(file, &opened) == 0 && ::stat(path.constData(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

} // namespace

std::shared_ptr<CopyLock> CopyLock::take(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    while (true) {
        const int file =
            ::open(name.constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
        if (file < 0 && errno == EINTR) continue;
        if (file < 0) return std::make_shared<CopyLock>(name, -1);
        if (::flock(file, LOCK_EX | LOCK_NB) != 0) {
            const bool isElsewhere = errno == EWOULDBLOCK;
            ::close(file);
            return isElsewhere ? nullptr : std::make_shared<CopyLock>(name, -1);
        }
        if (isFileAt(name, file)) return std::make_shared<CopyLock>(name, file);
        ::close(file); // its holder released and removed it between open and lock
    }
}

CopyLock::~CopyLock() {
    if (file_ < 0) return;
    // Removed before the lock is released, so that nobody can hold a lock on a removed file.
    if (isFileAt(path_, file_)) ::unlink(path_.constData());
    ::close(file_);
}

} // namespace qirn
