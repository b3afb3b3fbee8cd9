#pragma once
#include <cmath>

namespace qirn {

/// How the coverage of a tip falls off with the distance from its centre, for every kind of brush. 64-bit, in
/// pixels.
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

    /// A linear edge one pixel wide, centred on the radius.
    double hardCoverage(double dist) const {
        const double a = r - dist + 0.5;
        return a >= 1 ? 1 : a > 0 ? a : 0;
    }
    /// A smooth step from 1 at `inner` to 0 at the radius.
    double softCoverage(double dist) const {
        const double t = (dist - inner) / band;
        const double c = 1 - t * t * (3 - 2 * t);
        return dist <= inner ? 1 : dist >= r ? 0 : c > 0 ? c : 0;
    }
    /// 0 to 1; 0 where the tip does not touch.
    double coverage(double dist) const { return isHard ? hardCoverage(dist) : softCoverage(dist); }
};

} // namespace qirn
