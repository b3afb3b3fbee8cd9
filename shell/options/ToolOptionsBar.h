#pragma once
#include "kit/controls/ChromePanel.h"

class QLabel;

namespace qirn {

class CanvasView;
class IconButton;
class PaintModel;
class RowBox;
class ViewOptions;

/// The title of the current tool and its options, from the table of `ToolOptionRows`; for Hand and Zoom the view's.
class ToolOptionsBar : public ChromePanel {
    Q_OBJECT
public:
    ToolOptionsBar(PaintModel& model, CanvasView& view, QWidget* parent);

private:
    void refresh();

    PaintModel& model_;
    QLabel* title_;
    IconButton* help_;
    RowBox* options_;
    ViewOptions* viewOptions_;
};

} // namespace qirn
