#pragma once
#include <QWidget>

class QComboBox;
class QLabel;

namespace qirn {

class ChromeSlider;
class LayersList;
class OnionSection;
class PaintModel;
class RowBox;

/// The stack of the current picture, top layer first, with the settings of the active layer above it and the onion skin
/// below. Its least height has room for four rows.
class LayersPanel : public QWidget {
    Q_OBJECT
public:
    LayersPanel(PaintModel& model, QWidget* parent); ///< Borrows the model.

    QSize
    minimumSizeHint() const override; ///< At the width that it has now, at which a label may take two lines.

private:
    void makeBlend();
    void makeOpacity();
    void refresh();

    PaintModel& model_;
    QLabel* title_;
    QComboBox* blend_;
    ChromeSlider* opacity_;
    RowBox* switches_;
    LayersList* list_;
    OnionSection* onion_;
};

} // namespace qirn
