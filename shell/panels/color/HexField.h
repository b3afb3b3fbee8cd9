#pragma once
#include "core/PaintColor.h"

#include <QLineEdit>
#include <QTimer>

namespace qirn {

class PaintModel;

/// The paint color by its hexadecimal number. Return picks the typed one; one that cannot be read stays, selected, after a
/// beep and a blink. Escape, and leaving the field, restore it.
class HexField : public QLineEdit {
    Q_OBJECT
public:
    HexField(PaintModel& model, QWidget* parent);

    void showColor(const PaintColor& color); ///< What is being typed stays until the color changes.

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    bool take(); ///< False where the text is no color.

    PaintModel& model_;
    QString shown_;
    bool cameByMouse_ = false; ///< The press that brought the keyboard is still to come.
    QTimer blink_;             // single shot; runs while it is bright
};

} // namespace qirn
