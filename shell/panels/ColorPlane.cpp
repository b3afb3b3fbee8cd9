#include "shell/panels/ColorPlane.h"

#include <algorithm>

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "shell/ShownColor.h"

namespace qirn {

namespace {

constexpr double kKeyStep = 0.02;

int squareHeight() {
    return QirnKitHost::metrics().px(152);
}
int stripHeight() {
    return QirnKitHost::metrics().px(14);
}
/// Diameter of the mark in the square.
int markSide() {
    return QirnKitHost::metrics().px(12);
}

double fraction(double position, double start, double length) {
    return std::clamp((position - start) / std::max(1.0, length), 0.0, 1.0);
}

void drawMark(QPainter& painter, QPointF center, const QColor& inside) {
    const double zoom = QirnKitHost::metrics().zoom;
    QRectF mark(0, 0, markSide(), markSide());
    mark.moveCenter(center);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(inside);
    painter.setPen(QPen(QColor(0, 0, 0, 140), 3.5 * zoom)); // a white ring on a dark one shows on every color
    painter.drawEllipse(mark);
    painter.setPen(QPen(Qt::white, 2 * zoom));
    painter.drawEllipse(mark);
}

} // namespace

ColorPlane::ColorPlane(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(tr("Color"));
    setToolTip(tr("Saturation, brightness and hue of the paint color"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ColorPlane::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {squareHeight(), squareHeight() + m.gap + stripHeight()};
}

void ColorPlane::setColor(const HueColor& color) {
    if (color == color_) return;
    color_ = color;
    update();
}

void ColorPlane::moveTo(const HueColor& color) {
    if (color == color_) return;
    setColor(color);
    Q_EMIT changed();
}

QRectF ColorPlane::square() const {
    return {0, 0, double(width()), double(squareHeight())};
}
QRectF ColorPlane::strip() const {
    return {0, double(height() - stripHeight()), double(width()), double(stripHeight())};
}

void ColorPlane::mousePressEvent(QMouseEvent* event) {
    const Metrics& m = QirnKitHost::metrics();
    if (event->button() != Qt::LeftButton) return;
    dragged_ = event->position().y() > square().bottom() + m.tightGap ? Part::strip : Part::square;
    drag(event->position());
}

void ColorPlane::mouseMoveEvent(QMouseEvent* event) {
    if (dragged_ != Part::none) drag(event->position());
}

void ColorPlane::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) dragged_ = Part::none;
}

void ColorPlane::drag(QPointF position) {
    HueColor color = color_;
    if (dragged_ == Part::strip) {
        color.h = fraction(position.x(), strip().left(), strip().width());
    } else {
        color.s = fraction(position.x(), square().left(), square().width());
        color.v = 1 - fraction(position.y(), square().top(), square().height());
    }
    moveTo(color);
}

void ColorPlane::keyPressEvent(QKeyEvent* event) {
    HueColor color = color_;
    switch (event->key()) {
    case Qt::Key_Left:
        color.s -= kKeyStep;
        break;
    case Qt::Key_Right:
        color.s += kKeyStep;
        break;
    case Qt::Key_Down:
        color.v -= kKeyStep;
        break;
    case Qt::Key_Up:
        color.v += kKeyStep;
        break;
    case Qt::Key_PageDown:
        color.h -= kKeyStep;
        break;
    case Qt::Key_PageUp:
        color.h += kKeyStep;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    moveTo({std::clamp(color.h, 0.0, 1.0), std::clamp(color.s, 0.0, 1.0), std::clamp(color.v, 0.0, 1.0)});
}

const QImage& ColorPlane::squareImage(QSize pixels) {
    if (squareImage_.size() == pixels && imageHue_ == color_.h) return squareImage_;
    imageHue_ = color_.h;
    squareImage_ = QImage(pixels, QImage::Format_RGB32);
    const QColor hue = shownColor(PaintColor::fromHSV(color_.h, 1, 1));
    for (int y = 0; y < pixels.height(); ++y) {
        const double v = 1 - (y + 0.5) / pixels.height();
        auto* row = reinterpret_cast<QRgb*>(squareImage_.scanLine(y));
        for (int x = 0; x < pixels.width(); ++x) {
            const double s = (x + 0.5) / pixels.width();
            const auto channel = [&](int full) { return qRound(v * (255 + (full - 255) * s)); };
            row[x] = qRgb(channel(hue.red()), channel(hue.green()), channel(hue.blue()));
        }
    }
    return squareImage_;
}

void ColorPlane::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    const double ratio = ChromePaint::deviceRatio(painter);
    const QRectF area = ChromePaint::snapped(painter, square());
    painter.drawImage(area, squareImage((area.size() * ratio).toSize()));

    const QRectF hues = ChromePaint::snapped(painter, strip());
    QLinearGradient rainbow(hues.topLeft(), hues.topRight());
    for (int sixth = 0; sixth <= 6; ++sixth)
        rainbow.setColorAt(sixth / 6.0, shownColor(PaintColor::fromHSV(sixth / 6.0, 1, 1)));
    painter.fillRect(hues, rainbow);
    ChromePaint::box(painter, area, 0, {}, c.edge);
    ChromePaint::box(painter, hues, 0, {}, c.edge);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, rect(), m.smallRadius);

    // Marks stay whole inside the widget.
    const double reach = markSide() / 2.0 + m.inset;
    const auto inside = [&](const QRectF& rect, double x, double y) {
        return QPointF(std::clamp(x, rect.left() + reach, rect.right() - reach),
                       std::clamp(y, rect.top() + reach, rect.bottom() - reach));
    };
    const QPointF chosen(area.left() + area.width() * color_.s, area.top() + area.height() * (1 - color_.v));
    drawMark(painter, inside(area, chosen.x(), chosen.y()),
             shownColor(PaintColor::fromHSV(color_.h, color_.s, color_.v)));
    QRectF handle(0, 0, m.px(6), hues.height());
    const double half = handle.width() / 2;
    handle.moveCenter(
        {std::clamp(hues.left() + hues.width() * color_.h, hues.left() + half, hues.right() - half),
         hues.center().y()});
    ChromePaint::box(painter, handle, m.inset, Qt::white, QColor(0, 0, 0, 160));
}

} // namespace qirn
