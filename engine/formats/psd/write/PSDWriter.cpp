#include "formats/psd/write/PSDWriter.h"

#include "core/PaintDocument.h"
#include "formats/psd/PSDFile.h"
#include "formats/psd/PSDHeader.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace qirn {

using namespace PSDFile;

namespace {

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

/// Returns where the lengths of the channels belong, which are still 0.
int64_t writeRecord(BEWriter& out, const Layer& layer, const IRect& rect) {
    for (const int64_t edge : {rect.y, rect.x, rect.maxY(), rect.maxX()}) out.i32(static_cast<int32_t>(edge));
    out.u16(kPlanes);
    const int64_t channelsAt = out.size();
    for (const Channel& channel : kChannels) {
        out.i16(channel.identifier);
        out.u32(0);
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
    return channelsAt;
}

/// Numbers and packed rows that follow each other in the file: gathered first, then copied side by side.
class Blocks {
public:
    void add(uint16_t number) { own({number}); }
    void addCounts(const PackedPlanes& planes, int plane) { own(planes.counts[checkedSize(plane)]); }
    void addRows(const PackedPlanes& planes, int plane) {
        for (const PackedBand& band : planes.bands) add(band[checkedSize(plane)]);
    }
    int64_t length() const { return length_; }

    void appendTo(BEWriter& out) const {
        const std::span<uint8_t> room = out.grow(length_);
        concurrentPerform(std::ssize(blocks_), [&](int64_t i) {
            const auto& [offset, bytes] = blocks_[checkedSize(i)];
            std::memcpy(room.data() + offset, bytes.data(), bytes.size());
        });
    }

private:
    struct Block {
        int64_t offset;
        std::span<const uint8_t> bytes;
    };
    void own(const std::vector<uint16_t>& numbers) {
        BEWriter out;
        for (const uint16_t number : numbers) out.u16(number);
        numbers_.push_back(out.take()); // moving the list later leaves the bytes where they are
        add(bytesOf(numbers_.back()));
    }
    void add(std::span<const uint8_t> bytes) {
        if (bytes.empty()) return;
        blocks_.push_back({length_, bytes});
        length_ += static_cast<int64_t>(bytes.size());
    }

    std::vector<QByteArray> numbers_;
    std::vector<Block> blocks_;
    int64_t length_ = 0;
};

std::vector<IRect> contentBounds(const PaintDocument& doc) {
    std::vector<IRect> bounds(checkedSize(doc.layerCount()));
    concurrentPerform(doc.layerCount(), [&](int64_t i) {
        bounds[checkedSize(i)] = doc.layer(i).contentBounds().value_or(IRect());
    });
    return bounds;
}

/// `channelsAt` is where the layer's record has the lengths of its channels.
void writeChannels(BEWriter& out, const PackedPlanes& planes, int64_t channelsAt) {
    Blocks blocks;
    for (const Channel& channel : kChannels) {
        const int64_t before = blocks.length();
        blocks.add(planes.rect.isEmpty() ? 0 : kRunLengths);
        blocks.addCounts(planes, channel.plane);
        blocks.addRows(planes, channel.plane);
        out.patchU32(channelsAt + 2, static_cast<uint32_t>(blocks.length() - before));
        channelsAt += 6;
    }
    if (out.size() + blocks.length() > kMostBytes) throw TooLarge(); // before the memory is taken
    blocks.appendTo(out);
}

} // namespace

void PSDFile::writeHead(BEWriter& out, const PaintDocument& doc) {
    tag(out, "8BPS");
    out.u16(1); // version
    out.zeros(6);
    out.u16(kPlanes);
    out.u32(static_cast<uint32_t>(doc.grid().height));
    out.u32(static_cast<uint32_t>(doc.grid().width));
    out.u16(8); // bits
    out.u16(3); // RGB
    out.u32(0); // color mode data

    BEWriter resources;
    tag(resources, "8BIM");
    resources.u16(PSDResources::kResolution);
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

void PSDFile::writeLayers(BEWriter& out, const PaintDocument& doc, PlanePacker& packer,
                          const Progress& progress) {
    if (doc.layerCount() > kMostLayers) throw TooLarge();
    const int64_t sectionAt = out.size();
    out.u32(0);
    out.u32(0);
    const int64_t contentAt = out.size();
    // Negative: the fourth channel of the finished picture is its transparency.
    out.i16(static_cast<int16_t>(-doc.layerCount()));
    const std::vector<IRect> bounds = contentBounds(doc);
    std::vector<int64_t> channelsAt;
    for (int64_t i = 0; i < doc.layerCount(); ++i)
        channelsAt.push_back(writeRecord(out, doc.layer(i), bounds[checkedSize(i)]));
    const auto behind = [&](std::size_t layers) {
        return static_cast<double>(layers) / static_cast<double>(bounds.size());
    };
    for (std::size_t i = 0; i < bounds.size(); ++i) {
        const Progress ofLayer = progress.part(behind(i), behind(i + 1));
        writeChannels(out, packer.layer(doc.layer(static_cast<int64_t>(i)), bounds[i], ofLayer),
                      channelsAt[i]);
    }
    padToFour(out, out.size() - contentAt); // one common reader refuses what is merely even
    out.patchU32(sectionAt + 4, static_cast<uint32_t>(out.size() - contentAt));
    out.u32(0); // no masks
    const int64_t section = out.size() - (sectionAt + 4);
    if (section > kMostBytes) throw TooLarge();
    out.patchU32(sectionAt, static_cast<uint32_t>(section));
}

void PSDFile::writeFinishedPicture(BEWriter& out, PlanePacker& packer, Matte matte,
                                   const Progress& progress) {
    const PackedPlanes finished = packer.finishedPicture(matte, progress);
    Blocks blocks;
    blocks.add(kRunLengths);
    for (int plane = 0; plane < kPlanes; ++plane) blocks.addCounts(finished, plane);
    for (int plane = 0; plane < kPlanes; ++plane) blocks.addRows(finished, plane);
    blocks.appendTo(out);
}

} // namespace qirn
