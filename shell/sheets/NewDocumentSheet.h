#pragma once
#include "app/sizes/NewCanvas.h"
#include "shell/sheets/Sheet.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace qirn {

class ChromeSegments;
class NumberField;
class PaintModel;

/// Asks for the size, resolution, background and name of a new canvas, by a preset or by numbers.
class NewDocumentSheet : public Sheet {
    Q_OBJECT
public:
    NewDocumentSheet(PaintModel& model, QWidget* parent);

    void create(); ///< Closes the sheet; the canvas follows when it is gone.

private:
    void listPresets();
    QWidget* customPanel();
    void followFields();
    void takePreset();
    void refresh();

    NewCanvas canvas_;
    LengthUnit shown_ = LengthUnit::pixels; // of the two fields
    QTreeWidget* presets_;
    QLineEdit* name_;
    NumberField* width_;
    NumberField* height_;
    QComboBox* unit_;
    QPushButton* swap_;
    NumberField* dpi_;
    ChromeSegments* background_;
    QLabel* summary_;
    QLabel* remark_; // why it can't be made, or what it takes
    QPushButton* create_;
};

} // namespace qirn
