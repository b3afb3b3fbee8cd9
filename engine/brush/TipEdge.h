#pragma once

namespace qirn {

/// How the coverage of a tip falls off with the distance from its center, for every kind of brush. 64-bit, in
/// pixels. The formulas stand in TipCoverage.h.
struct TipEdge {
    double r;
    double inner = 0; // soft tip: full coverage up to here
    double band = 1;  // soft tip: from `inner` to `r`
    bool isHard;

    TipEdge(double radius, double hardness) : r(radius), isHard(hardness >= 0.99 || radius < 1.5) {
        if (isHard) return;
        inner = r * hardness;
        band = r - inner;
    }

    double coverage(double dist) const; ///< 0 to 1; 0 where the tip does not touch.
};

} // namespace qirn
