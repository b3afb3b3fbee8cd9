#include "platform/AtomicFile.h"

#include <cerrno>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include <QCoreApplication>
#include <QFile>
#include <QUuid>
#include <fcntl.h>
#include <unistd.h>

namespace qirn {

namespace {

constexpr int kMostLinks = 40; // as the system itself allows
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

/// The result of a call that reports failure by a negative number; tries again where a signal came in between.
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

/// The path of the file itself where the last part of a path is a symbolic link, also to a file that is yet to be.
std::string followLinks(std::string path, const FileCalls& calls) {
    for (int links = 0; links < kMostLinks; ++links) {
        char target[4096];
        const ssize_t length = calls.readlink(path.c_str(), target, sizeof target);
        if (length < 0 && (errno == EINVAL || errno == ENOENT)) return path;
        if (length < 0) throw FileError(errno);
        if (static_cast<std::size_t>(length) >= sizeof target) throw FileError(ENAMETOOLONG);
        const std::string name(target, static_cast<std::size_t>(length));
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
    void write(std::span<const uint8_t> bytes) const {
        while (!bytes.empty()) {
            const ssize_t count =
                checked([&] { return calls_.write(descriptor_, bytes.data(), bytes.size()); });
            if (count == 0) throw FileError(ENOSPC); // a full disk may answer so
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
    }
    void flush() const {
        checked([&] { return calls_.fsync(descriptor_); });
    }
    /// A disk may report only now that it could not keep what was written.
    void close() {
        const int descriptor = std::exchange(descriptor_, -1);
        if (calls_.close(descriptor) < 0 && errno != EINTR) throw FileError(errno);
    }

private:
    int descriptor_;
    const FileCalls& calls_;
};

/// The new content under a name of its own beside the target, removed again unless it was put in place.
class TemporaryFile {
public:
    TemporaryFile(const std::string& folder, mode_t mode, const FileCalls& calls)
        : calls_(calls),
          file_(create(folder, mode), calls) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!path_.empty()) calls_.unlink(path_.c_str());
    }

    void setMode(mode_t mode) const {
        checked([&] { return calls_.fchmod(file_.descriptor(), mode); });
    }
    void fill(std::span<const uint8_t> bytes) {
        file_.write(bytes);
        file_.flush();
        file_.close();
    }
    void moveTo(const std::string& path) {
        checked([&] { return calls_.rename(path_.c_str(), path.c_str()); });
        path_.clear();
    }

private:
    int create(const std::string& folder, mode_t mode) {
        for (int attempt = 1;; ++attempt) {
            // Short and of its own, so that it fits wherever the target's name does.
            path_ = folder + ".qirn-" + QUuid::createUuid().toString(QUuid::Id128).left(12).toStdString();
            const int descriptor = calls_.open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            if (descriptor >= 0) return descriptor;
            if (errno != EINTR && (errno != EEXIST || attempt == kNameAttempts)) throw FileError(errno);
        }
    }

    std::string path_; // empty once it has the target's name
    const FileCalls& calls_;
    OpenFile file_;
};

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
        // Some file systems have no such thing and keep their names safe in other ways.
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
    return {systemError,
            QCoreApplication::translate(
                "FileError",
                "The file is written, but the disk reported an error: it may not outlast a power cut.")};
}

const FileCalls& FileCalls::ofSystem() {
    static const FileCalls calls{
        .readlink = ::readlink,
        .stat = [](const char* path, struct stat* facts) { return ::stat(path, facts); },
        .access = ::access,
        .open = [](const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); },
        .fchmod = ::fchmod,
        .write = ::write,
        .fsync = ::fsync,
        .close = ::close,
        .rename = ::rename,
        .unlink = ::unlink,
    };
    return calls;
}

void writeAtomically(const QString& path, std::span<const uint8_t> bytes, const FileCalls& calls) {
    const std::string target = followLinks(QFile::encodeName(path).toStdString(), calls);
    const std::string folder = folderOf(target);
    const std::optional<mode_t> mode = modeToKeep(target, calls);
    const OpenFile openedFolder(openFolder(folder, calls), calls);
    TemporaryFile file(folder, mode ? 0600 : 0666, calls);
    if (mode) file.setMode(*mode);
    file.fill(bytes);
    file.moveTo(target);
    flushFolder(openedFolder);
}

} // namespace qirn
