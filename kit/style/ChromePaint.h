#pragma once
#include <QColor>
#include <QPainter>
#include <QRectF>

#include "kit/icons/Icons.h"

/// Drawing that stays sharp at every display ratio: edges lie on device pixels, whatever fraction of one a logical
/// pixel is and wherever on the window the widget stands. Rectangles are in the painter's logical coordinates.
namespace qirn::ChromePaint {

double deviceRatio(const QPainter& painter);
/// The width of the thinnest sharp line: one device pixel, two where a pixel of the grid has two or more.
double hairline(const QPainter& painter);
QRectF snapped(const QPainter& painter, const QRectF& rect);
/// Where a rectangle lies in what holds it: as it is, or mirrored where the application is read from right to left.
QRectF visual(const QRectF& within, const QRectF& rect);
QRect visual(const QRect& within, const QRect& rect);

/// A filled box with an edge drawn inside it; either color may be left out.
void box(QPainter& painter, const QRectF& rect, double radius, const QColor& fill, const QColor& edge = {});
void focusRing(QPainter& painter, const QRectF& rect, double radius);
enum class Side { left, top, right, bottom };
/// A hairline along one side, inside the rectangle.
void line(QPainter& painter, const QRectF& rect, Side side, const QColor& color);
/// In the middle of the rectangle, `size` logical pixels square.
void icon(QPainter& painter, const QRectF& within, Icon icon, int size, const QColor& color);
/// The same for any QIcon.
void icon(QPainter& painter, const QRectF& within, const QIcon& icon, const QSize& size, QIcon::Mode mode,
          QIcon::State state);
/// One line, elided where it does not fit; the left is where reading begins. Mnemonic marks (&) are not shown when the flags say so.
void text(QPainter& painter, const QRectF& rect, int flags, const QString& text, const QColor& color);

} // namespace qirn::ChromePaint
