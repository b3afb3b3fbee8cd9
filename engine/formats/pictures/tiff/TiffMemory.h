#pragma once
#include <cstdint>
#include <memory>
#include <span>

#include <QByteArray>

struct tiff;

namespace qirn {

struct TiffCloser {
    void operator()(tiff* file) const;
};
using TiffHandle = std::unique_ptr<tiff, TiffCloser>;

/// A file in memory for the TIFF library, which reports nothing and refuses to take more than `largestAllocation` bytes at
/// once; null when it cannot be opened. The bytes outlive the handle.
TiffHandle openTiff(std::span<const uint8_t> file, int64_t largestAllocation);
/// Writes to an array that outlives the handle. The file is whole once the handle is gone. `isLarge` lifts the limit of
/// 4 GB, at the price that older programs cannot read it.
enum class IsLarge { no, yes };
TiffHandle createTiff(QByteArray& file, IsLarge isLarge);

} // namespace qirn
