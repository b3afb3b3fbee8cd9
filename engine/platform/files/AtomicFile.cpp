#include "platform/files/AtomicFile.h"

#include "platform/CheckedMath.h"
#include "platform/files/FileCalls.h"
#include "platform/files/FilePath.h"

#include <cerrno>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include <QCoreApplication>
#include <QUuid>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qirn {

namespace {

constexpr int kMostLinks = 40;               // as the system itself allows
constexpr std::size_t kPieceBytes = 1 << 20; // of one call: slow disks take a tenth of a second for them
constexpr double kWritten = 0.8;             // of the work, where the disk still has to flush
constexpr int kNameAttempts = 16;

struct Reason {
    int error;
    const char* text;
};
constexpr Reason kReasons[] = {
    {ENOSPC, QT_TRANSLATE_NOOP("FileError", "There is not enough space on the disk.")},
    {EDQUOT, QT_TRANSLATE_NOOP("FileError", "Your share of the disk is used up.")},
    {EACCES, QT_TRANSLATE_NOOP("FileError", "You do not have permission to write here.")},
    {EPERM, QT_TRANSLATE_NOOP("FileError", "You do not have permission to write here.")},
    {EROFS, QT_TRANSLATE_NOOP("FileError", "The disk is read-only.")},
    {ENOENT, QT_TRANSLATE_NOOP("FileError", "The folder does not exist.")},
    {ENOTDIR, QT_TRANSLATE_NOOP("FileError", "The folder does not exist.")},
    {EISDIR, QT_TRANSLATE_NOOP("FileError", "A folder of this name is in the way.")},
    {ENAMETOOLONG, QT_TRANSLATE_NOOP("FileError", "The name is too long.")},
    {EIO, QT_TRANSLATE_NOOP("FileError", "The disk reported an error.")},
};

QString reasonFor(int error) {
    for (const Reason& reason : kReasons) {
        if (reason.error == error) return QCoreApplication::translate("FileError", reason.text);
    }
    return QCoreApplication::translate("FileError", "The file could not be written (%1).")
        .arg(QString::fromLocal8Bit(std::generic_category().message(error).c_str()));
}

/// The result of a system call that reports failure by a negative number; retries when a signal interrupts it.
template <class Call> auto checked(Call call) {
    while (true) {
        const auto result = call();
        if (result >= 0) return result;
        if (errno != EINTR) throw FileError(errno);
    }
}

/// The folder of a path with its slash; empty for a bare name.
std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// Follows a symbolic link in the last part of a path, also to a file that does not exist yet.
std::string followLinks(std::string path, const FileCalls& calls) {
    for (int links = 0; links < kMostLinks; ++links) {
        char target[4096];
        const ssize_t length = calls.readlink(path.c_str(), target, sizeof target);
        if (length < 0 && (errno == EINVAL || errno == ENOENT)) return path;
        if (length < 0) throw FileError(errno);
        if (checkedSize(length) >= sizeof target) throw FileError(ENAMETOOLONG);
        const std::string name(target, checkedSize(length));
        path = name.starts_with('/') ? name : folderOf(path) + name;
    }
    throw FileError(ELOOP);
}

/// The mode of the file that is to be replaced; nothing where there is none.
std::optional<mode_t> modeToKeep(const std::string& path, const FileCalls& calls) {
    struct stat facts {};
    if (calls.stat(path.c_str(), &facts) < 0) {
        if (errno == ENOENT) return std::nullopt;
        throw FileError(errno);
    }
    if (S_ISDIR(facts.st_mode)) throw FileError(EISDIR);
    if (!S_ISREG(facts.st_mode)) throw FileError(EINVAL);
    checked([&] { return calls.access(path.c_str(), W_OK); });
    return facts.st_mode & 07777;
}

/// An open file descriptor, closed at the end of its life if it was not before.
class OpenFile {
public:
    OpenFile(int descriptor, const FileCalls& calls) : descriptor_(descriptor), calls_(calls) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor_ >= 0) calls_.close(descriptor_);
    }

    int descriptor() const { return descriptor_; }
    void write(std::span<const uint8_t> bytes, const Progress& progress) const {
        for (std::size_t written = 0; written < bytes.size();) {
            const auto piece = bytes.subspan(written).first(std::min(bytes.size() - written, kPieceBytes));
            const ssize_t count =
                checked([&] { return calls_.write(descriptor_, piece.data(), piece.size()); });
            if (count == 0) throw FileError(ENOSPC); // a full disk may answer so
            written += checkedSize(count);
            progress.done(static_cast<int64_t>(written), std::ssize(bytes));
        }
    }
    void flush() const {
        checked([&] { return calls_.fsync(descriptor_); });
    }
    /// Write errors may be reported only now.
    void close() {
        const int descriptor = std::exchange(descriptor_, -1);
        if (calls_.close(descriptor) < 0 && errno != EINTR) throw FileError(errno);
    }

private:
    int descriptor_;
    const FileCalls& calls_;
};

/// A temporary name beside the target; removed at the end of its life unless the file was renamed to the target.
class TemporaryName {
public:
    TemporaryName(const std::string& folder, const FileCalls& calls) : folder_(folder), calls_(calls) {}
    TemporaryName(const TemporaryName&) = delete;
    TemporaryName& operator=(const TemporaryName&) = delete;
    ~TemporaryName() {
        if (isTaken_) calls_.unlink(path_.c_str());
    }

    /// The result of a call that makes a file of the name it is given and refuses one that is taken; a negative
    /// number, and `errno`, where it fails for another reason.
    template <class Make> int take(Make make) {
        for (int attempt = 1;; ++attempt) {
            // Short and of its own, so that it fits wherever the target's name does.
            path_ = folder_ + ".qirn-" + QUuid::createUuid().toString(QUuid::Id128).left(12).toStdString();
            const int result = make(path_.c_str());
            isTaken_ = result >= 0;
            if (isTaken_ || (errno != EINTR && (errno != EEXIST || attempt == kNameAttempts))) return result;
        }
    }
    void moveTo(const std::string& path) {
        checked([&] { return calls_.rename(path_.c_str(), path.c_str()); });
        isTaken_ = false;
    }

private:
    const std::string& folder_;
    const FileCalls& calls_;
    std::string path_;
    bool isTaken_ = false;
};

/// The file that is to be replaced; its path is no symbolic link.
struct Replacement {
    std::string target;
    std::string folder; // of the target
    std::optional<mode_t> mode;
    std::span<const uint8_t> bytes;
    Progress progress;

    mode_t firstMode() const { return mode ? 0600 : 0666; } // readable by nobody else until the mode is set
    void fill(const OpenFile& file, const FileCalls& calls) const {
        if (mode) checked([&] { return calls.fchmod(file.descriptor(), *mode); });
        file.write(bytes, progress.part(0, kWritten));
        file.flush();
        progress.done(1, 1);
    }
};

/// Writes through an unnamed file (O_TMPFILE), which gets a name only just before the rename, so that a process
/// killed while it writes leaves nothing behind. Returns false, with nothing changed, where the file system has no
/// unnamed files or the attempt fails; `replaceByName` then reports the error if it fails too.
bool replaceWithoutName(const Replacement& replacement, const FileCalls& calls) {
    const std::string folder = replacement.folder.empty() ? "." : replacement.folder;
    int descriptor = -1;
    do {
        descriptor = calls.open(folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, replacement.firstMode());
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return false;
    OpenFile file(descriptor, calls);
    replacement.fill(file, calls);
    TemporaryName name(replacement.folder, calls);
    if (name.take([&](const char* path) { return calls.link(descriptor, path); }) < 0) return false;
    name.moveTo(replacement.target);
    try {
        // Again, because Btrfs leaves files without a name out of the log from which it recovers: what it finds there
        // after a power cut would be the new name of an empty file.
        file.flush();
        file.close();
    } catch (const FileError& error) {
        throw FileError::notFlushed(error.systemError());
    }
    return true;
}

void replaceByName(const Replacement& replacement, const FileCalls& calls) {
    TemporaryName name(replacement.folder, calls);
    const int descriptor = name.take([&](const char* path) {
        return calls.open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, replacement.firstMode());
    });
    if (descriptor < 0) throw FileError(errno);
    OpenFile file(descriptor, calls);
    replacement.fill(file, calls);
    file.close();
    name.moveTo(replacement.target);
}

/// The folder, to be flushed once the new name is in it; a negative number where it may be written to and not
/// read, and therefore not flushed.
int openFolder(const std::string& folder, const FileCalls& calls) {
    const std::string path = folder.empty() ? "." : folder;
    while (true) {
        const int descriptor = calls.open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
        if (descriptor >= 0 || errno == EACCES) return descriptor;
        if (errno != EINTR) throw FileError(errno);
    }
}

void flushFolder(const OpenFile& folder) {
    if (folder.descriptor() < 0) return;
    try {
        folder.flush();
    } catch (const FileError& error) {
        // Some file systems cannot flush a folder and make renames durable in other ways.
        if (error.systemError() == EINVAL || error.systemError() == ENOTSUP) return;
        throw FileError::notFlushed(error.systemError());
    }
}

} // namespace

FileError::FileError(int systemError) : FileError(systemError, reasonFor(systemError)) {}

FileError::FileError(int systemError, const QString& description)
    : DescribedError(description),
      systemError_(systemError) {}

FileError FileError::notFlushed(int systemError) {
    FileError error(systemError,
                    QCoreApplication::translate("FileError", "The file is written, but the disk reported "
                                                             "an error: it may not outlast a power cut."));
    error.isWritten_ = true;
    return error;
}

void writeAtomically(const QString& path, std::span<const uint8_t> bytes, const Progress& progress) {
    const FileCalls& calls = FileCalls::inUse();
    const std::string target = followLinks(bytesOfPath(path).toStdString(), calls);
    const Replacement replacement{target, folderOf(target), modeToKeep(target, calls), bytes, progress};
    const OpenFile folder(openFolder(replacement.folder, calls), calls);
    if (!replaceWithoutName(replacement, calls)) replaceByName(replacement, calls);
    flushFolder(folder);
}

} // namespace qirn
