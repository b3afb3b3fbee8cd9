#pragma once
#include "core/PaintColor.h"
#include "formats/ImageExport.h"
#include "shell/sheets/Sheet.h"

class QLabel;
class QListWidget;

namespace qirn {

class ChromeSegments;
class ChromeSlider;
class PaintModel;

/// Asks for the format of an export, and for quality and background where the format needs them. Format and quality are kept for
/// the next time as soon as they are chosen.
class ExportSheet : public Sheet {
    Q_OBJECT
public:
    ExportSheet(PaintModel& model, QWidget* parent);

    void exportPicture(); ///< Closes the sheet; the work follows when it is gone.

private:
    ExportFormat format() const;
    PaintColor background() const;
    void refresh();

    QListWidget* formats_; // in the order of the formats
    QLabel* explanation_;
    QWidget* lossyOptions_;
    ChromeSlider* quality_;
    QLabel* backgroundLabel_;
    ChromeSegments* background_;
};

} // namespace qirn
