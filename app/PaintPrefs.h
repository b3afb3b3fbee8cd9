#pragma once
#include <cstdint>

namespace qirn {

class Defaults;

/// What the user chooses once for every picture; kept as one JSON record in the defaults store.
struct PaintPrefs {
    double autosaveSeconds = 60; ///< 0 turns safety copies off.
    int64_t undoSteps = 100;     ///< 20 to 500.
    double pressureCurve = 1;    ///< Exponent: below 1 a soft touch, above 1 a firm one.
    bool mouseSpeedPressure = false;
    bool tabletEraserSwitches = true;
    bool showBrushOutline = true;
    bool showPerformance = false;
    bool newDocTransparent = false;
    bool eyedropperAllLayers = true;
    double checkerSize = 12; ///< Canvas pixels on a side of a square.

    static constexpr const char* key = "qirn.pt.prefs";
    /// The stored record, or the defaults when it is absent or does not decode as a whole.
    static PaintPrefs load(const Defaults& defaults);
    void save(Defaults& defaults) const;

    bool operator==(const PaintPrefs&) const = default;
};

} // namespace qirn
