#include "kit/controls/RoundButton.h"

#include "kit/Metrics.h"

namespace qirn {

QSize RoundButton::sizeHint() const {
    return {Metrics::kRailButton, Metrics::kRailButton};
}

} // namespace qirn
