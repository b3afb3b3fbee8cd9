#pragma once
#include "kit/controls/ChromePanel.h"

namespace qirn {

class InspectorTabs;
class LayersPanel;
class PaintModel;
class SplitGrip;

/// The column beside the canvas: the panel of the chosen tab above the layers, which keep room for a few rows. Its width
/// and where it is divided are the user's, remembered in lengths at zoom 1.
class InspectorColumn : public ChromePanel {
    Q_OBJECT
public:
    InspectorColumn(PaintModel& model, QWidget* parent);

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void follow();          ///< What the parts need now.
    int wide() const;       ///< As wanted, but no less than the words in the parts need.
    int tabsHeight() const; ///< As wanted, less what the layers need.
    void arrange();
    void keep() const;

    PaintModel& model_;
    SplitGrip* side_; // in the order of the Tab key
    InspectorTabs* tabs_;
    SplitGrip* between_;
    LayersPanel* layers_;
    double width_; // wanted, at zoom 1
    double tabsHeight_;
};

} // namespace qirn
