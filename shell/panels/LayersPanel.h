#pragma once
#include <QWidget>

class QComboBox;
class QLabel;
class QListWidget;
class QListWidgetItem;

namespace qirn {

class ChromeSlider;
class IconButton;
class PaintModel;

/// The stack of the current picture, top layer first, with the blend mode and opacity of the active layer.
class LayersPanel : public QWidget {
    Q_OBJECT
public:
    LayersPanel(PaintModel& model, QWidget* parent);

private:
    void refresh();
    void refreshRows();
    int64_t layerOfRow(int row) const;
    void rowChanged(const QListWidgetItem& item); ///< Its eye was turned.

    PaintModel& model_;
    QLabel* title_;
    QComboBox* blend_;
    ChromeSlider* opacity_;
    QListWidget* list_;
    IconButton* delete_;
};

} // namespace qirn
