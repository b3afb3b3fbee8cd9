#pragma once
#include <QString>

class QAccessibleInterface;
class QObject;

namespace qirn {

/// How a screen reader sees a `ChromeSlider`: a slider with a name, a value and its limits. For
/// `QAccessible::installFactory`; nothing for other objects.
QAccessibleInterface* chromeSliderAccess(const QString& className, QObject* object);

} // namespace qirn
