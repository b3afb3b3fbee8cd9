#include "platform/files/AtomicFile.h"

#include "platform/CheckedMath.h"
#include "platform/files/FileAccess.h"
#include "platform/files/FilePath.h"
#include "platform/files/TemporaryFile.h"

#include <cerrno>
#include <optional>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace qirn {

namespace {

constexpr int kMostLinks = 40;   // as the system itself allows
constexpr double kWritten = 0.8; // of the work, where the disk still has to flush

/// Follows a symbolic link in the last part of a path, also to a file that does not exist yet.
std::string followLinks(std::string path, const FileCalls& calls) {
    for (int links = 0; links < kMostLinks; ++links) {
        char target[4096];
        const ssize_t length = retried([&] { return calls.readlink(path.c_str(), target, sizeof target); });
        if (length < 0 && (errno == EINVAL || errno == ENOENT)) return path;
        if (length < 0) throw FileError(errno);
        if (checkedSize(length) >= sizeof target) throw FileError(ENAMETOOLONG);
        const std::string name(target, checkedSize(length));
        path = name.starts_with('/') ? name : folderOf(path) + name;
    }
    throw FileError(ELOOP);
}

/// Of a file that is to be replaced; nothing where there is none. One that is write-protected is refused.
std::optional<FileAccess> accessToKeep(const std::string& path, const FileCalls& calls) {
    std::optional<FileAccess> access = FileAccess::of(path, calls);
    if (access) checked([&] { return calls.access(path.c_str(), W_OK); });
    return access;
}

/// Of a file that the application keeps for itself: it belongs to whom its folder belongs, for root may be at work in the
/// folder of a user.
FileAccess ownAccess(const std::string& folder, const FileCalls& calls) {
    struct stat facts {};
    checked([&] { return calls.stat(folder.empty() ? "." : folder.c_str(), &facts); });
    return {0600, facts.st_uid, facts.st_gid, {}};
}

/// Whether a link was made by the user, as by a program that keeps settings elsewhere, and leads to nothing of
/// anybody else's.
bool isUsersLink(const std::string& path, const FileCalls& calls) {
    struct stat link {
    }, target{};
    if (calls.lstat(path.c_str(), &link) < 0 || !S_ISLNK(link.st_mode) || link.st_uid != ::geteuid())
        return false;
    return calls.stat(path.c_str(), &target) == 0 ? target.st_uid == ::geteuid() : errno == ENOENT;
}

/// Of a file that was written and closed: some disks give it its time only then. Where the name is another's by now, what
/// it was before.
std::optional<FileStamp> stampOf(const struct stat& written, const std::string& target,
                                 const FileCalls& calls) {
    struct stat named {};
    const bool isIt = calls.stat(target.c_str(), &named) == 0 && named.st_ino == written.st_ino &&
                      named.st_dev == written.st_dev && named.st_size == written.st_size;
    if (isIt) return FileStamp::of(named);
    return written.st_ino != 0 ? std::optional(FileStamp::of(written)) : std::nullopt;
}

/// What takes the target's place; its path is no symbolic link.
struct Replacement {
    std::string target;
    std::optional<FileAccess> access; // nothing: as the folder gives it to a new file
    std::span<const uint8_t> bytes;
    Progress progress;

    std::string folder() const { return folderOf(target); }
    mode_t firstMode() const { return access ? 0600 : 0666; } // readable by nobody else until it gets its own
    /// False, with nothing changed, where the file cannot get a name. `written` is what the file is in its place.
    bool writeTo(TemporaryFile temporary, struct stat& written) const {
        const OpenFile& file = temporary.file();
        file.write(bytes, progress.part(0, kWritten));
        if (access) access->giveTo(file);
        file.flush();
        progress.done(1, 1);
        if (temporary.isUnnamed()) {
            if (!temporary.takeName()) return false;
            // Again, because Btrfs leaves files without a name out of the log from which it recovers: what it finds there
            // after a power cut would be the new name of an empty file.
            file.flush();
        }
        file.calls().fstat(file.descriptor(), &written);
        temporary.moveTo(target);
        try {
            if (file.isOpen()) temporary.close();
        } catch (const FileError& error) {
            throw FileError::notFlushed(error.systemError());
        }
        return true;
    }
};

/// The folder, to be flushed once the new name is in it; a negative number where it may be written to and not
/// read, and therefore not flushed.
int openFolder(const std::string& folder, const FileCalls& calls) {
    const std::string path = folder.empty() ? "." : folder;
    const int descriptor =
        retried([&] { return calls.open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0); });
    if (descriptor < 0 && errno != EACCES) throw FileError(errno);
    return descriptor;
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

std::optional<FileStamp> replace(const Replacement& replacement, const FileCalls& calls) {
    const auto& [target, access, bytes, progress] = replacement;
    const OpenFile folder(openFolder(replacement.folder(), calls), calls);
    removeLeftTemporaries(target, calls);
    auto unnamed = TemporaryFile::unnamed(target, replacement.firstMode(), calls);
    struct stat written {};
    if (!unnamed || !replacement.writeTo(*std::move(unnamed), written))
        replacement.writeTo(TemporaryFile::hidden(target, replacement.firstMode(), calls), written);
    const std::optional<FileStamp> stamp = stampOf(written, target, calls);
    flushFolder(folder);
    return stamp;
}

} // namespace

std::optional<FileStamp> writeAtomically(const QString& path, std::span<const uint8_t> bytes,
                                         const Progress& progress) {
    const FileCalls& calls = FileCalls::inUse();
    const std::string target = followLinks(bytesOfPath(path).toStdString(), calls);
    return replace({target, accessToKeep(target, calls), bytes, progress}, calls);
}

void writeOwnFile(const QString& path, std::span<const uint8_t> bytes, UsersLinks links) {
    const FileCalls& calls = FileCalls::inUse();
    std::string target = bytesOfPath(path).toStdString();
    std::optional<FileAccess> access;
    if (links == UsersLinks::followed && isUsersLink(target, calls)) {
        target = followLinks(target, calls);
        access = accessToKeep(target, calls);
    }
    if (!access) access = ownAccess(folderOf(target), calls);
    replace({target, access, bytes, {}}, calls);
}

} // namespace qirn
