#pragma once
#include <vector>

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
    QMenu* groupOf(const QString& category); ///< An empty menu with this title.
    void fill();                             ///< Just before the menu opens.

    PaintModel& model_;
    std::vector<QMenu*> groups_; // owned by this, until the menu is filled anew
};

} // namespace qirn
