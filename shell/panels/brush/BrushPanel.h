#pragma once
#include "app/model/choices/Tool.h"
#include "brush/BrushSettings.h"

#include <optional>
#include <vector>

#include <QWidget>

class QLabel;

namespace qirn {

class BrushKeeping;
class BrushPresetList;
class BrushSample;
class Disclosure;
class PaintModel;
class RowBox;
class ScrollColumn;
class SearchField;

/// The active brush: how it paints, the presets to take another one from, and all of its settings.
class BrushPanel : public QWidget {
    Q_OBJECT
public:
    BrushPanel(PaintModel& model, QWidget* parent);

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* head();
    QWidget* column();
    void refresh();
    void showPresets(bool open);
    void bringIntoSight(const QRect& row); ///< Of a preset, in the coordinates of the list.
    void showChosen();                     ///< The same with the preset of the active brush.
    void showName();

    /// What the panel reads of the model: with the same it has nothing to do.
    struct Shown {
        BrushSettings brush;
        Tool tool;
        std::vector<BrushSettings> own;

        bool operator==(const Shown&) const = default;
    };

    PaintModel& model_;
    std::optional<Shown> shown_;
    QLabel* noPicture_;
    QWidget* head_ = nullptr;
    BrushSample* sample_ = nullptr;
    QLabel* name_ = nullptr;
    QLabel* changed_ = nullptr;
    Disclosure* disclosure_ = nullptr;
    SearchField* search_ = nullptr;
    ScrollColumn* scroller_ = nullptr;
    QLabel* nothingFound_ = nullptr;
    BrushPresetList* presets_ = nullptr;
    RowBox* settings_ = nullptr;
    BrushKeeping* keeping_ = nullptr;
};

} // namespace qirn
