#include "kit/controls/ChromeToggle.h"

#include <QPainter>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

ChromeToggle::ChromeToggle(const QString& label, QWidget* parent) : QCheckBox(label, parent) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setAccessibleName(label);
}

QSize ChromeToggle::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    const int text = fontMetrics().size(Qt::TextShowMnemonic, this->text()).width();
    // The tight gaps at both ends are for the focus ring.
    return {m.switchWidth + m.gap + text + 2 * m.tightGap, m.controlHeight};
}

void ChromeToggle::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    const bool on = isChecked();
    const double radius = m.switchHeight / 2.0;
    const QRectF track(m.tightGap, (height() - m.switchHeight) / 2.0, m.switchWidth, m.switchHeight);
    if (!isEnabled())
        ChromePaint::box(painter, track, radius, c.bar, c.divider);
    else if (on)
        ChromePaint::box(painter, track, radius, underMouse() ? c.accentHover : c.accent);
    else
        ChromePaint::box(painter, track, radius, c.well, underMouse() || isDown() ? c.edgeHover : c.edge);

    const double inset = m.px(3);
    const double side = m.switchHeight - 2 * inset;
    const double left = on ? track.right() - inset - side : track.left() + inset;
    const QColor knob = !isEnabled() ? c.faint : on ? c.onAccent : c.dim;
    ChromePaint::box(painter, QRectF(left, track.top() + inset, side, side), side / 2, knob);

    const QRectF label(track.right() + m.gap, 0, width() - track.right() - m.gap, height());
    ChromePaint::text(painter, label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextHideMnemonic, text(),
                      isEnabled() ? c.text : c.faint);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, rect(), m.radius);
}

} // namespace qirn
