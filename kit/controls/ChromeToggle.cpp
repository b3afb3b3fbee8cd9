#include "kit/controls/ChromeToggle.h"

#include <algorithm>

#include <QPainter>

#include "kit/ChromeFont.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

ChromeToggle::ChromeToggle(const QString& label, QWidget* parent) : QCheckBox(label, parent) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setAccessibleName(label);
    connect(&knob_, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(this, &QCheckBox::toggled, this, [this](bool on) {
        knob_.setDuration(style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this));
        if (knob_.duration() <= 0) return;
        knob_.setStartValue(on ? -1.0 : 1.0);
        knob_.setEndValue(0.0);
        knob_.start();
    });
}

void ChromeToggle::setWraps() {
    wraps_ = true;
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void ChromeToggle::setCompact() {
    compact_ = true;
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    QirnKit::followMetrics(this, [this](const Metrics&) { setFont(ChromeFont::small()); });
}

int ChromeToggle::labelLeft() const {
    const Metrics& m = QirnKitHost::metrics();
    return m.switchWidth + (compact_ ? m.tightGap : m.gap);
}

QSize ChromeToggle::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    const int text = fontMetrics().size(Qt::TextShowMnemonic, this->text()).width();
    return {labelLeft() + text + m.tightGap, m.controlHeight};
}

QSize ChromeToggle::minimumSizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    const QSize whole = sizeHint();
    if (wraps_) return whole.boundedTo({m.controlWidth, whole.height()});
    return compact_ ? whole - QSize(m.tightGap, 0) : whole;
}

int ChromeToggle::heightForWidth(int width) const {
    const Metrics& m = QirnKitHost::metrics();
    const QRect room(0, 0, width - labelLeft(), 1);
    const int text = fontMetrics().boundingRect(room, Qt::TextWordWrap, this->text()).height();
    return std::max(m.controlHeight, text + 2 * m.inset);
}

void ChromeToggle::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    const bool on = isChecked();
    const double radius = m.switchHeight / 2.0;
    const QRectF track(0, (height() - m.switchHeight) / 2.0, m.switchWidth, m.switchHeight);
    const auto visual = [this](const QRectF& part) { return ChromePaint::visual(rect(), part); };
    if (!isEnabled())
        ChromePaint::box(painter, visual(track), radius, c.bar, c.divider);
    else if (on)
        ChromePaint::box(painter, visual(track), radius, underMouse() ? c.accentHover : c.accent,
                         c.accentEdge);
    else
        ChromePaint::box(painter, visual(track), radius, c.well,
                         underMouse() || isDown() ? c.edgeHover : c.edge);

    const double inset = m.px(3);
    const double side = m.switchHeight - 2 * inset;
    const double left = on ? track.right() - inset - side : track.left() + inset;
    const bool moves = knob_.state() == QAbstractAnimation::Running;
    const double away = moves ? knob_.currentValue().toDouble() * (track.width() - 2 * inset - side) : 0;
    const QColor knob = !isEnabled() ? c.faint : on ? c.onAccent : c.dim;
    ChromePaint::box(painter, visual({left + away, track.top() + inset, side, side}), side / 2, knob);

    const QRectF label = visual({1.0 * labelLeft(), 0, 1.0 * width() - labelLeft(), 1.0 * height()});
    const int place = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextHideMnemonic;
    const QColor color = isEnabled() ? c.text : c.faint;
    if (wraps_) {
        painter.setPen(color);
        painter.drawText(label, place | Qt::TextWordWrap, text());
    } else {
        ChromePaint::text(painter, label, place, text(), color);
    }
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, visual(visual(label).adjusted(-m.tightGap, 0, 0, 0)),
                               m.radius); // the switch stays whole
}

} // namespace qirn
