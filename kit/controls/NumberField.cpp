#include "kit/controls/NumberField.h"

#include <algorithm>

#include <QKeyEvent>

#include "kit/QirnKit.h"

namespace qirn {

NumberField::NumberField(const QString& accessibleName, const Range& range, const NumberFormat& format,
                         QWidget* parent)
    : QLineEdit(parent),
      range_(range),
      format_(format) {
    setAccessibleName(accessibleName);
    display(value_);
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
        if (const auto typed = format_.value(text)) take(*typed);
    });
    connect(this, &QLineEdit::returnPressed, this, &NumberField::finish);
}

void NumberField::setValue(double value) {
    if (value == value_) return;
    value_ = value;
    if (!hasFocus() || !isModified()) display(value_); // what is being typed stays
}

void NumberField::setFormat(const NumberFormat& format) {
    format_ = format;
    display(value_);
}

QSize NumberField::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {m.controlWidth, m.controlHeight};
}

void NumberField::display(double value) {
    shown_ = value;
    setText(format_.text(value));
}

void NumberField::take(double value) {
    if (value == value_) return;
    value_ = value;
    Q_EMIT valueChanged(value_);
}

void NumberField::finish() {
    if (!isModified()) return;
    take(std::clamp(format_.value(text()).value_or(shown_), range_.lower, range_.upper));
    display(value_);
}

void NumberField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && isModified()) {
        take(shown_);
        display(shown_);
    }
    const int steps = event->key() == Qt::Key_Up ? 1 : event->key() == Qt::Key_Down ? -1 : 0;
    if (steps == 0) return QLineEdit::keyPressEvent(event);
    take(std::clamp(value_ + steps * range_.step, range_.lower, range_.upper));
    display(value_);
}

void NumberField::wheelEvent(QWheelEvent* event) {
    event->ignore(); // so that the panel behind it scrolls
}

void NumberField::focusOutEvent(QFocusEvent* event) {
    finish();
    QLineEdit::focusOutEvent(event);
}

} // namespace qirn
