#include "formats/pictures/ExifTags.h"

#include "formats/common/PrintDensity.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include <libexif/exif-data.h>

namespace qirn {

namespace {

constexpr std::array<uint8_t, 6> kExifMark{'E', 'x', 'i', 'f', 0, 0};
constexpr std::size_t kLongestBlock = 1 << 20; // bytes; real ones are mostly thumbnails and maker notes

struct DataDeleter {
    void operator()(ExifData* data) const { exif_data_unref(data); }
};
using Data = std::unique_ptr<ExifData, DataDeleter>;

Data parsed(std::span<const uint8_t> block) {
    Data data(exif_data_new());
    if (!data) return data;
    // Otherwise the library would add missing tags, for example a resolution of 72.
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    std::vector<uint8_t> marked(kExifMark.begin(), kExifMark.end());
    marked.insert(marked.end(), block.begin(), block.end());
    exif_data_load_data(data.get(), marked.data(), static_cast<unsigned>(marked.size()));
    return data;
}

/// A single number of the picture's own directory, not of its thumbnail's.
std::optional<uint32_t> wholeNumber(ExifData& data, ExifTag tag) {
    const ExifEntry* entry = exif_content_get_entry(data.ifd[EXIF_IFD_0], tag);
    if (!entry || entry->components < 1 || !entry->data) return std::nullopt;
    const ExifByteOrder order = exif_data_get_byte_order(&data);
    if (entry->format == EXIF_FORMAT_SHORT && entry->size >= 2) return exif_get_short(entry->data, order);
    if (entry->format == EXIF_FORMAT_LONG && entry->size >= 4) return exif_get_long(entry->data, order);
    return std::nullopt;
}

std::optional<double> fraction(ExifData& data, ExifTag tag) {
    const ExifEntry* entry = exif_content_get_entry(data.ifd[EXIF_IFD_0], tag);
    if (!entry || entry->format != EXIF_FORMAT_RATIONAL || entry->size < 8 || !entry->data)
        return std::nullopt;
    const ExifRational value = exif_get_rational(entry->data, exif_data_get_byte_order(&data));
    if (value.denominator == 0) return std::nullopt;
    return static_cast<double>(value.numerator) / value.denominator;
}

} // namespace

ExifTags exifTags(std::span<const uint8_t> block) {
    if (block.size() >= kExifMark.size() && std::equal(kExifMark.begin(), kExifMark.end(), block.begin()))
        block = block.subspan(kExifMark.size());
    ExifTags tags;
    const Data data = parsed(block.first(std::min(block.size(), kLongestBlock)));
    if (!data) return tags;
    if (const auto number = wholeNumber(*data, EXIF_TAG_ORIENTATION)) tags.orientation = Orientation(*number);
    const uint32_t unit =
        wholeNumber(*data, EXIF_TAG_RESOLUTION_UNIT).value_or(2); // inches, unless said otherwise
    const double dots = fraction(*data, EXIF_TAG_X_RESOLUTION).value_or(0);
    if (dots > 0 && (unit == 2 || unit == 3))
        tags.dpi = unit == 3 ? dpiFromCentimeters(dots) : dpiFromInches(dots);
    return tags;
}

} // namespace qirn
