#pragma once
#include <vector>

#include "kit/controls/ChromePanel.h"

class QHBoxLayout;
class QScrollArea;

namespace qirn {

class DocTab;
class IconButton;
class CanvasView;
class PaintModel;

/// The program's badge, a tab for each open picture, and the commands that are always at hand.
class HeaderBar : public ChromePanel {
    Q_OBJECT
public:
    HeaderBar(PaintModel& model, CanvasView& view, QWidget* parent);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();

    PaintModel& model_;
    QScrollArea* strip_; // scrolls sideways where the tabs do not fit
    QHBoxLayout* tabRow_;
    std::vector<DocTab*> tabs_; // one a session, in their order
    IconButton* new_;
};

} // namespace qirn
