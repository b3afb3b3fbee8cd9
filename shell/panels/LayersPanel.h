#pragma once
#include <QWidget>

class QComboBox;
class QLabel;
class QListView;

namespace qirn {

class ChromeSlider;
class IconButton;
class LayersModel;
class PaintModel;

/// The stack of the current picture, top layer first, with the blend mode and opacity of the active layer.
class LayersPanel : public QWidget {
    Q_OBJECT
public:
    LayersPanel(PaintModel& model, QWidget* parent);

private:
    void refresh();

    PaintModel& model_;
    QLabel* title_;
    QComboBox* blend_;
    ChromeSlider* opacity_;
    LayersModel* rows_;
    QListView* list_;
    IconButton* delete_;
    bool isReading_ = false; // what the list makes current meanwhile is not the user's choice
};

} // namespace qirn
