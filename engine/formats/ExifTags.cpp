#include "formats/ExifTags.h"

#include "formats/PrintDensity.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace qirn {

namespace {

constexpr std::array<uint8_t, 6> kExifMark{'E', 'x', 'i', 'f', 0, 0};

enum Tag : uint32_t { orientation = 0x112, xResolution = 0x11A, resolutionUnit = 0x128 };
enum Type : uint32_t { shortNumber = 3, longNumber = 4, rational = 5 };

constexpr std::size_t kEntryBytes = 12; // tag, type: 2 bytes each; count, value or its place: 4 bytes each

/// A TIFF's numbers, in the byte order that it says; what lies beyond its end reads as 0.
class TiffNumbers {
public:
    explicit TiffNumbers(std::span<const uint8_t> block)
        : block_(block),
          isLittle_(!block.empty() && block[0] == 'I') {}

    uint32_t at(std::size_t place, std::size_t bytes) const {
        if (place > block_.size() || block_.size() - place < bytes) return 0;
        uint32_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            value = value << 8 | block_[place + (isLittle_ ? bytes - 1 - i : i)];
        return value;
    }

private:
    std::span<const uint8_t> block_;
    bool isLittle_;
};

} // namespace

ExifTags exifTags(std::span<const uint8_t> block) {
    if (block.size() >= kExifMark.size() && std::equal(kExifMark.begin(), kExifMark.end(), block.begin()))
        block = block.subspan(kExifMark.size());
    ExifTags tags;
    const bool isTiff = block.size() >= 8 && (std::memcmp(block.data(), "II*\0", 4) == 0 ||
                                              std::memcmp(block.data(), "MM\0*", 4) == 0);
    if (!isTiff) return tags;
    const TiffNumbers numbers(block);
    const std::size_t directory = numbers.at(4, 4);
    double dots = 0;
    uint32_t unit = 2; // inches, unless said otherwise
    for (uint32_t i = 0; i < numbers.at(directory, 2); ++i) {
        const std::size_t entry = directory + 2 + i * kEntryBytes;
        const uint32_t type = numbers.at(entry + 2, 2);
        const uint32_t number = numbers.at(entry + 8, type == shortNumber ? 2 : 4);
        switch (numbers.at(entry, 2)) {
        case orientation:
            if (type == shortNumber || type == longNumber) tags.orientation = Orientation(number);
            break;
        case xResolution:
            if (type == rational) {
                const uint32_t below = numbers.at(std::size_t{number} + 4, 4);
                dots = below == 0 ? 0 : static_cast<double>(numbers.at(number, 4)) / below;
            }
            break;
        case resolutionUnit:
            unit = number;
            break;
        default:
            break;
        }
    }
    if (dots > 0 && (unit == 2 || unit == 3))
        tags.dpi = unit == 3 ? dpiFromCentimeters(dots) : dpiFromInches(dots);
    return tags;
}

} // namespace qirn
