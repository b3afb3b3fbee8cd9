#pragma once
#include <QWidget>

class QLineEdit;

namespace qirn {

class ColorPlane;
class PaintModel;

/// Chooses the paint colour by hue, saturation and brightness, or by its hexadecimal name.
class ColorChooser : public QWidget {
    Q_OBJECT
public:
    ColorChooser(PaintModel& model, QWidget* parent);

private:
    void refresh();
    void push(); ///< The plane's colour into the model.
    void takeHex();

    PaintModel& model_;
    ColorPlane* plane_;
    QLineEdit* hex_;
    QString lastSet_; // the colour last written from the plane: its hue survives on greys
};

} // namespace qirn
