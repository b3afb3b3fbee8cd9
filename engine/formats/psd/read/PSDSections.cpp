#include "formats/psd/read/PSDSections.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace qirn {

namespace {

using namespace std::string_view_literals;

template <class Keys> bool isAmong(std::string_view key, const Keys& keys) {
    return std::find(std::begin(keys), std::end(keys), key) != std::end(keys);
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

/// Layers of 16 and 32 bits stand in a block behind the ordinary layer information, which is empty then.
void readLayerSection(BEReader in, PSDSections& sections) {
    const bool isLarge = sections.header.isLarge;
    const auto noteCount = [&](BEReader layers) {
        if (layers.remaining() < 2) return;
        const int16_t count = layers.i16(); // negative: the merged picture has transparency
        sections.hasLayers |= count != 0;
        sections.hasAlpha |= count < 0;
    };
    noteCount(BEReader(in.slice(isLarge ? static_cast<int64_t>(in.u64()) : in.u32())));
    if (in.remaining() < 4) return;
    in.skip(in.u32()); // global mask
    for (int64_t at = in.pos(); const auto block = readPSDBlock(in, at, in.size(), isLarge);) {
        const auto data = in.slice(block->size);
        at = in.pos() + (4 - block->size % 4) % 4;
        if (isAmong(block->key, std::array{"Layr"sv, "Lr16"sv, "Lr32"sv})) noteCount(BEReader(data));
        if (isAmong(block->key, std::array{"Mtrn"sv, "Mt16"sv, "Mt32"sv})) sections.hasAlpha = true;
    }
}

} // namespace

std::optional<PSDSections> psdSectionsOf(std::span<const uint8_t> file) {
    BEReader in(file);
    const auto header = readPSDHeader(in);
    if (!header || !isKnown(header->mode, header->depth)) return std::nullopt;
    PSDSections sections{.header = *header};
    sections.colorTable = in.slice(in.u32());
    sections.resources = readPSDResources(in);

    const uint64_t layerBytes = header->isLarge ? in.u64() : in.u32();
    const auto layers = in.slice(static_cast<int64_t>(layerBytes));
    try {
        if (!layers.empty()) readLayerSection(BEReader(layers), sections);
    } catch (const BEReader::Short&) {
        // What was read before the damage is used; the merged picture does not depend on the rest.
    }
    // Without layers nothing tells transparency from a saved channel but this list, which not every writer gives.
    if (!sections.hasLayers && !sections.hasAlpha)
        sections.hasAlpha = !sections.resources.listsAlphas || sections.resources.namesTransparency;
    sections.hasAlpha = sections.hasAlpha && header->mode != PSDColorMode::bitmap &&
                        header->mode != PSDColorMode::multichannel &&
                        header->channels > colorChannelsOf(*header);
    sections.mergedPicture = in.slice(in.remaining());
    return sections;
}

int colorChannelsOf(const PSDHeader& header) {
    switch (header.mode) {
    case PSDColorMode::rgb:
    case PSDColorMode::lab:
        return 3;
    case PSDColorMode::cmyk:
        return 4;
    case PSDColorMode::multichannel: // the inks of a print, or a single one that is seen as gray
        return header.channels < 3 ? 1 : std::min(header.channels, 4);
    default:
        return 1;
    }
}

} // namespace qirn
