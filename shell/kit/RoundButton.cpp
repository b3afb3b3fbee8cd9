#include "RoundButton.h"

#include "Metrics.h"

namespace qirn {

RoundButton::RoundButton(Icon icon, const QString& tip, QWidget* parent) : QToolButton(parent) {
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus); // a click leaves the keys to the canvas
    setIcon(Icons::of(icon));
    setIconSize({Metrics::kIcon, Metrics::kIcon});
    setToolTip(tip);
    setAccessibleName(tip);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize RoundButton::sizeHint() const {
    return {Metrics::kRailButton, Metrics::kRailButton};
}

} // namespace qirn
