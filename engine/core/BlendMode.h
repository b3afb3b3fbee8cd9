#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qirn {

/// How a layer's colour mixes with what lies below. The order is that of the pop-up menu and is mixed into
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

inline constexpr int kBlendModeCount = 19;
inline constexpr std::array<BlendModeRow, kBlendModeCount> kBlendModes{{
    {BlendMode::normal, "normal", "Normal", "norm"},
    {BlendMode::multiply, "multiply", "Multiply", "mul "},
    {BlendMode::screen, "screen", "Screen", "scrn"},
    {BlendMode::overlay, "overlay", "Overlay", "over"},
    {BlendMode::darken, "darken", "Darken", "dark"},
    {BlendMode::lighten, "lighten", "Lighten", "lite"},
    {BlendMode::colorDodge, "colorDodge", "Color Dodge", "div "},
    {BlendMode::colorBurn, "colorBurn", "Color Burn", "idiv"},
    {BlendMode::hardLight, "hardLight", "Hard Light", "hLit"},
    {BlendMode::softLight, "softLight", "Soft Light", "sLit"},
    {BlendMode::difference, "difference", "Difference", "diff"},
    {BlendMode::exclusion, "exclusion", "Exclusion", "smud"},
    {BlendMode::add, "add", "Add (Linear Dodge)", "lddg"},
    {BlendMode::subtract, "subtract", "Subtract", "fsub"},
    {BlendMode::linearBurn, "linearBurn", "Linear Burn", "lbrn"},
    {BlendMode::hue, "hue", "Hue", "hue "},
    {BlendMode::saturation, "saturation", "Saturation", "sat "},
    {BlendMode::color, "color", "Color", "colr"},
    {BlendMode::luminosity, "luminosity", "Luminosity", "lum "},
}};

constexpr const BlendModeRow& rowOf(BlendMode mode) {
    return kBlendModes[static_cast<std::size_t>(mode)];
}
constexpr bool isSeparable(BlendMode mode) {
    return mode < BlendMode::hue;
} ///< Each channel for itself.

std::optional<BlendMode> blendModeWithId(std::string_view id);
BlendMode blendModeFromPSD(std::string_view key); ///< `normal` for a key that is not known.

} // namespace qirn
