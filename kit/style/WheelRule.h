#pragma once
#include <QObject>

class QWidget;

namespace qirn {

/// Who the wheel turns for: what holds a value takes it only while it has the keyboard, so that scrolling past a combo box
/// or over a list of settings changes none of them. A slider in a bar, where nothing scrolls, takes it under the pointer
/// too. What is not taken goes on to the parent, which may scroll.
class WheelRule : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    void watch(QWidget& widget); ///< Passes over what holds no value.

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace qirn
