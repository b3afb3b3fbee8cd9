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
    for (const auto& [edge, side] : {std::pair{Qt::LeftEdge, Side::left},
                                     {Qt::TopEdge, Side::top},
                                     {Qt::RightEdge, Side::right},
                                     {Qt::BottomEdge, Side::bottom}})
        if (lines_.testFlag(edge)) ChromePaint::line(painter, rect(), side, c.seam);
}

ChromeDivider::ChromeDivider(QWidget* parent) : QWidget(parent) {
    setFixedSize(1 + 2 * Metrics::kSpace4, Metrics::kControlHeight - Metrics::kSpace8);
}

void ChromeDivider::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF middle(Metrics::kSpace4, 0, 1, height());
    ChromePaint::line(painter, middle, ChromePaint::Side::left, QirnKitHost::colors().divider);
}

} // namespace qirn
