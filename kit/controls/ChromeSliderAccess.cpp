#include "kit/controls/ChromeSliderAccess.h"

#include <memory>

#include <QAccessibleWidget>

#include "kit/controls/ChromeSlider.h"

namespace qirn {

namespace {

class Access : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit Access(ChromeSlider* slider) : QAccessibleWidget(slider, QAccessible::Slider, slider->label()) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? slider().valueText() : QAccessibleWidget::text(kind);
    }
    QVariant currentValue() const override { return slider().scale().clamped(slider().value()); }
    void setCurrentValue(const QVariant& value) override { slider().enter(value.toDouble()); }
    QVariant minimumValue() const override { return slider().scale().lower; }
    QVariant maximumValue() const override { return slider().scale().upper; }
    QVariant minimumStepSize() const override { return slider().scale().step; }

private:
    ChromeSlider& slider() const { return *static_cast<ChromeSlider*>(object()); }
};

} // namespace

QAccessibleInterface* chromeSliderAccess(const QString&, QObject* object) {
    auto* slider = qobject_cast<ChromeSlider*>(object);
    return slider ? std::make_unique<Access>(slider).release() : nullptr; // the accessibility cache owns it
}

} // namespace qirn
