#include "platform/files/FileCalls.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace qirn {

namespace {

std::atomic<const FileCalls*> instead = nullptr; // null: the system's

int namesIn(const char* path, std::vector<std::string>& names) {
    DIR* const folder = ::opendir(path);
    if (!folder) return -1;
    names.clear();
    int error = 0;
    while (true) {
        errno = 0;
        const dirent* entry = ::readdir(folder);
        if (!entry) {
            error = errno;
            break;
        }
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
    }
    ::closedir(folder);
    errno = error;
    return error == 0 ? 0 : -1;
}

int linkUnnamed(int file, const char* path) {
    const std::string opened = "/proc/self/fd/" + std::to_string(file);
    return ::linkat(AT_FDCWD, opened.c_str(), AT_FDCWD, path, AT_SYMLINK_FOLLOW);
}

} // namespace

const FileCalls& FileCalls::ofSystem() {
    static const FileCalls calls{
        .readlink = ::readlink,
        .stat = [](const char* path, struct stat* facts) { return ::stat(path, facts); },
        .lstat = [](const char* path, struct stat* facts) { return ::lstat(path, facts); },
        .access = ::access,
        .listxattr = ::listxattr,
        .getxattr = ::getxattr,
        .list = namesIn,
        .mkdir = ::mkdir,
        .open = [](const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); },
        .fstat = [](int file, struct stat* facts) { return ::fstat(file, facts); },
        .flock = ::flock,
        .fchmod = ::fchmod,
        .fchown = ::fchown,
        .fsetxattr = ::fsetxattr,
        .fremovexattr = ::fremovexattr,
        .read = ::read,
        .pread = ::pread,
        .write = ::write,
        .fsync = ::fsync,
        .dup = [](int file) { return ::fcntl(file, F_DUPFD_CLOEXEC, 0); },
        .close = ::close,
        .link = linkUnnamed,
        .rename = ::rename,
        .unlink = ::unlink,
    };
    return calls;
}

const FileCalls& FileCalls::inUse() {
    const FileCalls* calls = instead.load();
    return calls ? *calls : ofSystem();
}

FileCallsInstead::FileCallsInstead(FileCalls calls)
    : calls_(std::move(calls)),
      before_(instead.exchange(&calls_)) {}

FileCallsInstead::~FileCallsInstead() {
    instead = before_;
}

} // namespace qirn
