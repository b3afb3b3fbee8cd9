#pragma once
#include <QPushButton>

namespace qirn {

class PaintModel;

/// A button with the name of the active brush; it opens the presets of the tool, grouped by category.
class BrushPresetMenu : public QPushButton {
    Q_OBJECT
public:
    BrushPresetMenu(PaintModel& model, QWidget* parent);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();
    void fill(); ///< Just before the menu opens.

    PaintModel& model_;
};

} // namespace qirn
