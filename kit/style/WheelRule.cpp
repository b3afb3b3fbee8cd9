#include "kit/style/WheelRule.h"

#include <QAbstractScrollArea>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QScrollBar>
#include <QTabBar>

#include "kit/QrZoomHost.h"
#include "kit/controls/ChromeSlider.h"

namespace qirn {

namespace {

/// In a part of its window that scrolls. The window itself scrolls only where the screen is too small for it.
bool isInColumn(const QWidget& widget) {
    for (const QWidget* area = widget.parentWidget(); area; area = area->parentWidget())
        if (qobject_cast<const QAbstractScrollArea*>(area) && !qobject_cast<const QrZoomHost*>(area))
            return true;
    return false;
}

} // namespace

void WheelRule::watch(QWidget& widget) {
    const bool slides = qobject_cast<QAbstractSlider*>(&widget) && !qobject_cast<QScrollBar*>(&widget);
    if (!slides && !qobject_cast<QComboBox*>(&widget) && !qobject_cast<QAbstractSpinBox*>(&widget) &&
        !qobject_cast<QTabBar*>(&widget) && !qobject_cast<ChromeSlider*>(&widget))
        return;
    if (widget.focusPolicy() == Qt::WheelFocus)
        widget.setFocusPolicy(Qt::StrongFocus); // or the wheel gives it
    widget.installEventFilter(this);
}

bool WheelRule::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel) return false;
    const auto& widget = static_cast<const QWidget&>(*watched);
    const bool inBar = qobject_cast<const ChromeSlider*>(&widget) && !isInColumn(widget);
    if (inBar || widget.hasFocus()) return false;
    event->ignore();
    return true;
}

} // namespace qirn
