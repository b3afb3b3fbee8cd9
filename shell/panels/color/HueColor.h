#pragma once
#include "core/PaintColor.h"

namespace qirn {

/// A hue, with saturation and value: fractions of 1.
struct HueColor {
    double h = 0;
    double s = 0;
    double v = 0;

    PaintColor paintColor() const { return PaintColor::fromHSV(h, s, v); }
    /// The color in this form. A gray has no hue and black no saturation: it keeps the ones of `before`.
    static HueColor of(const PaintColor& color, const HueColor& before) {
        const PaintColor::HSB read = color.hsb();
        return {read.b > 0 && read.s > 0 ? read.h : before.h, read.b > 0 ? read.s : before.s, read.b};
    }

    bool operator==(const HueColor&) const = default;
};

} // namespace qirn
