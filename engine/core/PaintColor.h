#pragma once
#include <array>
#include <cstdint>
#include <optional>

#include <QString>

namespace qirn {

/// Four bytes of a pixel in memory order: red, green, blue, alpha, premultiplied, sRGB.
using PixelBytes = std::array<uint8_t, 4>;

/// A color as a user chooses it: straight sRGB in 64-bit floats, each from 0 to 1. It becomes premultiplied bytes
/// only where it is written to pixels.
struct PaintColor {
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 1;

    constexpr PaintColor() = default;
    PaintColor(double red, double green, double blue, double alpha = 1); ///< Each clamped to 0 to 1.
    static PaintColor fromBytes(uint8_t r, uint8_t g, uint8_t b, uint8_t a = 255);
    /// "#RGB", "#RRGGBB" or "#RRGGBBAA" with or without the "#", digits of either case.
    static std::optional<PaintColor> fromHex(const QString& text);
    /// From hue, saturation and value; the hue is a fraction of the circle and wraps.
    static PaintColor fromHSV(double h, double s, double v, double a = 1);
    static PaintColor black() { return {0, 0, 0, 1}; }
    static PaintColor white() { return {1, 1, 1, 1}; }
    static PaintColor clear() { return {0, 0, 0, 0}; }

    uint8_t r8() const; ///< Rounded half away from zero, as the three below.
    uint8_t g8() const;
    uint8_t b8() const;
    uint8_t a8() const;
    QString hex() const; ///< "#RRGGBB" in upper case; alpha is left out.

    struct HSB {
        double h; ///< Fraction of the circle, 0 up to 1.
        double s;
        double b;
    };
    HSB hsb() const;

    /// The pixel of this color: multiplied by alpha in 64-bit floats, then rounded half away from zero.
    PixelBytes premultiplied() const;

    bool operator==(const PaintColor&) const = default;
};

} // namespace qirn
