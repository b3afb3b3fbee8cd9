#pragma once
#include <QWidget>

class QLineEdit;

namespace qirn {

class ColorPlane;
class PaintModel;

/// Chooses the paint color by hue, saturation and brightness, or by its hexadecimal name.
class ColorChooser : public QWidget {
    Q_OBJECT
public:
    ColorChooser(PaintModel& model, QWidget* parent);

private:
    void refresh();
    void push(); ///< The plane's color into the model.
    void takeHex();

    PaintModel& model_;
    ColorPlane* plane_;
    QLineEdit* hex_;
    QString lastSet_; // hex of the plane's own last color: what comes back of it keeps its hue
};

} // namespace qirn
