#include "shell/preferences/pen/PenTrace.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace qirn {

void PenTrace::resize(const QSize& size) {
    if (size == mask_.size() || size.isEmpty()) return;
    mask_ = mask_.isNull() ? QImage(size, QImage::Format_Indexed8) : mask_.copy(QRect(QPoint(), size));
    if (mask_.colorCount() > 0) return;
    mask_.setColorCount(256);
    mask_.fill(0);
}

QRect PenTrace::line(QPointF from, double fromRadius, QPointF to, double toRadius, Mark mark) {
    const QPointF along = to - from;
    const double length2 = QPointF::dotProduct(along, along);
    const double reach = std::max(fromRadius, toRadius) + 1;
    const QRect touched = QRectF(from, to)
                              .normalized()
                              .adjusted(-reach, -reach, reach, reach)
                              .toAlignedRect()
                              .intersected(mask_.rect());
    for (int y = touched.top(); y <= touched.bottom(); ++y) {
        uchar* row = mask_.scanLine(y);
        for (int x = touched.left(); x <= touched.right(); ++x) {
            const QPointF pixel = QPointF(x + 0.5, y + 0.5) - from;
            const double t =
                length2 > 0 ? std::clamp(QPointF::dotProduct(pixel, along) / length2, 0.0, 1.0) : 1;
            const QPointF away = pixel - t * along;
            const double radius = fromRadius + t * (toRadius - fromRadius);
            const double covered = std::clamp(radius - std::hypot(away.x(), away.y()) + 0.5, 0.0, 1.0);
            const auto byte = static_cast<uchar>(covered * 255 + 0.5);
            row[x] = mark == Mark::draw ? std::max(row[x], byte)
                                        : std::min(row[x], static_cast<uchar>(255 - byte));
        }
    }
    return touched;
}

void PenTrace::paint(QPainter& painter, const QRect& exposed, const QColor& color) {
    for (int covered = 0; covered < 256; ++covered) {
        const int alpha = covered * color.alpha() / 255;
        mask_.setColor(covered, qRgba(color.red(), color.green(), color.blue(), alpha));
    }
    painter.drawImage(exposed.topLeft(), mask_, exposed);
}

} // namespace qirn
