// The formats that the native one's dispatchers name, and that the tests of threads never reach.
#include "formats/pictures/ImageImport.h"
#include "formats/pictures/JpegWriter.h"
#include "formats/pictures/TiffWriter.h"
#include "formats/psd/PSDFile.h"

#include <cstdlib>

namespace qirn {

QByteArray PSDFile::write(const PaintDocument&, Layered) {
    std::abort();
}
std::optional<QByteArray> jpegBytes(const RGBABuffer&, double, double) {
    std::abort();
}
std::optional<QByteArray> tiffBytes(const RGBABuffer&, double) {
    std::abort();
}
std::optional<QImage> ImageImport::decodePNG(std::span<const uint8_t>) {
    std::abort();
}

} // namespace qirn
