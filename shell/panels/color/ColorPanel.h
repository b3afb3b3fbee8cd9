#pragma once
#include "shell/panels/color/EditedColor.h"

#include <QWidget>

namespace qirn {

class ChromeNote;
class ColorWheel;
class HexField;
class PaintModel;
class RowBox;
class SwatchGrid;

/// Chooses the paint color: by a wheel, by sliders, by its hexadecimal number, from the recent colors and the current
/// palette.
class ColorPanel : public QWidget {
    Q_OBJECT
public:
    ColorPanel(PaintModel& model, QWidget* parent);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh(); ///< Reads nothing while it is hidden.

    PaintModel& model_;
    EditedColor color_;
    ColorWheel* wheel_;
    RowBox* sliders_;
    HexField* hex_;
    ChromeNote* recentTitle_;
    SwatchGrid* recent_;
    ChromeNote* paletteTitle_;
    SwatchGrid* palette_;
};

} // namespace qirn
