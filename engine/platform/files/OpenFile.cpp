#include "platform/files/OpenFile.h"

#include "platform/CheckedMath.h"
#include "platform/files/FileError.h"

#include <algorithm>

namespace qirn {

namespace {
constexpr std::size_t kPieceBytes = 1 << 20; // of one call: slow disks take a tenth of a second for them
}

void OpenFile::write(std::span<const uint8_t> bytes, const Progress& progress) const {
    for (std::size_t written = 0; written < bytes.size();) {
        const auto piece = bytes.subspan(written).first(std::min(bytes.size() - written, kPieceBytes));
        const ssize_t count = checked([&] { return calls_.write(descriptor_, piece.data(), piece.size()); });
        if (count == 0) throw FileError(ENOSPC); // a full disk may answer so
        written += checkedSize(count);
        progress.done(static_cast<int64_t>(written), std::ssize(bytes));
    }
}

void OpenFile::flush() const {
    checked([&] { return calls_.fsync(descriptor_); });
}

void OpenFile::close() {
    const int descriptor = std::exchange(descriptor_, -1);
    if (calls_.close(descriptor) < 0 && errno != EINTR) throw FileError(errno);
}

bool OpenFile::isAt(const char* path) const {
    struct stat opened {
    }, named{};
    return calls_.fstat(descriptor_, &opened) == 0 && calls_.lstat(path, &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

} // namespace qirn
