#include "core/PaintDocument.h"
#include "formats/ByteReader.h"
#include "formats/ImageExport.h"
#include "formats/PSDFile.h"
#include "formats/PSDPacking.h"
#include "formats/StraightPixels.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace qirn {

namespace {

using namespace PSDFile;

constexpr uint16_t kResolution = 1005;
constexpr uint16_t kRunLengths = 1; // the compression code of packed rows
constexpr int64_t kMostLayers = 32768;
constexpr int64_t kMostBytes = std::numeric_limits<uint32_t>::max(); // of a section

/// A channel as a layer's record names it, and the plane that it is.
struct Channel {
    int16_t identifier;
    int plane;
};
constexpr std::array<Channel, kPlanes> kChannels{{{-1, 3}, {0, 0}, {1, 1}, {2, 2}}};

void tag(BEWriter& out, const char* fourLetters) {
    out.bytes(QByteArray::fromRawData(fourLetters, 4));
}

void padToFour(BEWriter& out, int64_t length) {
    out.zeros((4 - length % 4) % 4);
}

/// Dots per inch as 16.16.
uint32_t fixedPoint(double dpi) {
    const double most = std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(std::min(std::max(1.0, dpi) * 65536, most));
}

void writeHead(BEWriter& out, const PaintDocument& doc) {
    tag(out, "8BPS");
    out.u16(1); // version
    out.zeros(6);
    out.u16(kPlanes);
    out.u32(static_cast<uint32_t>(doc.grid().height));
    out.u32(static_cast<uint32_t>(doc.grid().width));
    out.u16(8); // bits
    out.u16(3); // RGB
    out.u32(0); // colour mode data

    BEWriter resources;
    tag(resources, "8BIM");
    resources.u16(kResolution);
    resources.zeros(2); // no name
    resources.u32(16);
    for (int direction = 0; direction < 2; ++direction) {
        resources.u32(fixedPoint(doc.dpi));
        resources.u16(1); // pixels per inch
        resources.u16(1); // sizes in inches
    }
    out.u32(static_cast<uint32_t>(resources.size()));
    out.bytes(resources.data());
}

/// Bytes of a channel's data, its compression code included.
int64_t channelBytes(const PackedPlanes& planes, int plane) {
    return 2 + 2 * planes.rect().h + planes.planeBytes(plane);
}

void writeName(BEWriter& out, const QString& name) {
    QByteArray plain;
    for (const uint32_t scalar : name.toUcs4()) plain.append(scalar < 128 ? static_cast<char>(scalar) : '?');
    plain.truncate(255);
    out.u8(static_cast<uint8_t>(plain.size()));
    out.bytes(plain);
    padToFour(out, 1 + plain.size());

    BEWriter unicode;
    unicode.u32(static_cast<uint32_t>(name.size()));
    for (const QChar unit : name) unicode.u16(unit.unicode());
    padToFour(unicode, unicode.size());
    tag(out, "8BIM");
    tag(out, "luni");
    out.u32(static_cast<uint32_t>(unicode.size()));
    out.bytes(unicode.data());
}

void writeRecord(BEWriter& out, const Layer& layer, const PackedPlanes& planes) {
    const IRect& rect = planes.rect();
    for (const int64_t edge : {rect.y, rect.x, rect.maxY(), rect.maxX()}) out.i32(static_cast<int32_t>(edge));
    out.u16(kPlanes);
    for (const Channel& channel : kChannels) {
        out.i16(channel.identifier);
        out.u32(static_cast<uint32_t>(channelBytes(planes, channel.plane)));
    }
    tag(out, "8BIM");
    tag(out, rowOf(layer.blendMode).psdKey);
    out.u8(static_cast<uint8_t>(std::lround(std::clamp(layer.opacity, 0.0, 1.0) * 255)));
    out.u8(layer.isClipping ? 1 : 0);
    out.u8(static_cast<uint8_t>((layer.alphaLocked ? 1 : 0) | (layer.isVisible ? 0 : 2)));
    out.zeros(1);

    BEWriter extra;
    extra.u32(0); // no mask
    extra.u32(0); // no blending ranges
    writeName(extra, layer.name);
    out.u32(static_cast<uint32_t>(extra.size()));
    out.bytes(extra.data());
}

/// The bytes of a file whose head is written already and whose packed rows are put behind it: each block is given its
/// place, and all are copied side by side.
class Assembly {
public:
    explicit Assembly(BEWriter head) { own(head.take()); }

    /// Numbers between the packed rows.
    void own(QByteArray bytes) {
        numbers_.push_back(std::move(bytes)); // moving the list later leaves the bytes where they are
        add(bytesOf(numbers_.back()));
    }
    void addCounts(const PackedPlanes& planes, int plane) {
        BEWriter counts;
        for (const uint16_t count : planes.counts(plane)) counts.u16(count);
        own(counts.take());
    }
    void addRows(const PackedPlanes& planes, int plane) {
        for (const PackedBand& band : planes.bands()) add(band.bytes[static_cast<std::size_t>(plane)]);
    }

    QByteArray joined() const {
        QByteArray file(static_cast<qsizetype>(length_), Qt::Uninitialized);
        char* const start = file.data();
        concurrentPerform(static_cast<int64_t>(blocks_.size()), [&](int64_t i) {
            const auto& [at, bytes] = blocks_[static_cast<std::size_t>(i)];
            std::memcpy(start + at, bytes.data(), bytes.size());
        });
        return file;
    }

private:
    struct Block {
        int64_t at;
        std::span<const uint8_t> bytes;
    };
    void add(std::span<const uint8_t> bytes) {
        if (bytes.empty()) return;
        blocks_.push_back({length_, bytes});
        length_ += static_cast<int64_t>(bytes.size());
    }

    std::vector<QByteArray> numbers_;
    std::vector<Block> blocks_;
    int64_t length_ = 0;
};

QByteArray u16Bytes(uint16_t value) {
    BEWriter out;
    out.u16(value);
    return out.take();
}

[[noreturn]] void refuse() {
    throw ExportError::cannotEncode(displayName(ExportFormat::psdLayered));
}

} // namespace

QByteArray PSDFile::write(const PaintDocument& doc, Layered layered) {
    BEWriter head;
    writeHead(head, doc);
    std::vector<PackedPlanes> layers;
    int64_t padding = 0;
    if (layered == Layered::no) {
        head.u32(0);
    } else {
        if (doc.layerCount() > kMostLayers) refuse();
        layers = packLayers(doc, kMostBytes);
        const int64_t sectionAt = head.size();
        head.u32(0);
        head.u32(0);
        // Negative: the fourth channel of the finished picture is its transparency.
        head.i16(static_cast<int16_t>(-doc.layerCount()));
        int64_t channels = 0;
        for (int64_t i = 0; i < doc.layerCount(); ++i) {
            const PackedPlanes& planes = layers[static_cast<std::size_t>(i)];
            writeRecord(head, doc.layer(i), planes);
            for (const Channel& channel : kChannels) channels += channelBytes(planes, channel.plane);
        }
        const int64_t content = head.size() - (sectionAt + 8) + channels;
        padding = content % 2;
        const int64_t section =
            4 + content + padding + 4; // with its own length and that of the layers' masks
        if (section > kMostBytes) refuse();
        head.patchU32(sectionAt, static_cast<uint32_t>(section));
        head.patchU32(sectionAt + 4, static_cast<uint32_t>(content + padding));
    }

    Assembly file(std::move(head));
    for (const PackedPlanes& planes : layers) {
        for (const Channel& channel : kChannels) {
            file.own(u16Bytes(planes.rect().isEmpty() ? 0 : kRunLengths));
            file.addCounts(planes, channel.plane);
            file.addRows(planes, channel.plane);
        }
    }
    if (layered == Layered::yes) file.own(QByteArray(static_cast<qsizetype>(padding + 4), '\0'));
    const PackedPlanes finished = packFinishedPicture(doc);
    file.own(u16Bytes(kRunLengths));
    for (int plane = 0; plane < kPlanes; ++plane) file.addCounts(finished, plane);
    for (int plane = 0; plane < kPlanes; ++plane) file.addRows(finished, plane);
    return file.joined();
}

std::array<std::vector<uint8_t>, 4> PSDFile::planes(const RGBABuffer& buffer, const IRect& rect) {
    require(rect.isEmpty() || rect.intersection({0, 0, buffer.width(), buffer.height()}) == rect);
    std::array<std::vector<uint8_t>, 4> planes;
    for (int64_t y = rect.y; y < rect.maxY(); ++y) {
        for (int64_t x = rect.x; x < rect.maxX(); ++x) {
            const PixelBytes pixel = buffer.pixel(x, y);
            for (std::size_t channel = 0; channel < 3; ++channel)
                planes[channel].push_back(straight(pixel[channel], pixel[3]));
            planes[3].push_back(pixel[3]);
        }
    }
    return planes;
}

} // namespace qirn
