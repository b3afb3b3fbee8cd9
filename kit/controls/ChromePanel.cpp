#include "kit/controls/ChromePanel.h"

#include <QPainter>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

ChromePanel::ChromePanel(Surface surface, Qt::Edges lines, QWidget* parent)
    : QWidget(parent),
      surface_(surface),
      lines_(lines) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void ChromePanel::paintEvent(QPaintEvent*) {
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    painter.fillRect(rect(), surface_ == Surface::bar ? c.bar : c.panel);
    using ChromePaint::Side;
    const bool mirrored = isRightToLeft();
    for (const auto& [edge, side] : {std::pair{Qt::LeftEdge, mirrored ? Side::right : Side::left},
                                     {Qt::TopEdge, Side::top},
                                     {Qt::RightEdge, mirrored ? Side::left : Side::right},
                                     {Qt::BottomEdge, Side::bottom}})
        if (lines_.testFlag(edge)) ChromePaint::line(painter, rect(), side, c.seam);
}

ChromeDivider::ChromeDivider(QWidget* parent) : QWidget(parent) {
    QirnKit::followMetrics(
        this, [this](const Metrics& m) { setFixedSize(m.px(1) + 2 * m.tightGap, m.controlHeight - m.gap); });
}

void ChromeDivider::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    QPainter painter(this);
    const QRectF middle(m.tightGap, 0, m.px(1), height());
    ChromePaint::line(painter, middle, ChromePaint::Side::left, QirnKitHost::colors().divider);
}

} // namespace qirn
