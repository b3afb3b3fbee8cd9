#pragma once
#include <QWidget>

namespace qirn {

class ChromeToggle;
class IconButton;
class PaintModel;
class RowBox;

/// The onion skin of the current picture: a switch, and its settings, which can be folded away.
class OnionSection : public QWidget {
    Q_OBJECT
public:
    OnionSection(PaintModel& model, QWidget* parent); ///< Borrows the model.

    void refresh();

private:
    void setShown(bool showOnion);

    PaintModel& model_;
    IconButton* fold_;
    ChromeToggle* enabled_;
    RowBox* rows_;
};

} // namespace qirn
