#pragma once
#include "platform/DescribedError.h"
#include "platform/Progress.h"

#include <cstdint>
#include <functional>
#include <span>

#include <QString>
#include <sys/stat.h>
#include <sys/types.h>

namespace qirn {

/// A file that could not be written; `description` says why in words for the user.
class FileError : public DescribedError {
public:
    explicit FileError(int systemError); ///< An `errno` value.
    static FileError notFlushed(int systemError);
    int systemError() const { return systemError_; }

private:
    FileError(int systemError, const QString& description);
    int systemError_;
};

/// The system calls that writing and moving a file are made of, each with the meaning and the results of the call of that
/// name. Tests put failing ones in place.
struct FileCalls {
    std::function<ssize_t(const char* path, char* target, std::size_t size)> readlink;
    std::function<int(const char* path, struct stat* facts)> stat;
    std::function<int(const char* path, struct stat* facts)> lstat;
    std::function<int(const char* path, mode_t mode)> mkdir;
    std::function<int(const char* path, int mode)> access;
    std::function<int(const char* path, int flags, mode_t mode)> open;
    std::function<int(int file, mode_t mode)> fchmod;
    std::function<ssize_t(int file, const void* bytes, std::size_t count)> write;
    std::function<int(int file)> fsync;
    std::function<int(int file)> close;
    std::function<int(int file, const char* path)> link; ///< The first name of a file opened with O_TMPFILE.
    std::function<int(const char* from, const char* to)> rename;
    std::function<int(const char* path)> unlink;

    static const FileCalls& ofSystem();
};

/// Makes the file at `path` hold exactly these bytes, or throws `FileError` and leaves what was there untouched,
/// with nothing beside it. At no moment, a power cut included, does the path name a half-written file.
///
/// A symbolic link stays and the file that it names is replaced. A file that is replaced keeps its mode; one that
/// is write-protected is refused. Only when the disk fails at the very end, at flushing the new name, is the new file
/// in place already: the error then says that it may not outlast a power cut. A cancel, which is asked for up to the
/// moment before the new file takes its place, leaves the old one as well.
///
/// The bytes are written to an unnamed file, which vanishes with a process that is killed; where the file system has
/// none, to a hidden file `.qirn-` and 12 hexadecimal digits beside the target.
void writeAtomically(const QString& path, std::span<const uint8_t> bytes,
                     const FileCalls& calls = FileCalls::ofSystem(), const Progress& progress = {});

} // namespace qirn
