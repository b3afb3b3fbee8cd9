#include "app/canvas/CanvasShadow.h"

#include <cmath>

#include <QImage>
#include <QPainter>

namespace qirn {

namespace {

constexpr double kOpacity = 0.6;
constexpr double kBlur = 14; // standard deviation of the blurred edge, canvas pixels
constexpr double kDrop = 4;  // canvas pixels downward
constexpr int kReach = 32;   // canvas pixels to each side of the edge over which it fades out

/// A corner of the shadow: `2 kReach` pixels square, with the edge's corner in its middle, fading to the top left.
QImage makeCorner() {
    QImage corner(2 * kReach, 2 * kReach, QImage::Format_ARGB32_Premultiplied);
    const auto edge = [](int i) { return 0.5 * std::erfc((kReach - 0.5 - i) / (kBlur * std::sqrt(2.0))); };
    for (int y = 0; y < corner.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(corner.scanLine(y));
        for (int x = 0; x < corner.width(); ++x) {
            row[x] = qRgba(0, 0, 0, static_cast<int>(std::lround(255 * kOpacity * edge(x) * edge(y))));
        }
    }
    return corner;
}

} // namespace

void drawCanvasShadow(QPainter& painter, const QRectF& canvas) {
    static const QImage corner = makeCorner();
    static const QImage corners[2][2] = {{corner, corner.mirrored(true, false)},
                                         {corner.mirrored(false, true), corner.mirrored(true, true)}};
    const QRectF edge = canvas.translated(0, kDrop);
    // Small canvases have no room for two whole corners on a side: the corners shrink.
    const double reachX = std::min<double>(kReach, edge.width() / 2),
                 reachY = std::min<double>(kReach, edge.height() / 2);
    const double xs[4] = {edge.left() - kReach, edge.left() + reachX, edge.right() - reachX,
                          edge.right() + kReach};
    const double ys[4] = {edge.top() - kReach, edge.top() + reachY, edge.bottom() - reachY,
                          edge.bottom() + kReach};
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col) {
            if (row == 1 && col == 1) continue; // under the picture
            const QImage& source = corners[row / 2][col / 2];
            // A side stretches the innermost line of a corner.
            const double inner = 2 * kReach - 1;
            const QRectF part(col == 1 ? inner : (col == 0 ? 0 : 2 * kReach - (kReach + reachX)),
                              row == 1 ? inner : (row == 0 ? 0 : 2 * kReach - (kReach + reachY)),
                              col == 1 ? 1 : kReach + reachX, row == 1 ? 1 : kReach + reachY);
            const QRectF target(QPointF(xs[col], ys[row]), QPointF(xs[col + 1], ys[row + 1]));
            if (!target.isEmpty()) painter.drawImage(target, source, part);
        }
    }
}

} // namespace qirn
