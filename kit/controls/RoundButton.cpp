#include "kit/controls/RoundButton.h"

#include "kit/QirnKit.h"

namespace qirn {

RoundButton::RoundButton(Icon icon, const QString& tip, QWidget* parent) : IconButton(icon, tip, parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Maximum);
}

QSize RoundButton::minimumSizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {m.railButton, m.icon + m.tightGap};
}

QSize RoundButton::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {m.railButton, m.railButton};
}

} // namespace qirn
