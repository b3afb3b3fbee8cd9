#include "shell/preferences/pen/PenField.h"

#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QMouseEvent>
#include <QPainter>
#include <QTabletEvent>

namespace qirn {

namespace {

constexpr double kWidest = 12; // radius at full pressure, logical pixels at zoom 1
constexpr double kFinest = 0.5;

} // namespace

PenField::PenField(PaintModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    setObjectName(QStringLiteral("penField"));
    setAccessibleName(tr("Field to try the pen"));
    setToolTip(tr("Draw here with the pen or the mouse"));
    setFocusPolicy(Qt::TabFocus);
    setTabletTracking(true); // a pen in the air has a tilt
    setCursor(Qt::CrossCursor);
    QirnKit::followMetrics(this, [this](const Metrics& m) { setMinimumHeight(m.px(150)); });
}

void PenField::clear() {
    trace_.clear();
    blank_ = true;
    update();
}

double PenField::now() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void PenField::tabletEvent(QTabletEvent* event) {
    event->accept(); // or it comes again as a mouse event
    guarded(model_, [&] { penEvent(*event); });
}

void PenField::mousePressEvent(QMouseEvent* event) {
    guarded(model_, [&] { mouseEvent(*event); });
}

void PenField::mouseMoveEvent(QMouseEvent* event) {
    guarded(model_, [&] { mouseEvent(*event); });
}

void PenField::mouseReleaseEvent(QMouseEvent* event) {
    guarded(model_, [&] { mouseEvent(*event); });
}

void PenField::penEvent(const QTabletEvent& event) {
    if (event.type() == QEvent::TabletPress) input_.setPenDown(true);
    if (event.type() == QEvent::TabletRelease) input_.setPenDown(false);
    const PenSample sample = input_.sampleOf(event, event.position(), now());
    PenReading reading;
    reading.device = event.pointingDevice()->name();
    reading.pointer = event.pointerType();
    reading.fromPen = true;
    reading.pressure = sample.pressure;
    reading.shaped = shapedPressure(sample.pressure, model_.prefs().pressureCurve);
    reading.tiltX = sample.tiltX;
    reading.tiltY = sample.tiltY;
    const bool isEraser = event.pointerType() == QPointingDevice::PointerType::Eraser;
    reading.erases = isEraser && model_.prefs().tabletEraserSwitches;
    follow(event.type(), sample, event.position(), reading);
    input_.penHandled(now());
}

void PenField::mouseEvent(const QMouseEvent& event) {
    const auto sample = input_.sampleOf(event, event.position(), now());
    if (!sample) return; // the desktop made it of a pen's
    PenReading reading;
    reading.device = event.pointingDevice()->name();
    reading.pointer = event.pointerType();
    const bool bySpeed = model_.prefs().mouseSpeedPressure;
    if (event.type() == QEvent::MouseButtonPress) speed_.follow(sample->time, sample->view);
    reading.pressure = bySpeed ? speed_.next(sample->time, sample->view) : 1;
    reading.shaped = shapedPressure(reading.pressure, model_.prefs().pressureCurve);
    follow(event.type(), *sample, event.position(), reading);
}

void PenField::follow(QEvent::Type type, const PenSample& sample, QPointF point, PenReading reading) {
    rate_.note(sample.time);
    const bool release = type == QEvent::TabletRelease || type == QEvent::MouseButtonRelease;
    if (release && end_) Q_EMIT lifted(); // while the reading is that of the line: now the pressure is none
    reading_ = std::move(reading);
    const QPointF place = point * devicePixelRatioF();
    const bool press = type == QEvent::TabletPress || type == QEvent::MouseButtonPress;
    const bool waits =
        !sample.fromPen && model_.prefs().mouseSpeedPressure; // for its speed, as a stroke does
    if (press) end_.reset();
    if (press && waits)
        end_ = End{place, std::nullopt};
    else if (press || (end_ && (!release || !end_->radius)))
        drawTo(place, *reading_);
    if (release) end_.reset();
    Q_EMIT moved();
}

void PenField::drawTo(QPointF point, const PenReading& reading) {
    const double ratio = devicePixelRatioF();
    trace_.resize((QSizeF(size()) * ratio).toSize());
    const double radius = std::max(kFinest, QirnKitHost::metrics().zoom * kWidest * reading.shaped) * ratio;
    const End from = end_.value_or(End{point, radius});
    const QRect touched = trace_.line(from.point, from.radius.value_or(radius), point, radius,
                                      reading.erases ? PenTrace::Mark::erase : PenTrace::Mark::draw);
    end_ = End{point, radius};
    if (std::exchange(blank_, false)) return update(); // the words go
    update(QRectF(QPointF(touched.topLeft()) / ratio, QSizeF(touched.size()) / ratio).toAlignedRect());
}

void PenField::paintEvent(QPaintEvent* event) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const double ratio = devicePixelRatioF();
    QPainter painter(this);
    ChromePaint::box(painter, rect(), m.radius, c.well, c.edge);
    contained([&] {
        trace_.resize((QSizeF(size()) * ratio).toSize());
        const QRectF exposed(QPointF(event->rect().topLeft()) * ratio, QSizeF(event->rect().size()) * ratio);
        painter.save();
        painter.scale(1 / ratio, 1 / ratio);
        trace_.paint(painter, exposed.toAlignedRect(), c.text);
        painter.restore();
    });
    if (blank_) ChromePaint::text(painter, rect(), Qt::AlignCenter, tr("Draw here to try the pen"), c.dim);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, rect(), m.radius);
}

} // namespace qirn
