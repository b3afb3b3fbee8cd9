#include "shell/panels/color/ColorWheel.h"

#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "shell/ShownColor.h"
#include "shell/panels/color/WheelImages.h"
#include "shell/panels/color/WheelPart.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include <QMouseEvent>

namespace qirn {

namespace {

constexpr double kThickness = 0.11; // of the wheel's side
constexpr double kSquare = 1.32;    // side, of the inner radius

/// Between a part and the outside of its focus ring.
double focusRoom() {
    return QirnKitHost::metrics().px(3);
}

QRect withFocusRoom(const QRectF& part) {
    return part.adjusted(-focusRoom(), -focusRoom(), focusRoom(), focusRoom()).toAlignedRect();
}

} // namespace

ColorWheel::ColorWheel(QWidget* parent)
    : QWidget(parent),
      hue_(new WheelPart(WheelPart::Kind::hue, *this, this)),
      tone_(new WheelPart(WheelPart::Kind::tone, *this, hue_)) {
    setObjectName(QStringLiteral("colorWheel"));
    setAccessibleName(tr("Color wheel"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize ColorWheel::sizeHint() const {
    return {QirnKitHost::metrics().px(232), minimumSizeHint().height()}; // it grows where there is room
}

QSize ColorWheel::minimumSizeHint() const {
    const int side = QirnKitHost::metrics().px(124);
    return {side, side};
}

QRectF ColorWheel::wheel() const {
    const double side = std::min(width(), height()) - 2 * focusRoom();
    return {(width() - side) / 2, (height() - side) / 2, side, side};
}

double ColorWheel::innerRadius() const {
    return wheel().width() * (0.5 - kThickness);
}

QRectF ColorWheel::square() const {
    const double side = innerRadius() * kSquare;
    QRectF square(0, 0, side, side);
    square.moveCenter(wheel().center());
    return square;
}

void ColorWheel::setColor(const HueColor& color) {
    if (color == color_) return;
    const HueColor before = std::exchange(color_, color);
    update();
    if (before.h != color.h) hue_->tellChange();
    if (before.s != color.s || before.v != color.v) tone_->tellChange();
}

void ColorWheel::choose(const HueColor& color) {
    const HueColor wanted{std::clamp(color.h, 0.0, 1.0), std::clamp(color.s, 0.0, 1.0),
                          std::clamp(color.v, 0.0, 1.0)};
    if (wanted == color_) return;
    setColor(wanted);
    Q_EMIT changed();
}

// --- Mouse and pen

void ColorWheel::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const QPointF d = event->position() - wheel().center();
    mode_ = std::hypot(d.x(), d.y()) > innerRadius() ? Mode::ring : Mode::square;
    drag(event->position());
}

void ColorWheel::mouseMoveEvent(QMouseEvent* event) {
    if (mode_ != Mode::idle) drag(event->position());
}

void ColorWheel::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) mode_ = Mode::idle;
}

void ColorWheel::drag(QPointF position) {
    HueColor color = color_;
    if (mode_ == Mode::ring) {
        const QPointF d = position - wheel().center();
        color.h = std::atan2(d.y(), d.x()) / (2 * std::numbers::pi);
        if (color.h < 0) color.h += 1;
    } else {
        const QRectF tones = square();
        color.s = (position.x() - tones.left()) / tones.width();
        color.v = 1 - (position.y() - tones.top()) / tones.height();
    }
    choose(color);
}

// --- Drawing

void ColorWheel::resizeEvent(QResizeEvent*) {
    setMaximumHeight(std::max(minimumSizeHint().height(), width())); // no room beside it is taken
    hue_->setGeometry(withFocusRoom(wheel()).intersected(rect()));
    tone_->setGeometry(withFocusRoom(square()).translated(-hue_->pos()));
}

void ColorWheel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const double ratio = ChromePaint::deviceRatio(painter);
    const int side = static_cast<int>(std::lround(wheel().width() * ratio));
    const int toneSide = static_cast<int>(std::lround(square().width() * ratio));
    if (side < 1 || toneSide < 1) return;
    const auto onPixels = [&](const QRectF& part, int pixels) {
        return QRectF(ChromePaint::snapped(painter, part).topLeft(), QSizeF(pixels, pixels) / ratio);
    };
    const QRectF whole = onPixels(wheel(), side), tones = onPixels(square(), toneSide);
    if (ringImage_.width() != side) ringImage_ = WheelImages::ring(side, side * kThickness);
    if (toneImage_.width() != toneSide || toneHue_ != color_.h) {
        toneImage_ = WheelImages::tones(toneSide, color_.h);
        toneHue_ = color_.h;
    }
    painter.drawImage(whole, ringImage_);
    painter.drawImage(tones, toneImage_);
    ChromePaint::box(painter, tones, 0, {}, QirnKitHost::colors().edge);

    const double angle = color_.h * 2 * std::numbers::pi;
    const double reach = whole.width() * (1 - kThickness) / 2;
    drawMark(painter, whole.center() + QPointF(std::cos(angle), std::sin(angle)) * reach,
             shownColor(PaintColor::fromHSV(color_.h, 1, 1)));
    drawMark(painter,
             {tones.left() + tones.width() * color_.s, tones.top() + tones.height() * (1 - color_.v)},
             shownColor(color_.paintColor()));
}

void ColorWheel::drawMark(QPainter& painter, QPointF center, const QColor& inside) const {
    const Metrics& m = QirnKitHost::metrics();
    QRectF mark(0, 0, m.px(12), m.px(12));
    mark.moveCenter(center);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(inside);
    painter.setPen(
        QPen(QColor(0, 0, 0, 140), 3.5 * m.zoom)); // a white ring on a dark one shows on every color
    painter.drawEllipse(mark);
    painter.setPen(QPen(Qt::white, 2 * m.zoom));
    painter.drawEllipse(mark);
}

} // namespace qirn
