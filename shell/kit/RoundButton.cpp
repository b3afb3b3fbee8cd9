#include "RoundButton.h"

#include "Metrics.h"

namespace qirn {

QSize RoundButton::sizeHint() const {
    return {Metrics::kRailButton, Metrics::kRailButton};
}

} // namespace qirn
