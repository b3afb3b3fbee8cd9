#include "support/PictureFiles.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <QBuffer>
#include <QFile>
#include <QImageWriter>

#include <jpeglib.h>
#include <zlib.h>

namespace qirn::test {

namespace {

QByteArray number(uint32_t value, int bytes, ByteOrder order) {
    QByteArray text;
    for (int i = 0; i < bytes; ++i) {
        const int shift = 8 * (order == ByteOrder::little ? i : bytes - 1 - i);
        text.append(static_cast<char>(value >> shift));
    }
    return text;
}
QByteArray big(uint32_t value, int bytes) {
    return number(value, bytes, ByteOrder::big);
}
QByteArray little(uint32_t value, int bytes) {
    return number(value, bytes, ByteOrder::little);
}

int sizeOfType(uint16_t type) {
    return type == 1 ? 1 : type == 3 ? 2 : 4;
}

QByteArray riffChunk(const char* type, const QByteArray& body) {
    QByteArray chunk = QByteArray(type) + little(static_cast<uint32_t>(body.size()), 4) + body;
    if (body.size() % 2 == 1) chunk.append('\0');
    return chunk;
}

} // namespace

QByteArray testData(const char* name) {
    QFile file(QStringLiteral(QIRN_TEST_DATA "/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly)) qFatal("no %s", name);
    return file.readAll();
}

QByteArray written(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    writer.setQuality(100);
    if (!writer.write(image)) qFatal("no writer for %s", format);
    return bytes;
}

QByteArray pngChunk(const char* type, const QByteArray& body) {
    const QByteArray marked = QByteArray(type) + body;
    const uLong sum =
        crc32(0, reinterpret_cast<const Bytef*>(marked.constData()), static_cast<uInt>(marked.size()));
    return big(static_cast<uint32_t>(body.size()), 4) + marked + big(static_cast<uint32_t>(sum), 4);
}

QByteArray withPngChunk(const QByteArray& png, const char* type, const QByteArray& body) {
    constexpr int kBehindHeader = 33;
    return png.left(kBehindHeader) + pngChunk(type, body) + png.mid(kBehindHeader);
}

QByteArray pngFile(uint32_t width, uint32_t height, const QByteArray& kind, const QByteArray& rows) {
    return "\x89PNG\r\n\x1A\n" + pngChunk("IHDR", bigEndianWords({width, height}) + kind) +
           pngChunk("IDAT", qCompress(rows).mid(4));
}

QByteArray claimingPng(const char* type) {
    constexpr uint32_t kGigabyte = 1 << 30;
    const QByteArray header = pngFile(1, 1, QByteArray("\x08\0\0\0\0", 5), {}).left(33);
    return header + big(kGigabyte, 4) + type + QByteArray("Title\0\0\0wide", 12) + big(0, 4);
}

QByteArray iccpBody(const QByteArray& profile) {
    return QByteArray("p\0\0", 3) + qCompress(profile).mid(4); // Qt puts the length before the stream
}

QByteArray bigEndianWords(const std::vector<uint32_t>& words) {
    QByteArray bytes;
    for (const uint32_t word : words) bytes += big(word, 4);
    return bytes;
}

QByteArray withJpegSegment(const QByteArray& jpeg, uint8_t marker, const QByteArray& body) {
    QByteArray result = jpeg;
    result.insert(2, QByteArray(1, '\xFF') + static_cast<char>(marker) +
                         big(static_cast<uint32_t>(body.size() + 2), 2) + body);
    return result;
}

QByteArray withJpegProfile(const QByteArray& jpeg, const QByteArray& profile) {
    QByteArray bare = jpeg;
    const qsizetype own = bare.indexOf("\xFF\xE2");
    if (own >= 0)
        bare.remove(own, 2 + static_cast<uint8_t>(bare[own + 2]) * 256 + static_cast<uint8_t>(bare[own + 3]));
    return withJpegSegment(bare, 0xE2, QByteArray("ICC_PROFILE\0\1\1", 14) + profile);
}

QByteArray cmykJpeg(const QByteArray& inks, int width, int height, bool isAdobe) {
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* file = nullptr;
    unsigned long bytes = 0;
    jpeg_mem_dest(&jpeg, &file, &bytes);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 100, TRUE);
    jpeg.write_Adobe_marker = isAdobe;
    jpeg_start_compress(&jpeg, TRUE);
    QByteArray copy = inks;
    while (jpeg.next_scanline < jpeg.image_height) {
        auto row = reinterpret_cast<JSAMPROW>(copy.data() + jpeg.next_scanline * jpeg.image_width * 4);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    const QByteArray result(reinterpret_cast<const char*>(file), static_cast<qsizetype>(bytes));
    std::free(file);
    return result;
}

QByteArray extendedWebP(const QByteArray& plain, int width, int height, const QByteArray& profile,
                        const QByteArray& exif) {
    const uint32_t flags = (profile.isEmpty() ? 0u : 0x20u) | (exif.isEmpty() ? 0u : 0x08u) | 0x10u; // alpha
    QByteArray body =
        "WEBP" + riffChunk("VP8X", little(flags, 4) + little(static_cast<uint32_t>(width - 1), 3) +
                                       little(static_cast<uint32_t>(height - 1), 3));
    if (!profile.isEmpty()) body += riffChunk("ICCP", profile);
    body += plain.mid(12);
    if (!exif.isEmpty()) body += riffChunk("EXIF", exif);
    return "RIFF" + little(static_cast<uint32_t>(body.size()), 4) + body;
}

QByteArray senselessGif() {
    const QByteArray side = little(12'000, 2), sides = side + side;
    return "GIF87a" + sides + QByteArray("\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0", 14) + sides +
           QByteArray("\0\2", 2) + QByteArray(60'000, '\xFF');
}

QByteArray senselessWebP() {
    const QByteArray chunk =
        riffChunk("VP8L", '\x2F' + little(11'999u | 11'999u << 14, 4) + QByteArray(60'000, '\xFF'));
    return "RIFF" + little(static_cast<uint32_t>(chunk.size() + 4), 4) + "WEBP" + chunk;
}

QByteArray tiffFile(std::vector<TiffEntry> entries, const QByteArray& pixels, ByteOrder order,
                    uint32_t strips) {
    if (!pixels.isEmpty()) {
        const auto stripBytes = static_cast<uint32_t>(pixels.size()) / strips;
        entries.push_back({279, 4, std::vector<uint32_t>(strips, stripBytes)});
        entries.push_back({273, 4, std::vector<uint32_t>(strips)});
        const auto at =
            static_cast<uint32_t>(tiffFile(entries, {}, order).size()); // as long with other places
        for (uint32_t i = 0; i < strips; ++i) entries.back().values[i] = at + i * stripBytes;
        return tiffFile(std::move(entries), {}, order) + pixels;
    }
    constexpr uint32_t kDirectoryAt = 8;
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.tag < b.tag; });
    const auto count = static_cast<uint32_t>(entries.size()), valuesAt = kDirectoryAt + 2 + count * 12 + 4;
    QByteArray file = (order == ByteOrder::little ? QByteArray("II*\0", 4) : QByteArray("MM\0*", 4)) +
                      number(kDirectoryAt, 4, order) + number(count, 2, order);
    QByteArray values; // that do not fit their entry
    for (const TiffEntry& entry : entries) {
        const uint32_t perValue = entry.type == 5 ? 2 : 1;
        file += number(entry.tag, 2, order) + number(entry.type, 2, order) +
                number(static_cast<uint32_t>(entry.values.size()) / perValue, 4, order);
        QByteArray bytes;
        for (const uint32_t value : entry.values) bytes += number(value, sizeOfType(entry.type), order);
        const bool fits = bytes.size() <= 4;
        file += fits ? bytes.leftJustified(4, '\0')
                     : number(valuesAt + static_cast<uint32_t>(values.size()), 4, order);
        if (!fits) values += bytes + QByteArray(bytes.size() % 2, '\0');
    }
    return file + number(0, 4, order) + values;
}

QByteArray faxPage(uint32_t side) {
    auto tags = tiffTags(side, side, 0, 1, 1);
    tags[3].values = {4};
    // A bit a line says that it is like the one before; then the end of the page.
    return tiffFile(tags, QByteArray(static_cast<qsizetype>(side / 8), '\xFF') + QByteArray("\0\x10\x01", 3));
}

std::vector<TiffEntry> tiffTags(uint32_t width, uint32_t height, uint32_t photometric, uint32_t samples,
                                uint32_t bits) {
    return {{256, 4, {width}},
            {257, 4, {height}},
            {258, 3, std::vector<uint32_t>(samples, bits)},
            {259, 3, {1}},
            {262, 3, {photometric}},
            {277, 3, {samples}},
            {278, 4, {height}},
            {284, 3, {1}}};
}

QByteArray exifBlock(uint32_t orientation, uint32_t dots, uint32_t below, uint32_t unit, ByteOrder order) {
    std::vector<TiffEntry> entries;
    if (orientation != 0) entries.push_back({274, 3, {orientation}});
    if (dots != 0) {
        entries.push_back({282, 5, {dots, below}});
        entries.push_back({296, 3, {unit}});
    }
    return tiffFile(std::move(entries), {}, order);
}

} // namespace qirn::test
