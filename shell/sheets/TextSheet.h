#pragma once
#include "app/text/TextSpec.h"

#include <QDialog>
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
class TextSheet : public QDialog {
    Q_OBJECT
public:
    /// `at` is the canvas point of the text's top left corner.
    TextSheet(PaintModel& model, QPointF at, QWidget* parent);

    void placeText();

private:
    TextSpec spec() const;
    void loadLook();
    void saveLook() const;
    void refreshPreview();
    void showPreview();

    PaintModel& model_;
    QPointF at_;
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
