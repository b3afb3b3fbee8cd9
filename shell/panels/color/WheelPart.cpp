#include "shell/panels/color/WheelPart.h"

#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "shell/panels/color/ColorWheel.h"

#include <cmath>
#include <memory>

#include <QAccessibleWidget>
#include <QKeyEvent>

namespace qirn {

namespace {

constexpr double kDegree = 1.0 / 360, kPercent = 0.01;
constexpr int kLongStep = 10;

/// A slider of the hue, or of the saturation with the brightness told beside it.
class Access : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit Access(WheelPart* part) : QAccessibleWidget(part, QAccessible::Slider, part->accessibleName()) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value || kind == QAccessible::Description ? part().valueText()
                                                                              : QAccessibleWidget::text(kind);
    }
    QVariant currentValue() const override {
        const HueColor& color = part().wheel().color();
        return isHue() ? color.h * 360 : color.s * 100;
    }
    void setCurrentValue(const QVariant& value) override {
        HueColor color = part().wheel().color();
        (isHue() ? color.h : color.s) = value.toDouble() / maximumValue().toDouble();
        part().wheel().choose(color);
    }
    QVariant minimumValue() const override { return 0; }
    QVariant maximumValue() const override { return isHue() ? 360 : 100; }
    QVariant minimumStepSize() const override { return 1; }

private:
    WheelPart& part() const { return *static_cast<WheelPart*>(object()); }
    bool isHue() const { return part().kind() == WheelPart::Kind::hue; }
};

QAccessibleInterface* accessOf(const QString&, QObject* object) {
    auto* part = qobject_cast<WheelPart*>(object);
    return part ? std::make_unique<Access>(part).release() : nullptr; // the accessibility cache owns it
}

} // namespace

WheelPart::WheelPart(Kind kind, ColorWheel& wheel, QWidget* parent)
    : QWidget(parent),
      kind_(kind),
      wheel_(wheel) {
    [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(accessOf), true);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::TabFocus);
    setObjectName(kind == Kind::hue ? QStringLiteral("wheelHue") : QStringLiteral("wheelTone"));
    setAccessibleName(kind == Kind::hue ? tr("Hue ring") : tr("Saturation and brightness"));
}

QString WheelPart::valueText() const {
    const HueColor& color = wheel_.color();
    if (kind_ == Kind::hue) return tr("%L1°").arg(std::lround(color.h * 360));
    return tr("Saturation %L1%, brightness %L2%")
        .arg(std::lround(color.s * 100))
        .arg(std::lround(color.v * 100));
}

void WheelPart::tellChange() {
    if (!QAccessible::isActive()) return;
    QAccessibleValueChangeEvent value(this,
                                      kind_ == Kind::hue ? wheel_.color().h * 360 : wheel_.color().s * 100);
    QAccessible::updateAccessibility(&value);
    QAccessibleEvent words(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&words);
}

// Right and up give more of what they move; Shift and the page keys take long steps.
void WheelPart::keyPressEvent(QKeyEvent* event) {
    HueColor color = wheel_.color();
    const bool isHue = kind_ == Kind::hue;
    const bool isLong = event->modifiers().testFlag(Qt::ShiftModifier) || event->key() == Qt::Key_PageUp ||
                        event->key() == Qt::Key_PageDown;
    const double step = (isHue ? kDegree : kPercent) * (isLong ? kLongStep : 1);
    switch (event->key()) {
    case Qt::Key_Left:
        (isHue ? color.h : color.s) -= step;
        break;
    case Qt::Key_Right:
        (isHue ? color.h : color.s) += step;
        break;
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        (isHue ? color.h : color.v) -= step;
        break;
    case Qt::Key_Up:
    case Qt::Key_PageUp:
        (isHue ? color.h : color.v) += step;
        break;
    case Qt::Key_Home:
        (isHue ? color.h : color.s) = 0;
        break;
    case Qt::Key_End:
        (isHue ? color.h : color.s) = 1;
        break;
    default:
        return QWidget::keyPressEvent(event);
    }
    if (isHue) color.h -= std::floor(color.h); // it goes round
    wheel_.choose(color);
}

void WheelPart::paintEvent(QPaintEvent*) {
    if (!hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange)) return;
    QPainter painter(this);
    const bool isHue = kind_ == Kind::hue;
    ChromePaint::focusRing(painter, rect(), isHue ? width() / 2.0 : QirnKitHost::metrics().smallRadius);
}

} // namespace qirn
