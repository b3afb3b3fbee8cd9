#pragma once
#include "kit/controls/ChromePanel.h"

class QMenu;

namespace qirn {

class CanvasView;
class IconButton;
class PaintModel;
class TabStrip;

/// The program's badge, a tab for each open picture, and the commands that are always at hand.
class HeaderBar : public ChromePanel {
    Q_OBJECT
public:
    HeaderBar(PaintModel& model, CanvasView& view, QWidget* parent);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void fill(QMenu& list); ///< With all open pictures.

    PaintModel& model_;
    TabStrip* strip_;
    IconButton* all_; // there while some tab is out of sight
};

} // namespace qirn
