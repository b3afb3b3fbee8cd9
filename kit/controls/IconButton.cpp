#include "kit/controls/IconButton.h"

#include "kit/Metrics.h"

namespace qirn {

IconButton::IconButton(Icon icon, const QString& tip, QWidget* parent) : QToolButton(parent) {
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setIcon(Icons::of(icon));
    setIconSize({Metrics::kIcon, Metrics::kIcon});
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setTip(tip);
}

void IconButton::setTip(const QString& tip) {
    setToolTip(tip);
    setAccessibleName(tip);
}

} // namespace qirn
