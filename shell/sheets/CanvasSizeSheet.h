#pragma once
#include "shell/sheets/Sheet.h"

class QButtonGroup;
class QLabel;

namespace qirn {

class NumberField;
class PaintModel;

/// Asks for the size to which the canvas is trimmed or grown, and where the picture stays on it.
class CanvasSizeSheet : public Sheet {
    Q_OBJECT
public:
    CanvasSizeSheet(PaintModel& model, QWidget* parent);

    void changeCanvas(); ///< Closes the sheet; the work follows when it is gone.

private:
    QWidget* anchorGrid();
    void refresh();

    NumberField* width_;
    NumberField* height_;
    QButtonGroup* anchors_; // by row and then column, the picture's place on the new canvas
    QLabel* warning_;
};

} // namespace qirn
