#pragma once
#include "platform/RowOrder.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qirn {

/// How a layer's color mixes with what lies below. The order is that of the pop-up menu and is mixed into
/// picture fingerprints, so it never changes.
enum class BlendMode : uint8_t {
    normal,
    multiply,
    screen,
    overlay,
    darken,
    lighten,
    colorDodge,
    colorBurn,
    hardLight,
    softLight,
    difference,
    exclusion,
    add,
    subtract,
    linearBurn,
    hue,
    saturation,
    color,
    luminosity,
};

struct BlendModeRow {
    BlendMode mode;
    const char* id;          ///< As files store it.
    const char* displayName; ///< English source text of the menu.
    const char* psdKey;      ///< Four characters.
};

/// A new mode is an enumerator and a row at the end, and its Formula in compositing/BlendFormulas.h.
inline constexpr std::array kBlendModes{
    BlendModeRow{BlendMode::normal, "normal", "Normal", "norm"},
    BlendModeRow{BlendMode::multiply, "multiply", "Multiply", "mul "},
    BlendModeRow{BlendMode::screen, "screen", "Screen", "scrn"},
    BlendModeRow{BlendMode::overlay, "overlay", "Overlay", "over"},
    BlendModeRow{BlendMode::darken, "darken", "Darken", "dark"},
    BlendModeRow{BlendMode::lighten, "lighten", "Lighten", "lite"},
    BlendModeRow{BlendMode::colorDodge, "colorDodge", "Color Dodge", "div "},
    BlendModeRow{BlendMode::colorBurn, "colorBurn", "Color Burn", "idiv"},
    BlendModeRow{BlendMode::hardLight, "hardLight", "Hard Light", "hLit"},
    BlendModeRow{BlendMode::softLight, "softLight", "Soft Light", "sLit"},
    BlendModeRow{BlendMode::difference, "difference", "Difference", "diff"},
    BlendModeRow{BlendMode::exclusion, "exclusion", "Exclusion", "smud"},
    BlendModeRow{BlendMode::add, "add", "Add (Linear Dodge)", "lddg"},
    BlendModeRow{BlendMode::subtract, "subtract", "Subtract", "fsub"},
    BlendModeRow{BlendMode::linearBurn, "linearBurn", "Linear Burn", "lbrn"},
    BlendModeRow{BlendMode::hue, "hue", "Hue", "hue "},
    BlendModeRow{BlendMode::saturation, "saturation", "Saturation", "sat "},
    BlendModeRow{BlendMode::color, "color", "Color", "colr"},
    BlendModeRow{BlendMode::luminosity, "luminosity", "Luminosity", "lum "},
};
inline constexpr int kBlendModeCount = static_cast<int>(kBlendModes.size());
static_assert(isInOrder(kBlendModes, &BlendModeRow::mode));

constexpr const BlendModeRow& rowOf(BlendMode mode) {
    return kBlendModes[static_cast<std::size_t>(mode)];
}
/// Whether the mode works on each channel by itself.
constexpr bool isSeparable(BlendMode mode) {
    return mode < BlendMode::hue || mode > BlendMode::luminosity;
}

std::optional<BlendMode> blendModeWithId(std::string_view id);
BlendMode blendModeFromPSD(std::string_view key); ///< `normal` for a key that is not known.

} // namespace qirn
