#pragma once
#include "platform/DescribedError.h"
#include "platform/Progress.h"
#include "platform/files/FileCalls.h"
#include "platform/files/FileStamp.h"

#include <cstdint>
#include <limits>
#include <span>

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

/// A file that is open to be read in parts, refused as above; all parts are of the same file, whatever takes its name
/// meanwhile.
class FileParts {
public:
    explicit FileParts(const QString& path); ///< Throws ReadError.
    FileParts(const FileParts&) = delete;
    FileParts& operator=(const FileParts&) = delete;
    ~FileParts();

    /// Fills the target from `offset` on; how many bytes there were, fewer where the file ends. Throws ReadError.
    std::size_t read(int64_t offset, std::span<uint8_t> target) const;

private:
    const FileCalls& calls_;
    int descriptor_;
};

} // namespace qirn
