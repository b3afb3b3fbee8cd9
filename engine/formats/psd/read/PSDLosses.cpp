#include "formats/psd/read/PSDLosses.h"

#include "formats/common/ByteReader.h"
#include "formats/common/ColorProfile.h"

#include <algorithm>
#include <array>
#include <vector>

#include <QCoreApplication>

namespace qirn::PSDFile {

namespace {

using namespace std::string_view_literals;

/// In the order of `Loss`.
constexpr const char* kWords[] = {
    QT_TRANSLATE_NOOP("ImportRemark", "masks"),
    QT_TRANSLATE_NOOP("ImportRemark", "layer effects"),
    QT_TRANSLATE_NOOP("ImportRemark", "fill opacity"),
    QT_TRANSLATE_NOOP("ImportRemark", "adjustment layers"),
    QT_TRANSLATE_NOOP("ImportRemark", "fill layers"),
    QT_TRANSLATE_NOOP("ImportRemark", "unknown blend modes"),
    QT_TRANSLATE_NOOP("ImportRemark", "blending ranges"),
    QT_TRANSLATE_NOOP("ImportRemark", "hidden groups"),
    QT_TRANSLATE_NOOP("ImportRemark", "group blending"),
    QT_TRANSLATE_NOOP("ImportRemark", "color profile"),
};

/// Blocks that are a loss wherever they stand.
struct Block {
    std::string_view key;
    Loss loss;
};
constexpr Block kBlocks[] = {
    {"lrFX"sv, Loss::layerEffects},     {"lfx2"sv, Loss::layerEffects},
    {"lmfx"sv, Loss::layerEffects},     {"SoCo"sv, Loss::fillLayers},
    {"GdFl"sv, Loss::fillLayers},       {"PtFl"sv, Loss::fillLayers},
    {"brit"sv, Loss::adjustmentLayers}, {"levl"sv, Loss::adjustmentLayers},
    {"curv"sv, Loss::adjustmentLayers}, {"expA"sv, Loss::adjustmentLayers},
    {"vibA"sv, Loss::adjustmentLayers}, {"hue "sv, Loss::adjustmentLayers},
    {"hue2"sv, Loss::adjustmentLayers}, {"blnc"sv, Loss::adjustmentLayers},
    {"blwh"sv, Loss::adjustmentLayers}, {"phfl"sv, Loss::adjustmentLayers},
    {"mixr"sv, Loss::adjustmentLayers}, {"clrL"sv, Loss::adjustmentLayers},
    {"nvrt"sv, Loss::adjustmentLayers}, {"post"sv, Loss::adjustmentLayers},
    {"thrs"sv, Loss::adjustmentLayers}, {"grdm"sv, Loss::adjustmentLayers},
    {"selc"sv, Loss::adjustmentLayers},
};

constexpr int kMaskDisabled = 2;
constexpr uint32_t kVectorMaskDisabled = 4;

template <class Look> Losses ifRead(Loss loss, Look look) {
    try {
        return look() ? Losses{loss} : Losses{};
    } catch (const BEReader::Short&) {
        return {};
    }
}

} // namespace

ImportRemarks remarksOf(const Losses& losses) {
    ImportRemarks remarks;
    for (const Loss loss : losses)
        remarks.push_back({ImportRemark::Kind::without,
                           QCoreApplication::translate("ImportRemark", kWords[static_cast<int>(loss)])});
    return remarks;
}

Losses lossesOfMask(std::span<const uint8_t> data) {
    return ifRead(Loss::masks, [&] {
        BEReader in(data);
        const int64_t top = in.i32(), left = in.i32(), bottom = in.i32(), right = in.i32();
        const bool hidesRound = in.u8() == 0;
        const bool isDisabled = in.u8() & kMaskDisabled;
        return !isDisabled && (hidesRound || (bottom > top && right > left));
    });
}

Losses lossesOfRanges(std::span<const uint8_t> data) {
    return ifRead(Loss::blendingRanges, [&] {
        BEReader in(data);
        while (in.remaining() >= 4)
            if (in.u32() != 0x0000FFFF) return true; // from black to white
        return false;
    });
}

Losses lossesOfBlock(std::string_view key, std::span<const uint8_t> data) {
    for (const Block& block : kBlocks)
        if (block.key == key) return {block.loss};
    BEReader in(data);
    if (key == "iOpa") return ifRead(Loss::fillOpacity, [&] { return in.u8() != 255; });
    if (key == "vmsk" || key == "vsms") {
        return ifRead(Loss::masks, [&] {
            in.skip(4); // version
            return (in.u32() & kVectorMaskDisabled) == 0;
        });
    }
    return {};
}

Losses lossesOfProfile(std::span<const uint8_t> icc) {
    const auto profile = ColorProfile::embedded(icc, {ColorModel::rgb, SampleType::u8, false, false});
    if (!profile) return {};
    std::vector<uint8_t> colors;
    for (const int r : {0, 60, 128, 200, 255})
        for (const int g : {0, 60, 128, 200, 255})
            for (const int b : {0, 60, 128, 200, 255})
                for (const int value : {r, g, b}) colors.push_back(static_cast<uint8_t>(value));
    const std::size_t count = colors.size() / 3;
    std::vector<uint8_t> shown(count * 4);
    profile->convert(colors.data(), shown.data(), static_cast<int64_t>(count));
    for (std::size_t i = 0; i < count; ++i)
        if (!std::equal(&colors[3 * i], &colors[3 * i] + 3, &shown[4 * i])) return {Loss::colorProfile};
    return {};
}

} // namespace qirn::PSDFile
