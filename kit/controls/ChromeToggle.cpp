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
    const int text = fontMetrics().size(Qt::TextShowMnemonic, this->text()).width();
    // The focus ring keeps off the switch and the text by one step of the grid.
    return {Metrics::kSwitchWidth + Metrics::kSpace8 + text + 2 * Metrics::kSpace4, Metrics::kControlHeight};
}

void ChromeToggle::paintEvent(QPaintEvent*) {
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    const bool on = isChecked();
    const double radius = Metrics::kSwitchHeight / 2.0;
    const QRectF track(Metrics::kSpace4, (height() - Metrics::kSwitchHeight) / 2.0, Metrics::kSwitchWidth,
                       Metrics::kSwitchHeight);
    if (!isEnabled())
        ChromePaint::box(painter, track, radius, c.bar, c.divider);
    else if (on)
        ChromePaint::box(painter, track, radius, underMouse() ? c.accentHover : c.accent);
    else
        ChromePaint::box(painter, track, radius, c.well, underMouse() || isDown() ? c.edgeHover : c.edge);

    constexpr double kInset = 3;
    const double side = Metrics::kSwitchHeight - 2 * kInset;
    const double left = on ? track.right() - kInset - side : track.left() + kInset;
    const QColor knob = !isEnabled() ? c.faint : on ? c.onAccent : c.dim;
    ChromePaint::box(painter, QRectF(left, track.top() + kInset, side, side), side / 2, knob);

    const QRectF label(track.right() + Metrics::kSpace8, 0, width() - track.right() - Metrics::kSpace8,
                       height());
    ChromePaint::text(painter, label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextHideMnemonic, text(),
                      isEnabled() ? c.text : c.faint);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, rect(), Metrics::kRadius);
}

} // namespace qirn
