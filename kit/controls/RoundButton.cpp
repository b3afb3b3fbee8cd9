#include "kit/controls/RoundButton.h"

#include "kit/QirnKit.h"

namespace qirn {

QSize RoundButton::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {m.railButton, m.railButton};
}

} // namespace qirn
