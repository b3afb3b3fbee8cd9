#pragma once
#include "formats/pictures/tiff/TiffShape.h"

#include <array>
#include <cstdint>
#include <span>

namespace qirn {

/// Turns a TIFF's samples, as its decoder gives them, into rows of the shape's layout.
class TiffSamples {
public:
    TiffSamples(tiff* file, const TiffShape& shape);

    /// One row of every plane that is read: all samples side by side, or the colors and then alpha in a plane each.
    void putRow(std::span<const uint8_t* const> planes, void* row) const;

private:
    template <class T> void putSamples(std::span<const uint8_t* const> planes, T* row) const;
    void putColors(const uint8_t* indices, uint8_t* row) const;

    TiffShape shape_;
    static constexpr std::size_t kMostInByte = 8;
    // of an indexed picture: all in a byte
    std::array<std::array<uint8_t, 3 * kMostInByte>, 256> colorsOfByte_{};
};

} // namespace qirn
