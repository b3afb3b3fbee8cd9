#pragma once
#include <QWidget>

class QLabel;
class QPushButton;

namespace qirn {

class CanvasView;
class ChromeSlider;
class PaintModel;

/// What Hand and Zoom have in the options bar: zoom, rotation and flip of the view.
class ViewOptions : public QWidget {
    Q_OBJECT
public:
    ViewOptions(PaintModel& model, CanvasView& view, QWidget* parent);

private:
    void refresh();

    PaintModel& model_;
    QLabel* zoom_;
    ChromeSlider* rotation_;
    QPushButton* flip_;
};

} // namespace qirn
