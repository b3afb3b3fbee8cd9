#include <QStyleOption>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "kit/style/ChromeStyle.h"

namespace qirn {

void ChromeStyle::drawSlider(const QStyleOptionSlider& option, QPainter& painter,
                             const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const double thickness = m.px(4);
    const bool enabled = option.state.testFlag(State_Enabled);
    const bool across = option.orientation == Qt::Horizontal;
    const QRectF groove = proxy()->subControlRect(CC_Slider, &option, SC_SliderGroove, widget);
    const QRectF handle = proxy()->subControlRect(CC_Slider, &option, SC_SliderHandle, widget);
    QRectF track =
        across ? QRectF(groove.left(), groove.center().y() - thickness / 2, groove.width(), thickness)
               : QRectF(groove.center().x() - thickness / 2, groove.top(), thickness, groove.height());
    ChromePaint::box(painter, track, thickness / 2, c.well, c.edge);
    if (across && !option.upsideDown)
        track.setRight(handle.center().x());
    else if (across)
        track.setLeft(handle.center().x());
    else if (option.upsideDown)
        track.setTop(handle.center().y());
    else
        track.setBottom(handle.center().y());
    ChromePaint::box(painter, track, thickness / 2, enabled ? c.focus : c.faint);
    const double side = std::min(handle.width(), handle.height());
    QRectF thumb(0, 0, side, side);
    thumb.moveCenter(handle.center());
    ChromePaint::box(painter, thumb, side / 2, enabled ? c.text : c.faint, c.seam);
    if (showsFocus(option)) ChromePaint::focusRing(painter, option.rect, m.smallRadius);
}

void ChromeStyle::drawScrollBar(const QStyleOptionSlider& option, QPainter& painter,
                                const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    if (option.minimum == option.maximum) return;
    QRectF thumb = proxy()->subControlRect(CC_ScrollBar, &option, SC_ScrollBarSlider, widget);
    const double inset = (m.scrollBar - m.scrollThumb) / 2.0;
    thumb.adjust(inset, inset, -inset, -inset);
    const bool held =
        option.activeSubControls.testFlag(SC_ScrollBarSlider) && option.state.testFlag(State_Sunken);
    const bool over = option.state.testFlag(State_MouseOver);
    ChromePaint::box(painter, thumb, m.scrollThumb / 2.0, held ? c.text : over ? c.edgeHover : c.edge);
}

} // namespace qirn
