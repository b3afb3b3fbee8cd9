#include <QStyleOption>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "kit/style/ChromeStyle.h"

namespace qirn {

void ChromeStyle::drawRow(const QStyleOption& option, QPainter& painter) const {
    const ChromeColors& c = QirnKitHost::colors();
    const bool enabled = option.state.testFlag(State_Enabled);
    const QRectF rect = QRectF(option.rect).adjusted(2, 1, -2, -1);
    if (const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(&option);
        item && item->backgroundBrush.style() != Qt::NoBrush)
        painter.fillRect(option.rect, item->backgroundBrush);
    if (option.state.testFlag(State_Selected))
        ChromePaint::box(painter, rect, Metrics::kRadiusSmall, enabled ? c.selected : c.raised);
    else if (enabled && option.state.testFlag(State_MouseOver))
        ChromePaint::box(painter, rect, Metrics::kRadiusSmall, c.raised);
    if (showsFocus(option)) ChromePaint::focusRing(painter, rect, Metrics::kRadiusSmall);
}

void ChromeStyle::drawTab(const QStyleOptionTab& option, QPainter& painter) const {
    const ChromeColors& c = QirnKitHost::colors();
    const QRectF rect = option.rect;
    const bool chosen = option.state.testFlag(State_Selected);
    if (!chosen && option.state.testFlag(State_Enabled) && option.state.testFlag(State_MouseOver))
        ChromePaint::box(painter, rect.adjusted(2, 3, -2, -3), Metrics::kRadiusSmall, c.raised);
    if (chosen) {
        const double inset = Metrics::kSpace8;
        ChromePaint::box(painter, QRectF(rect.left() + inset, rect.bottom() - 2, rect.width() - 2 * inset, 2),
                         0, c.focus);
    }
    if (showsFocus(option))
        ChromePaint::focusRing(painter, rect.adjusted(1, 1, -1, -1), Metrics::kRadiusSmall);
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
