#pragma once
#include "platform/DescribedError.h"
#include "platform/Progress.h"

#include <cstdint>
#include <span>

#include <QString>

namespace qirn {

/// A file that could not be written; `description` says why in words for the user.
class FileError : public DescribedError {
public:
    explicit FileError(int systemError); ///< An `errno` value.
    static FileError notFlushed(int systemError);
    int systemError() const { return systemError_; }
    bool isWritten() const { return isWritten_; } ///< The new file is in its place: it is only not flushed.

private:
    FileError(int systemError, const QString& description);
    int systemError_;
    bool isWritten_ = false;
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
void writeAtomically(const QString& path, std::span<const uint8_t> bytes, const Progress& progress = {});

} // namespace qirn
