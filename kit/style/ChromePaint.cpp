#include "kit/style/ChromePaint.h"

#include <algorithm>
#include <cmath>

#include <QGuiApplication>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"

namespace qirn::ChromePaint {

namespace {

/// Centers a pixmap, which has the painter's device ratio, on whole device pixels.
void place(QPainter& painter, const QRectF& within, const QPixmap& pixmap) {
    const QSizeF size = pixmap.deviceIndependentSize();
    const QPointF corner(within.center().x() - size.width() / 2, within.center().y() - size.height() / 2);
    const QTransform toDevice = painter.deviceTransform();
    const QPointF device = toDevice.map(corner);
    const QPointF onPixel(std::round(device.x()), std::round(device.y()));
    painter.drawPixmap(toDevice.inverted().map(onPixel), pixmap);
}

/// The left is the right where the application is read from right to left.
int visualFlags(int flags) {
    if (!QGuiApplication::isRightToLeft()) return flags;
    constexpr int sides = int{Qt::AlignLeft} | int{Qt::AlignRight};
    return (flags & sides ? flags ^ sides : flags) | int{Qt::AlignAbsolute};
}

} // namespace

double deviceRatio(const QPainter& painter) {
    return painter.device()->devicePixelRatioF();
}

double hairline(const QPainter& painter) {
    const double ratio = deviceRatio(painter);
    return std::max(1.0, std::floor(ratio * QirnKitHost::metrics().zoom)) / ratio;
}

QRectF snapped(const QPainter& painter, const QRectF& rect) {
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(rect);
    const QPointF topLeft(std::round(device.left()), std::round(device.top()));
    const QPointF bottomRight(std::round(device.right()), std::round(device.bottom()));
    return toDevice.inverted().mapRect(QRectF(topLeft, bottomRight));
}

QRectF visual(const QRectF& within, const QRectF& rect) {
    if (!QGuiApplication::isRightToLeft()) return rect;
    return {within.left() + within.right() - rect.right(), rect.top(), rect.width(), rect.height()};
}

QRect visual(const QRect& within, const QRect& rect) {
    return visual(QRectF(within), QRectF(rect)).toRect();
}

void box(QPainter& painter, const QRectF& rect, double radius, const QColor& fill, const QColor& edge) {
    const QRectF area = snapped(painter, rect);
    const double r = std::min({radius, area.width() / 2, area.height() / 2});
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (fill.isValid()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(area, r, r);
    }
    if (edge.isValid()) {
        const double width = hairline(painter);
        const double inset = width / 2;
        painter.setPen(QPen(edge, width));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), std::max(0.0, r - inset),
                                std::max(0.0, r - inset));
    }
    painter.restore();
}

void focusRing(QPainter& painter, const QRectF& rect, double radius) {
    const Metrics& m = QirnKitHost::metrics();
    const double ratio = deviceRatio(painter);
    const double width = std::max(1.0, std::round(m.focusWidth * ratio)) / ratio;
    const QRectF area = snapped(painter, rect).adjusted(width / 2, width / 2, -width / 2, -width / 2);
    const double r = std::min({radius, rect.width() / 2, rect.height() / 2}) - width / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QirnKitHost::colors().focus, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(area, std::max(0.0, r), std::max(0.0, r));
    painter.restore();
}

void line(QPainter& painter, const QRectF& rect, Side side, const QColor& color) {
    QRectF area = snapped(painter, rect);
    const double width = hairline(painter);
    switch (side) {
    case Side::left:
        area.setWidth(width);
        break;
    case Side::top:
        area.setHeight(width);
        break;
    case Side::right:
        area.setLeft(area.right() - width);
        break;
    case Side::bottom:
        area.setTop(area.bottom() - width);
        break;
    }
    painter.fillRect(area, color);
}

void icon(QPainter& painter, const QRectF& within, Icon icon, int size, const QColor& color) {
    place(painter, within, Icons::pixmap(icon, size, deviceRatio(painter), color));
}

void icon(QPainter& painter, const QRectF& within, const QIcon& icon, const QSize& size, QIcon::Mode mode,
          QIcon::State state) {
    place(painter, within, icon.pixmap(size, deviceRatio(painter), mode, state));
}

void text(QPainter& painter, const QRectF& rect, int flags, const QString& text, const QColor& color) {
    painter.save();
    painter.setPen(color);
    const bool mnemonics = flags & (Qt::TextShowMnemonic | Qt::TextHideMnemonic);
    const QString fitting =
        painter.fontMetrics().elidedText(text, Qt::ElideRight, static_cast<int>(std::ceil(rect.width())),
                                         mnemonics ? Qt::TextShowMnemonic : 0);
    painter.drawText(rect, visualFlags(flags) | Qt::TextSingleLine, fitting);
    painter.restore();
}

} // namespace qirn::ChromePaint
