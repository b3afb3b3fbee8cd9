#pragma once
#include <QString>

class QAccessibleInterface;
class QObject;

namespace qirn {

/// How a screen reader sees the canvas, with what it shows as its description, and the transient line, which it reads out
/// when it appears. For `QAccessible::installFactory`; nothing for other objects.
QAccessibleInterface* studioAccess(const QString& className, QObject* object);

} // namespace qirn
