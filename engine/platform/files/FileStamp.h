#pragma once
#include <cstdint>
#include <optional>

#include <QString>
#include <sys/stat.h>

namespace qirn {

/// By what a file tells that somebody has written to it: its length and the time of its last change.
struct FileStamp {
    int64_t size = 0;    ///< Bytes.
    int64_t seconds = 0; ///< Since 1970, as finely as the file system keeps it.
    int64_t nanoseconds = 0;

    bool operator==(const FileStamp&) const = default;
    static FileStamp of(const struct stat& facts) {
        return {facts.st_size, facts.st_mtim.tv_sec, facts.st_mtim.tv_nsec};
    }
    /// Of the file that a path names, through links; nothing where there is none, or it is not to be seen.
    static std::optional<FileStamp> at(const QString& path);
};

} // namespace qirn
