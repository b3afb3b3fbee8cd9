#include "kit/controls/ChromeSlider.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainterPath>
#include <QWheelEvent>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

namespace {
constexpr int kRestTime = 400; // milliseconds without a key or wheel step
constexpr double kFineDrag = 0.1;
constexpr int kPageSteps = 10;
constexpr int kWheelNotch = 120; // eighths of a degree

/// How far the pointer is from where the slider begins.
double along(const QWidget& slider, const QMouseEvent& event) {
    const double x = event.position().x();
    return slider.isRightToLeft() ? slider.width() - x : x;
}
} // namespace

ChromeSlider::ChromeSlider(const QString& label, const SliderScale& scale, const NumberFormat& format,
                           QWidget* parent)
    : QWidget(parent),
      label_(label),
      scale_(scale),
      format_(format),
      value_(scale.lower),
      field_(new QLineEdit(this)) {
    setFocusPolicy(Qt::TabFocus); // a drag does not take the focus from the canvas
    setAttribute(Qt::WA_Hover);
    setAccessibleName(label);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    field_->setAlignment(Qt::AlignRight);
    field_->setAccessibleName(label);
    field_->hide();
    field_->installEventFilter(this);
    atRest_.setSingleShot(true);
    connect(&atRest_, &QTimer::timeout, this, &ChromeSlider::finish);
}

void ChromeSlider::setValue(double value) {
    if (value == value_) return;
    value_ = value;
    update();
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(this, value_);
        QAccessible::updateAccessibility(&event);
    }
}

void ChromeSlider::enter(double value) {
    moveTo(value);
    finish();
}

void ChromeSlider::moveTo(double value) {
    show(scale_.clamped(value));
}

void ChromeSlider::show(double value) {
    if (value == value_) return;
    setValue(value);
    announced_ = true;
    Q_EMIT valueChanged(value);
}

void ChromeSlider::step(int steps) {
    const double wanted = scale_.stepped(value_, steps);
    if (steps > 0 ? wanted > value_ : wanted < value_) moveTo(wanted); // beyond its end it stays
    atRest_.start(kRestTime);
}

void ChromeSlider::finish() {
    atRest_.stop();
    if (std::exchange(announced_, false)) Q_EMIT editingFinished();
}

void ChromeSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    if (atRest_.isActive()) finish();
    dragging_ = true;
    valueBefore_ = value_;
    pressX_ = dragX_ = along(*this, *event);
    dragPlace_ = scale_.placeOf(value_);
    if (!event->modifiers().testFlag(Qt::ShiftModifier)) {
        dragPlace_ = std::clamp(dragX_ / std::max(1, width()), 0.0, 1.0);
        moveTo(scale_.valueAt(dragPlace_));
    }
    update();
}

void ChromeSlider::drag(const QMouseEvent& event) {
    const double x = along(*this, event);
    const double moved = (x - dragX_) / std::max(1, width());
    if (moved == 0) return; // a value beyond the range stays
    dragX_ = x;
    const bool fine = event.modifiers().testFlag(Qt::ShiftModifier);
    dragPlace_ += moved * (fine ? kFineDrag : 1);
    moveTo(scale_.valueAt(dragPlace_));
}

void ChromeSlider::mouseMoveEvent(QMouseEvent* event) {
    if (dragging_) drag(*event);
}

void ChromeSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (!dragging_ || event->button() != Qt::LeftButton) return;
    drag(*event);
    dragging_ = false;
    update();
    if (std::abs(along(*this, *event) - pressX_) >= QApplication::startDragDistance())
        finish();
    else
        atRest_.start(QApplication::doubleClickInterval()); // it may be the first half of a double click
}

void ChromeSlider::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    if (atRest_.isActive()) {
        show(valueBefore_);
        finish();
    }
    openField(QString());
}

void ChromeSlider::wheelEvent(QWheelEvent* event) {
    wheel_ += event->angleDelta().y();
    const int notches = wheel_ / kWheelNotch;
    wheel_ -= notches * kWheelNotch;
    if (notches != 0) step(notches * (event->modifiers().testFlag(Qt::ShiftModifier) ? kPageSteps : 1));
    event->accept();
}

void ChromeSlider::keyPressEvent(QKeyEvent* event) {
    if (field_->isVisible()) return QWidget::keyPressEvent(event); // the open field ignored it
    const bool typed = !event->text().isEmpty() &&
                       (event->text().front().isDigit() || event->text() == u"-") &&
                       !(event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
    const int right = isRightToLeft() ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        step(-right);
        return;
    case Qt::Key_Right:
        step(right);
        return;
    case Qt::Key_Down:
        step(-1);
        return;
    case Qt::Key_Up:
        step(1);
        return;
    case Qt::Key_PageDown:
        step(-kPageSteps);
        return;
    case Qt::Key_PageUp:
        step(kPageSteps);
        return;
    case Qt::Key_Home:
        enter(scale_.lower);
        return;
    case Qt::Key_End:
        enter(scale_.upper);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        openField(QString());
        return;
    default:
        if (typed)
            openField(event->text());
        else
            QWidget::keyPressEvent(event);
    }
}

void ChromeSlider::focusOutEvent(QFocusEvent* event) {
    if (atRest_.isActive()) finish();
    QWidget::focusOutEvent(event);
}

void ChromeSlider::openField(const QString& text) {
    focusBefore_ = QApplication::focusWidget();
    field_->setGeometry(fieldRect());
    field_->setText(text.isEmpty() ? format_.number(value_) : text);
    if (text.isEmpty()) field_->selectAll();
    field_->show();
    field_->setFocus(Qt::OtherFocusReason);
}

void ChromeSlider::closeField(bool take) {
    if (!field_->isVisible()) return;
    const auto typed = take ? format_.value(field_->text()) : std::nullopt;
    const bool hadFocus = field_->hasFocus();
    field_->hide();
    if (hadFocus && focusBefore_) focusBefore_->setFocus(Qt::OtherFocusReason);
    if (typed && field_->text() != format_.number(value_)) enter(*typed);
}

bool ChromeSlider::eventFilter(QObject* watched, QEvent* event) {
    if (watched == field_ && event->type() == QEvent::FocusOut) closeField(true);
    if (watched == field_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
            closeField(key != Qt::Key_Escape);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ChromeSlider::resizeEvent(QResizeEvent* event) {
    field_->setGeometry(fieldRect());
    QWidget::resizeEvent(event);
}

void ChromeSlider::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange) update();
    QWidget::changeEvent(event);
}

QRect ChromeSlider::fieldRect() const {
    const Metrics& m = QirnKitHost::metrics();
    const int wide = std::min(width(), valueWidth() + 3 * m.groupGap);
    return ChromePaint::visual(rect(), QRect(width() - wide, 0, wide, height()));
}

int ChromeSlider::valueWidth() const {
    const auto wide = [&](double value) { return fontMetrics().horizontalAdvance(format_.text(value)); };
    return std::max(wide(scale_.lower), wide(scale_.upper));
}

QSize ChromeSlider::minimumSizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    const int texts = fontMetrics().horizontalAdvance(label_) + valueWidth();
    return {texts + 2 * m.controlPadding + 2 * m.groupGap, m.controlHeight};
}

QSize ChromeSlider::sizeHint() const {
    return minimumSizeHint().expandedTo({QirnKitHost::metrics().controlWidth, 0});
}

/// A tint behind the texts and, below them, a line in full color that ends at the value.
void ChromeSlider::paintLevel(QPainter& painter, const QRectF& bar) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    // The level grows from the lower end, or from zero where the range has both signs.
    const double from = scale_.lower < 0 && scale_.upper > 0 ? scale_.placeOf(0) : 0;
    const double to = scale_.placeOf(value_);
    const QRectF level(QPointF(bar.width() * std::min(from, to), 0),
                       QPointF(bar.width() * std::max(from, to), bar.height()));
    QRectF line = level;
    line.setTop(bar.bottom() - m.sliderLine);
    if (line.width() < m.sliderLine) { // the value shows where there is no level
        line.setWidth(m.sliderLine);
        line.moveLeft(std::clamp(bar.width() * to - m.sliderLine / 2.0, 0.0, bar.width() - m.sliderLine));
    }
    QPainterPath inside;
    inside.addRoundedRect(ChromePaint::snapped(painter, bar), m.radius, m.radius);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(inside);
    painter.fillRect(ChromePaint::snapped(painter, ChromePaint::visual(bar, level)), c.level);
    painter.fillRect(ChromePaint::snapped(painter, ChromePaint::visual(bar, line)), c.focus);
    painter.restore();
}

void ChromeSlider::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    const QRectF bar = rect();
    const bool bright = isEnabled() && (underMouse() || dragging_);
    ChromePaint::box(painter, bar, m.radius, isEnabled() ? c.well : c.panel);

    if (isEnabled()) paintLevel(painter, bar);
    ChromePaint::box(painter, bar, m.radius, {}, !isEnabled() ? c.divider : bright ? c.edgeHover : c.edge);

    const QRectF texts = bar.adjusted(m.controlPadding, 0, -m.controlPadding, 0);
    const QRectF labelRect =
        texts.adjusted(0, 0, -(fontMetrics().horizontalAdvance(valueText()) + m.tightGap), 0);
    ChromePaint::text(painter, ChromePaint::visual(bar, labelRect), Qt::AlignLeft | Qt::AlignVCenter, label_,
                      isEnabled() ? c.dim : c.faint);
    ChromePaint::text(painter, texts, Qt::AlignRight | Qt::AlignVCenter | Qt::TextForceLeftToRight,
                      valueText(), isEnabled() ? c.text : c.faint);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, bar, m.radius);
}

} // namespace qirn
