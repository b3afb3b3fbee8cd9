#include "formats/psd/PSDHeader.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace qirn {

namespace {

using namespace std::string_view_literals;

constexpr std::array<uint8_t, 4> kSignature{'8', 'B', 'P', 'S'};
constexpr uint16_t kPlainVersion = 1, kLargeVersion = 2;

constexpr uint16_t kProfile = 1039;
constexpr uint16_t kTransparentIndex = 1047;
constexpr uint16_t kAlphaIdentifiers = 1053;
constexpr uint16_t kVersionInfo = 1057;
constexpr int64_t kResolutionBytes = 16;

constexpr int64_t kLeastBlock = 12; // bytes
constexpr std::array kKeysOfLongBlocks{"LMsk"sv, "Lr16"sv, "Lr32"sv, "Layr"sv, "Mt16"sv, "Mt32"sv, "Mtrn"sv,
                                       "Alph"sv, "FMsk"sv, "lnk2"sv, "FEid"sv, "FXid"sv, "PxSD"sv};

void readResource(uint16_t identifier, BEReader data, PSDResources& resources) {
    switch (identifier) {
    case PSDResources::kResolution: // pixels an inch in 16.16, whatever unit it was shown in
        if (data.size() >= kResolutionBytes) resources.dpi = dpiInRange(data.u32() / 65536.0);
        break;
    case kProfile:
        resources.profile = data.slice(data.remaining());
        break;
    case kTransparentIndex:
        resources.transparentIndex = data.u16();
        break;
    case kAlphaIdentifiers: // one number an extra channel; 0 is transparency
        resources.listsAlphas = data.remaining() >= 4;
        while (data.remaining() >= 4) resources.namesTransparency |= data.u32() == 0;
        break;
    case kVersionInfo:
        data.skip(4);
        resources.hasMergedPicture = data.u8() != 0;
        break;
    default:
        break;
    }
}

} // namespace

bool isPhotoshopFile(std::span<const uint8_t> file) {
    return file.size() >= kSignature.size() && std::equal(kSignature.begin(), kSignature.end(), file.begin());
}

std::optional<PSDHeader> readPSDHeader(BEReader& in) {
    if (!isPhotoshopFile(in.slice(std::min<int64_t>(4, in.remaining())))) return std::nullopt;
    const uint16_t version = in.u16();
    if (version != kPlainVersion && version != kLargeVersion) return std::nullopt;
    PSDHeader header{.isLarge = version == kLargeVersion};
    in.skip(6);
    header.channels = in.u16();
    header.height = in.u32();
    header.width = in.u32();
    header.depth = in.u16();
    header.mode = static_cast<PSDColorMode>(in.u16());
    return header;
}

PSDResources readPSDResources(BEReader& file) {
    BEReader in(file.slice(file.u32()));
    PSDResources resources;
    try {
        while (in.remaining() >= kLeastBlock) {
            if (in.text(4) != "8BIM") break;
            const uint16_t identifier = in.u16();
            const int nameLength = in.u8();
            in.skip(nameLength + (nameLength + 1) % 2); // with its length an even number of bytes
            const uint32_t size = in.u32();
            const auto data = in.slice(size);
            in.skip(std::min<int64_t>(size % 2, in.remaining()));
            try {
                readResource(identifier, BEReader(data), resources);
            } catch (const BEReader::Short&) {} // counts as missing
        }
    } catch (const BEReader::Short&) {} // what was read counts
    return resources;
}

std::optional<PSDBlock> readPSDBlock(BEReader& in, int64_t at, int64_t end, bool isLarge) {
    if (at + kLeastBlock > end) return std::nullopt;
    in.moveTo(at);
    const auto signature = in.text(4);
    if (signature != "8BIM" && signature != "8B64") return std::nullopt;
    PSDBlock block{in.text(4), 0};
    const auto& longKeys = kKeysOfLongBlocks;
    const bool isLong = isLarge && std::find(longKeys.begin(), longKeys.end(), block.key) != longKeys.end();
    block.size = isLong ? static_cast<int64_t>(in.u64()) : in.u32();
    return block;
}

} // namespace qirn
