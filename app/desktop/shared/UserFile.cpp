#include "app/desktop/shared/UserFile.h"

#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FileCalls.h"
#include "platform/files/FilePath.h"
#include "platform/files/ReadFile.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qirn {

namespace {

using namespace std::chrono_literals;

constexpr auto kLongestWait = 2s;
constexpr auto kWait = 5ms;

/// That nobody else is at the same file, or as good as can be had: a kernel lock on an empty, hidden file beside it, which
/// stays, since one that is removed could be locked by two.
class Turn {
public:
    explicit Turn(const QString& path) {
        const QFileInfo info(path);
        const QByteArray folder = bytesOfPath(info.path());
        const QByteArray name = folder + "/." + bytesOfPath(info.fileName()) + ".lock";
        file_ = calls_.open(name.constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
        if (file_ < 0) return;
        // Root leaves a lock in somebody else's folder that its owner can take.
        struct stat owner {};
        if (::geteuid() == 0 && calls_.stat(folder.constData(), &owner) == 0 && owner.st_uid != 0)
            calls_.fchown(file_, owner.st_uid, owner.st_gid);
        const auto end = std::chrono::steady_clock::now() + kLongestWait;
        while (calls_.flock(file_, LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK && errno != EINTR) return;
            if (std::chrono::steady_clock::now() >= end) return;
            std::this_thread::sleep_for(kWait);
        }
    }
    ~Turn() {
        if (file_ >= 0) calls_.close(file_);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    const FileCalls& calls_ = FileCalls::inUse();
    int file_ = -1;
};

/// What says nothing about the file.
bool isPassing(int systemError) {
    constexpr int kPassing[] = {EMFILE, ENFILE, ENOMEM, EINTR, EAGAIN};
    return std::ranges::find(kPassing, systemError) != std::end(kPassing);
}

} // namespace

bool UserFile::load(const std::function<bool(std::span<const uint8_t>)>& decode) const {
    try {
        decode(bytesOf(readFile(path_)));
        return true;
    } catch (const ReadError& error) {
        return error.systemError() != ENOENT;
    }
}

bool UserFile::replace(const Next& next) const {
    const Turn turn(path_);
    std::optional<QByteArray> there, wanted;
    bool isAbsent = false;
    try {
        there = readFile(path_);
        wanted = next(there);
    } catch (const ReadError& error) {
        if (isPassing(error.systemError())) return false;
        isAbsent = error.systemError() == ENOENT;
    }
    if (wanted && wanted == there) return true;
    QByteArray aside;
    if (!wanted && !isAbsent && (aside = moveAside()).isEmpty()) return false;
    if (!wanted) wanted = next({});
    try {
        writeOwnFile(path_, bytesOf(*wanted), UsersLinks::followed);
        return true;
    } catch (const FileError& error) {
        // Better one that can perhaps be read the next time than none.
        if (!aside.isEmpty() && !error.isWritten())
            FileCalls::inUse().rename(aside.constData(), bytesOfPath(path_).constData());
        return false;
    }
}

QByteArray UserFile::moveAside() const {
    const QFileInfo info(path_);
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh.mm.ss.zzz"));
    const QByteArray aside = bytesOfPath(info.dir().filePath(
        QStringLiteral("%1 (unreadable, %2).%3").arg(info.completeBaseName(), stamp, info.suffix())));
    const int moved = FileCalls::inUse().rename(bytesOfPath(path_).constData(), aside.constData());
    return moved == 0 || errno == ENOENT ? aside : QByteArray();
}

} // namespace qirn
