#include "brush/TipEdge.h"

#include "brush/TipCoverage.h"

namespace qirn {

double TipEdge::coverage(double dist) const {
    return isHard ? HWY_NAMESPACE::hardCoverage(*this, dist) : HWY_NAMESPACE::softCoverage(*this, dist);
}

} // namespace qirn
