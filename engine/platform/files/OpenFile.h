#pragma once
#include "platform/Progress.h"
#include "platform/files/FileCalls.h"

#include <cstdint>
#include <span>
#include <utility>

namespace qirn {

/// A file descriptor, closed at the end of its life if it was not before. What fails throws FileError. It borrows the calls.
class OpenFile {
public:
    OpenFile(int descriptor, const FileCalls& calls) : descriptor_(descriptor), calls_(calls) {}
    OpenFile(OpenFile&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)),
          calls_(other.calls_) {}
    OpenFile& operator=(OpenFile&&) = delete;
    ~OpenFile() {
        if (isOpen()) calls_.close(descriptor_);
    }

    bool isOpen() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; } ///< Negative: none.
    const FileCalls& calls() const { return calls_; }

    void write(std::span<const uint8_t> bytes, const Progress& progress) const;
    void flush() const;
    void close(); ///< Some file systems report only now that they could not write.
    /// Whether the path is a name of this file.
    bool isAt(const char* path) const;

private:
    int descriptor_;
    const FileCalls& calls_;
};

} // namespace qirn
