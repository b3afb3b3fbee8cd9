#pragma once
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <sys/types.h>

namespace qirn {

/// The system calls by which the program meets a disk, each with the meaning and the results of the call of that name.
/// Whatever reads, writes, locks, moves or removes a file takes them from `inUse`, so that a test can count them, let one
/// fail, end the process between two, or keep a disk of its own behind them. Outside it are what Qt asks by itself (for
/// the file panel, a path's real name, an older version's settings) and the lock and socket of the one studio.
struct FileCalls {
    // By name
    std::function<ssize_t(const char* path, char* target, std::size_t size)> readlink;
    std::function<int(const char* path, struct stat* facts)> stat;
    std::function<int(const char* path, struct stat* facts)> lstat;
    std::function<int(const char* path, int mode)> access;
    std::function<ssize_t(const char* path, char* names, std::size_t size)> listxattr;
    std::function<ssize_t(const char* path, const char* name, void* value, std::size_t size)> getxattr;
    std::function<int(const char* path, std::vector<std::string>& names)>
        list; ///< A folder's; without . and ..
    std::function<int(const char* path, mode_t mode)> mkdir;
    // Of an open file
    std::function<int(const char* path, int flags, mode_t mode)> open;
    std::function<int(int file, struct stat* facts)> fstat;
    std::function<int(int file, int operation)> flock;
    std::function<int(int file, mode_t mode)> fchmod;
    std::function<int(int file, uid_t owner, gid_t group)> fchown;
    std::function<int(int file, const char* name, const void* value, std::size_t size, int flags)> fsetxattr;
    std::function<int(int file, const char* name)> fremovexattr;
    std::function<ssize_t(int file, void* bytes, std::size_t count)> read;
    std::function<ssize_t(int file, void* bytes, std::size_t count, off_t offset)> pread;
    std::function<ssize_t(int file, const void* bytes, std::size_t count)> write;
    std::function<int(int file)> fsync;
    std::function<int(int file)> dup; ///< Closed at exec.
    std::function<int(int file)> close;
    // Of names
    std::function<int(int file, const char* path)> link; ///< The first name of a file opened with O_TMPFILE.
    std::function<int(const char* from, const char* to)> rename;
    std::function<int(const char* path)> unlink;

    static const FileCalls& ofSystem();
    static const FileCalls&
    inUse(); ///< Those of the system unless a `FileCallsInstead` lives. On any thread.
};

/// Other calls for the whole process as long as it lives; one at a time. No file work that began before may go on beyond
/// its end.
class FileCallsInstead {
public:
    explicit FileCallsInstead(FileCalls calls);
    FileCallsInstead(const FileCallsInstead&) = delete;
    FileCallsInstead& operator=(const FileCallsInstead&) = delete;
    ~FileCallsInstead();

private:
    FileCalls calls_;
    const FileCalls* before_;
};

} // namespace qirn
