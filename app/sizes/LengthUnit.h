#pragma once
#include <array>
#include <cstdint>

namespace qirn {

/// What the sides of a canvas are typed in.
enum class LengthUnit { pixels, inches, centimeters, millimeters };

struct LengthUnitRow {
    LengthUnit unit;
    const char* label;  ///< English source text.
    const char* suffix; ///< Behind the number.
    double perInch;     ///< 0 for pixels, which no resolution changes.
    int decimals;       ///< As many as a person needs to see.
};

inline constexpr std::array<LengthUnitRow, 4> kLengthUnits = {{
    {LengthUnit::pixels, "Pixels", " px", 0, 0},
    {LengthUnit::inches, "Inches", " in", 1, 3},
    {LengthUnit::centimeters, "Centimeters", " cm", 2.54, 2},
    {LengthUnit::millimeters, "Millimeters", " mm", 25.4, 1},
}};

constexpr const LengthUnitRow& rowOf(LengthUnit unit) {
    return kLengthUnits[static_cast<std::size_t>(unit)];
}

/// To the nearest whole pixel, halves away from zero; at `dpi` pixels an inch.
int64_t toPixels(double length, LengthUnit unit, double dpi);
/// 0 at a resolution that is not above 0, where only pixels have a length.
double fromPixels(int64_t pixels, LengthUnit unit, double dpi);

} // namespace qirn
