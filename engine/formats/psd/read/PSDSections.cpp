#include "formats/psd/read/PSDSections.h"

#include "formats/common/ByteReader.h"
#include "formats/common/PrintDensity.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace qirn {

namespace {

using namespace std::string_view_literals;

constexpr uint16_t kLargeVersion = 2;

constexpr uint16_t kResolution = 1005;
constexpr uint16_t kProfile = 1039;
constexpr uint16_t kTransparentIndex = 1047;
constexpr uint16_t kAlphaIdentifiers = 1053;
constexpr uint16_t kVersionInfo = 1057;

// Blocks whose length takes eight bytes in large files.
constexpr std::array kLongBlocks{"LMsk"sv, "Lr16"sv, "Lr32"sv, "Layr"sv, "Mt16"sv, "Mt32"sv, "Mtrn"sv,
                                 "Alph"sv, "FMsk"sv, "lnk2"sv, "FEid"sv, "FXid"sv, "PxSD"sv};

template <class Keys> bool isAmong(std::string_view key, const Keys& keys) {
    return std::find(std::begin(keys), std::end(keys), key) != std::end(keys);
}

std::string_view textIn(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool isKnown(PSDColorMode mode, int depth) {
    switch (mode) {
    case PSDColorMode::bitmap:
        return depth == 1;
    case PSDColorMode::indexed:
        return depth == 8;
    case PSDColorMode::gray:
    case PSDColorMode::rgb:
        return depth == 8 || depth == 16 || depth == 32;
    case PSDColorMode::cmyk:
    case PSDColorMode::multichannel:
    case PSDColorMode::duotone:
    case PSDColorMode::lab:
        return depth == 8 || depth == 16;
    }
    return false;
}

/// What the image resources say; the rest of the file needs it in one piece.
struct Resources {
    bool listsAlphas = false; // the extra channels are described, and
    bool namesTransparency = false;
};

void readResource(uint16_t identifier, BEReader data, PSDSections& sections, Resources& resources) {
    switch (identifier) {
    case kResolution: { // pixels an inch in 16.16, whatever unit it was shown in
        sections.dpi = dpiInRange(data.u32() / 65536.0);
        break;
    }
    case kProfile:
        sections.profile = data.slice(data.remaining());
        break;
    case kTransparentIndex:
        sections.transparentIndex = data.u16();
        break;
    case kAlphaIdentifiers: // one number an extra channel; 0 is transparency
        resources.listsAlphas = data.remaining() >= 4;
        while (data.remaining() >= 4) resources.namesTransparency |= data.u32() == 0;
        break;
    case kVersionInfo:
        data.skip(4);
        sections.hasMergedPicture = data.u8() != 0;
        break;
    default:
        break;
    }
}

/// Goes on until the first block that makes no sense; one too short for its content counts as missing.
Resources readResources(BEReader in, PSDSections& sections) {
    Resources resources;
    try {
        while (in.remaining() >= 12) {
            if (textIn(in.slice(4)) != "8BIM") break;
            const uint16_t identifier = in.u16();
            const int nameLength = in.u8();
            in.skip(nameLength + (nameLength + 1) % 2); // with its length an even number of bytes
            const uint32_t size = in.u32();
            const auto data = in.slice(size);
            in.skip(std::min<int64_t>(size % 2, in.remaining()));
            try {
                readResource(identifier, BEReader(data), sections, resources);
            } catch (const BEReader::Short&) {}
        }
    } catch (const BEReader::Short&) {}
    return resources;
}

/// Layers of 16 and 32 bits stand in a block behind the ordinary layer information, which is empty then.
void readLayerSection(BEReader in, PSDSections& sections) {
    const auto length = [&](bool isLong) { return static_cast<int64_t>(isLong ? in.u64() : in.u32()); };
    const auto noteCount = [&](BEReader layers) {
        if (layers.remaining() < 2) return;
        const int16_t count = layers.i16(); // negative: the merged picture has transparency
        sections.hasLayers |= count != 0;
        sections.hasAlpha |= count < 0;
    };
    noteCount(BEReader(in.slice(length(sections.isLarge))));
    if (in.remaining() < 4) return;
    in.skip(in.u32()); // global mask
    while (in.remaining() >= 12) {
        const auto signature = textIn(in.slice(4));
        if (signature != "8BIM" && signature != "8B64") return;
        const auto key = textIn(in.slice(4));
        const int64_t size = length(sections.isLarge && isAmong(key, kLongBlocks));
        const auto data = in.slice(size);
        in.skip(std::min<int64_t>((4 - size % 4) % 4, in.remaining()));
        if (isAmong(key, std::array{"Layr"sv, "Lr16"sv, "Lr32"sv})) noteCount(BEReader(data));
        if (isAmong(key, std::array{"Mtrn"sv, "Mt16"sv, "Mt32"sv})) sections.hasAlpha = true;
    }
}

} // namespace

std::optional<PSDSections> psdSectionsOf(std::span<const uint8_t> file) {
    BEReader in(file);
    if (textIn(in.slice(4)) != "8BPS") return std::nullopt;
    const uint16_t version = in.u16();
    if (version != 1 && version != kLargeVersion) return std::nullopt;
    PSDSections sections;
    sections.isLarge = version == kLargeVersion;
    in.skip(6);
    sections.channels = in.u16();
    sections.height = in.u32();
    sections.width = in.u32();
    sections.depth = in.u16();
    sections.mode = static_cast<PSDColorMode>(in.u16());
    if (!isKnown(sections.mode, sections.depth)) return std::nullopt;

    sections.colorTable = in.slice(in.u32());
    const Resources resources = readResources(BEReader(in.slice(in.u32())), sections);

    const uint64_t layerBytes = sections.isLarge ? in.u64() : in.u32();
    const auto layers = in.slice(static_cast<int64_t>(layerBytes));
    try {
        if (!layers.empty()) readLayerSection(BEReader(layers), sections);
    } catch (const BEReader::Short&) {
        // What could be read of it counts; the merged picture does not depend on the rest.
    }
    // Without layers nothing tells transparency from a saved channel but this list, which not every writer gives.
    if (!sections.hasLayers && !sections.hasAlpha)
        sections.hasAlpha = !resources.listsAlphas || resources.namesTransparency;
    sections.hasAlpha = sections.hasAlpha && sections.mode != PSDColorMode::bitmap &&
                        sections.mode != PSDColorMode::multichannel &&
                        sections.channels > colorChannelsOf(sections);
    sections.mergedPicture = in.slice(in.remaining());
    return sections;
}

int colorChannelsOf(const PSDSections& sections) {
    switch (sections.mode) {
    case PSDColorMode::rgb:
    case PSDColorMode::lab:
        return 3;
    case PSDColorMode::cmyk:
        return 4;
    case PSDColorMode::multichannel: // the inks of a print, or a single one that is seen as gray
        return sections.channels < 3 ? 1 : std::min(sections.channels, 4);
    default:
        return 1;
    }
}

} // namespace qirn
