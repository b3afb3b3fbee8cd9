#pragma once
#include "app/text/TextSpec.h"
#include "shell/sheets/Sheet.h"

#include <QPointF>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QPlainTextEdit;

namespace qirn {

class PaintModel;

/// Asks for words and their look and places them as a layer of their own. The look is kept for the next time.
class TextSheet : public Sheet {
    Q_OBJECT
public:
    /// `topLeft` is a canvas point.
    TextSheet(PaintModel& model, QPointF topLeft, QWidget* parent);

    void placeText();

private:
    TextSpec spec() const;
    void loadLook();
    void saveLook() const;
    void refreshPreview();
    void showPreview();

    QPointF topLeft_; // canvas
    QPlainTextEdit* words_;
    QComboBox* family_;
    QDoubleSpinBox* size_;
    QCheckBox* bold_;
    QCheckBox* italic_;
    QComboBox* alignment_;
    QCheckBox* outline_;
    QDoubleSpinBox* outlineWidth_;
    QLabel* preview_;
};

} // namespace qirn
