#pragma once
#include <cstdint>
#include <vector>

#include <QByteArray>
#include <QImage>

namespace qirn::test {

// Picture files put together block by block, so that tests may say and lie what they like.

/// The content of tests/data/`name`.
QByteArray testData(const char* name);

/// As Qt writes it, without loss where the format can.
QByteArray written(const QImage& image, const char* format);

/// With one more chunk right behind the header.
QByteArray withPngChunk(const QByteArray& png, const char* type, const QByteArray& body);
QByteArray iccpBody(const QByteArray& profile);
/// A PNG of rows with their filter bytes. The kind: depth, color type, 0, 0, interlacing.
QByteArray pngFile(uint32_t width, uint32_t height, const QByteArray& kind, const QByteArray& rows);
/// 57 bytes with a chunk that claims a gigabyte.
QByteArray claimingPng(const char* type);
/// Numbers high byte first, four bytes each.
QByteArray bigEndianWords(const std::vector<uint32_t>& words);

/// With one more segment right behind the start mark; 0xE1 is EXIF's, 0xE2 that of profiles.
QByteArray withJpegSegment(const QByteArray& jpeg, uint8_t marker, const QByteArray& body);
QByteArray withJpegProfile(const QByteArray& jpeg, const QByteArray& profile); ///< In place of its own.
/// A JPEG of these inks (four bytes a pixel, as they lie in the file), of full quality; with Adobe's mark or without.
QByteArray cmykJpeg(const QByteArray& inks, int width, int height, bool isAdobe);

/// An extended WebP made of a plain one, with these chunks; empty ones are left out.
QByteArray extendedWebP(const QByteArray& plain, int width, int height, const QByteArray& profile,
                        const QByteArray& exif);

/// 12,000 pixels on a side and bytes enough for them, of which the first behind the header make no sense.
QByteArray senselessGif();
QByteArray senselessWebP();

struct TiffEntry {
    uint16_t tag;
    uint16_t
        type; ///< 1: bytes, 3: 16-bit numbers, 4: 32-bit numbers, 5: fractions of two 32-bit numbers each.
    std::vector<uint32_t> values;
};
enum class ByteOrder { little, big };
/// A TIFF directory with its values, then the pixels in strips of equal length (none: an EXIF block). Tags may come in
/// any order; those of the strips are added.
QByteArray tiffFile(std::vector<TiffEntry> entries, const QByteArray& pixels = {},
                    ByteOrder order = ByteOrder::little, uint32_t strips = 1);
/// A blank page as fax machines pack it, in one strip; the side is a multiple of 8.
QByteArray faxPage(uint32_t side);
/// The tags that every picture needs.
std::vector<TiffEntry> tiffTags(uint32_t width, uint32_t height, uint32_t photometric, uint32_t samples,
                                uint32_t bits);
/// An EXIF block with these tags; an orientation or a density of 0 is left out. The unit is 2 for inches, 3 for
/// centimetres.
QByteArray exifBlock(uint32_t orientation, uint32_t dots = 0, uint32_t below = 1, uint32_t unit = 2,
                     ByteOrder order = ByteOrder::little);

} // namespace qirn::test
