#pragma once
#include <limits>

#include <QLineEdit>

#include "kit/controls/NumberFormat.h"

namespace qirn {

/// A field for a number. It holds the number that it was given and only shows it rounded; typing makes it another. The
/// decimal sign may be a point or a comma. Up and Down step. Return, or leaving it, brings a typed number into the range
/// and puts the one from before in the place of a text that is none; so does Escape of any text.
class NumberField : public QLineEdit {
    Q_OBJECT
public:
    static constexpr double kAny = std::numeric_limits<double>::infinity();
    struct Range {
        double lower = -kAny;
        double upper = kAny;
        double step = 1;
    };
    NumberField(const QString& accessibleName, const Range& range, const NumberFormat& format,
                QWidget* parent);

    double value() const { return value_; }
    void setValue(double value);                ///< Emits nothing.
    void setFormat(const NumberFormat& format); ///< The number stays.
    void setStep(double step) { range_.step = step; }

    QSize sizeHint() const override;

Q_SIGNALS:
    void valueChanged(double value); ///< By the user, at each key; not for a text that is no number.

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void display(double value);
    void take(double value);
    void finish();

    Range range_;
    NumberFormat format_;
    double value_ = 0;
    double shown_ = 0; // the number before what is being typed
};

} // namespace qirn
