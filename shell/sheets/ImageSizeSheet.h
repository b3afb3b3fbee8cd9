#pragma once
#include "app/sizes/Proportions.h"
#include "shell/sheets/Sheet.h"

class QLabel;

namespace qirn {

class ChromeToggle;
class NumberField;
class PaintModel;

/// Asks for the size to which the whole picture is scaled, and for its resolution.
class ImageSizeSheet : public Sheet {
    Q_OBJECT
public:
    ImageSizeSheet(PaintModel& model, QWidget* parent);

    void resizeImage(); ///< Closes the sheet; the work follows when it is gone.

private:
    QWidget* percentButtons();
    void refresh();

    Proportions size_;
    NumberField* width_;
    NumberField* height_;
    ChromeToggle* keep_;
    NumberField* dpi_;
    QLabel* warning_;
};

} // namespace qirn
