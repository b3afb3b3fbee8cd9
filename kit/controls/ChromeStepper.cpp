#include "kit/controls/ChromeStepper.h"

#include <QLineEdit>

namespace qirn {

ChromeStepper::ChromeStepper(const QString& accessibleName, const QString& words, QWidget* parent)
    : QSpinBox(parent) {
    setFocusPolicy(Qt::TabFocus); // a click does not take it from the canvas
    setKeyboardTracking(false);   // a number counts once it is typed whole: 50 on the way to 500 does not
    setAccessibleName(accessibleName);
    const QStringList around = words.split(QStringLiteral("%1"));
    setPrefix(around.value(0));
    setSuffix(around.value(1));
}

void ChromeStepper::stepBy(int steps) {
    QSpinBox::stepBy(steps);
    if (!hasFocus()) lineEdit()->deselect();
}

} // namespace qirn
