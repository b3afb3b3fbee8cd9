#include <QStyleOption>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "kit/style/ChromeStyle.h"

namespace qirn {

void ChromeStyle::drawRow(const QStyleOption& option, QPainter& painter) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const bool enabled = option.state.testFlag(State_Enabled);
    const QRectF rect = QRectF(option.rect).adjusted(m.inset, m.px(1), -m.inset, -m.px(1));
    if (const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(&option);
        item && item->backgroundBrush.style() != Qt::NoBrush)
        painter.fillRect(option.rect, item->backgroundBrush);
    if (option.state.testFlag(State_Selected))
        ChromePaint::box(painter, rect, m.smallRadius, enabled ? c.selected : c.raised);
    else if (enabled && option.state.testFlag(State_MouseOver))
        ChromePaint::box(painter, rect, m.smallRadius, c.raised);
    if (showsFocus(option)) ChromePaint::focusRing(painter, rect, m.smallRadius);
}

void ChromeStyle::drawTab(const QStyleOptionTab& option, QPainter& painter) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const QRectF rect = option.rect;
    const bool chosen = option.state.testFlag(State_Selected);
    if (!chosen && option.state.testFlag(State_Enabled) && option.state.testFlag(State_MouseOver))
        ChromePaint::box(painter, rect.adjusted(m.inset, m.px(3), -m.inset, -m.px(3)), m.smallRadius,
                         c.raised);
    if (chosen) {
        const double inset = m.gap;
        ChromePaint::box(
            painter, QRectF(rect.left() + inset, rect.bottom() - m.inset, rect.width() - 2 * inset, m.inset),
            0, c.focus);
    }
    if (showsFocus(option))
        ChromePaint::focusRing(painter, rect.adjusted(m.px(1), m.px(1), -m.px(1), -m.px(1)), m.smallRadius);
}

void ChromeStyle::drawTabLabel(const QStyleOptionTab& option, QPainter& painter) const {
    const ChromeColors& c = QirnKitHost::colors();
    const bool enabled = option.state.testFlag(State_Enabled);
    const bool bright = option.state.testFlag(State_Selected) || option.state.testFlag(State_MouseOver);
    ChromePaint::text(painter, option.rect, Qt::AlignCenter | Qt::TextHideMnemonic, option.text,
                      !enabled ? c.faint
                      : bright ? c.text
                               : c.dim);
}

void ChromeStyle::drawFrame(const QStyleOptionFrame& option, QPainter& painter) const {
    const ChromeColors& c = QirnKitHost::colors();
    if (option.lineWidth == 0) return;
    ChromePaint::box(painter, option.rect, 0, {}, c.edge);
}

} // namespace qirn
