#include "platform/PathCoverage.h"

#include "platform/Require.h"

#include <algorithm>
#include <vector>

#include <QImage>
#include <QPainter>
#include <QTransform>

namespace qirn {

namespace {
constexpr int kBandRows = 1024; // bounds the scratch image when a mask is too wide for aligned rows

/// The path with chords for its curves. QPainter's own chords cut up to 17 of 255 off the edge of a small
/// ellipse; those of a sixteenth of its size less than 5, which is its error on straight edges.
QPainterPath withoutCurves(const QPainterPath& path) {
    constexpr double kFineness = 16;
    bool curved = false;
    for (int i = 0; i < path.elementCount() && !curved; ++i) curved = path.elementAt(i).isCurveTo();
    if (!curved) return path;
    const auto fine = path.toSubpathPolygons(QTransform::fromScale(kFineness, kFineness));
    const QTransform back = QTransform::fromScale(1 / kFineness, 1 / kFineness);
    QPainterPath result;
    for (const QPolygonF& outline : fine) result.addPolygon(back.map(outline));
    return result;
}
} // namespace

void fillPathCoverage(const QPainterPath& path, Antialias antialias, uint8_t* mask, int64_t width,
                      int64_t height) {
    require(width >= 1 && height >= 1 && width <= 32767 && height <= 32767);
    const QRectF box = path.boundingRect();
    if (path.isEmpty() || box.right() < 0 || box.bottom() < 0 || box.left() > static_cast<double>(width) ||
        box.top() > static_cast<double>(height)) {
        return;
    }
    QPainterPath winding = withoutCurves(path);
    winding.setFillRule(Qt::WindingFill);
    const int firstRow = static_cast<int>(std::max(0.0, std::floor(box.top())));
    const int endRow = static_cast<int>(std::min(static_cast<double>(height), std::ceil(box.bottom()) + 1));
    // QPainter needs rows of whole 32-bit words, which a mask's rows are not; it draws in bands that are copied.
    for (int top = firstRow; top < endRow; top += kBandRows) {
        const int rows = std::min(kBandRows, endRow - top);
        QImage band(static_cast<int>(width), rows, QImage::Format_Alpha8);
        band.fill(0);
        QPainter painter(&band);
        painter.setRenderHint(QPainter::Antialiasing, antialias == Antialias::yes);
        painter.translate(0, -top);
        painter.fillPath(winding, Qt::white);
        painter.end();
        for (int y = 0; y < rows; ++y) std::copy_n(band.constScanLine(y), width, mask + (top + y) * width);
    }
}

} // namespace qirn
