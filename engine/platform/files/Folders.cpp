#include "platform/files/Folders.h"

#include "platform/files/FileError.h"
#include "platform/files/FilePath.h"
#include "platform/files/OpenFile.h"

#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace qirn {

namespace {

constexpr mode_t kOthers = 077;

OpenFile openFolder(const std::string& path, const FileCalls& calls) {
    return {
        retried([&] { return calls.open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC, 0); }),
        calls};
}

/// What root makes belongs to whom the folder round it belongs, who could not use it otherwise.
void handOver(const std::string& path, const OpenFile& parent, const FileCalls& calls) {
    struct stat facts {};
    if (::geteuid() != 0 || calls.fstat(parent.descriptor(), &facts) < 0 || facts.st_uid == 0) return;
    const OpenFile folder = openFolder(path, calls);
    if (folder.isOpen()) calls.fchown(folder.descriptor(), facts.st_uid, facts.st_gid);
}

bool make(const std::string& path, const FileCalls& calls) {
    struct stat facts {};
    if (retried([&] { return calls.stat(path.c_str(), &facts); }) == 0) {
        errno = ENOTDIR;
        return S_ISDIR(facts.st_mode);
    }
    const std::size_t slash = path.rfind('/');
    const std::string parent = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    if (errno != ENOENT || !make(parent, calls)) return false;
    if (retried([&] { return calls.mkdir(path.c_str(), 0700); }) < 0) return errno == EEXIST;
    const OpenFile above = openFolder(parent, calls);
    if (above.isOpen()) {
        handOver(path, above, calls);
        calls.fsync(above.descriptor());
    }
    return true;
}

std::string cleaned(const QString& path) {
    std::string bytes = bytesOfPath(path).toStdString();
    while (bytes.size() > 1 && bytes.back() == '/') bytes.pop_back();
    return bytes;
}

} // namespace

bool makeFolders(const QString& path) {
    return make(cleaned(path), FileCalls::inUse());
}

bool makeOwnFolder(const QString& path) {
    const FileCalls& calls = FileCalls::inUse();
    const std::string name = cleaned(path);
    struct stat facts {};
    if (calls.lstat(name.c_str(), &facts) < 0 || S_ISLNK(facts.st_mode)) return make(name, calls);
    if (S_ISDIR(facts.st_mode) && facts.st_uid == ::geteuid() && (facts.st_mode & kOthers)) {
        const OpenFile folder = openFolder(name, calls);
        if (folder.isOpen()) calls.fchmod(folder.descriptor(), facts.st_mode & 07777 & ~kOthers);
    }
    errno = ENOTDIR;
    return S_ISDIR(facts.st_mode);
}

} // namespace qirn
