#pragma once
#include <QWidget>

class QAccessibleInterface;

namespace qirn {

class ColorWheel;

/// The ring or the square of a color wheel as the keyboard and a screen reader meet it: it takes the focus and the arrow
/// keys, and has a name and a value. The mouse goes through to the wheel.
class WheelPart : public QWidget {
    Q_OBJECT
public:
    enum class Kind { hue, tone };
    WheelPart(Kind kind, ColorWheel& wheel, QWidget* parent);

    Kind kind() const { return kind_; }
    ColorWheel& wheel() const { return wheel_; }
    QString valueText() const;
    void tellChange(); ///< To a screen reader, if one listens.

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    Kind kind_;
    ColorWheel& wheel_;
};

} // namespace qirn
