#pragma once
#include <cstdint>

namespace qirn {

class Store;

/// What the user chooses once for every picture; kept as one record in the store.
struct PaintPrefs {
    double autosaveSeconds = 60; ///< 30 to 600; 0 turns safety copies off.
    int64_t undoSteps = 100;     ///< 20 to 500.
    double pressureCurve = 1;    ///< Exponent, 0.4 to 2.5: below 1 a soft touch, above 1 a firm one.
    bool mouseSpeedPressure = false;
    bool tabletEraserSwitches = true;
    bool showBrushOutline = true;
    bool showPerformance = false;
    bool newDocTransparent = false;
    bool eyedropperAllLayers = true;
    double checkerSize = 12; ///< Canvas pixels on a side of a square, 4 to 40.

    static constexpr const char* key = "qirn.pt.prefs";
    /// The stored record, each value brought into its range, or the defaults when it is absent or does not decode as a
    /// whole.
    static PaintPrefs load(const Store& store);
    void save(Store& store) const;

    bool operator==(const PaintPrefs&) const = default;
};

} // namespace qirn
