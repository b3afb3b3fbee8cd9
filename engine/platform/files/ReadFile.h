#pragma once
#include "platform/DescribedError.h"
#include "platform/Progress.h"
#include "platform/files/FileStamp.h"

#include <cstdint>
#include <limits>

#include <QByteArray>
#include <QString>

namespace qirn {

/// A file that could not be read; `description` says why in words for the user.
class ReadError : public DescribedError {
public:
    /// An `errno` value, ENOENT where there is no file; 0 for one that is there but is not read.
    ReadError(int systemError, const QString& description)
        : DescribedError(description),
          systemError_(systemError) {}
    int systemError() const { return systemError_; }

private:
    int systemError_;
};

inline constexpr int64_t kAnyLength = std::numeric_limits<int64_t>::max();

/// The whole content of a file; throws ReadError. What is no file (a folder, a pipe, a device) is refused without
/// waiting for it, and one longer than `mostBytes` or than the memory that is free before any of it is read. `stamp`
/// becomes that of the file before its first byte was read: one that is written to meanwhile has another by then.
QByteArray readFile(const QString& path, int64_t mostBytes = kAnyLength, const Progress& progress = {},
                    FileStamp* stamp = nullptr);

/// `count` bytes from `offset` on, fewer where the file ends. Throws as above.
QByteArray readFilePart(const QString& path, int64_t offset, int64_t count);

} // namespace qirn
