#include "kit/controls/IconButton.h"

#include "kit/QirnKit.h"

namespace qirn {

IconButton::IconButton(Icon icon, const QString& tip, QWidget* parent, int Metrics::*iconSide)
    : QToolButton(parent) {
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setIcon(Icons::themed(icon));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setTip(tip);
    QirnKit::followMetrics(this, [this, iconSide](const Metrics& m) {
        setIconSize({m.*iconSide, m.*iconSide});
    });
}

void IconButton::setTip(const QString& tip) {
    if (tip == toolTip()) return;
    setToolTip(tip);
    setAccessibleName(tip);
}

} // namespace qirn
