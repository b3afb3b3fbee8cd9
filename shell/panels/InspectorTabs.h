#pragma once
#include "app/model/choices/InspectorTab.h"

#include <QWidget>

class QStackedWidget;
class QTabBar;

namespace qirn {

class PaintModel;

/// The tabs of the inspector and the panel of the one that is chosen, which scrolls where it is too high. A panel is made
/// when it is first shown.
class InspectorTabs : public QWidget {
    Q_OBJECT
public:
    InspectorTabs(PaintModel& model, QWidget* parent);

    QSize minimumSizeHint() const override;

private:
    void refresh();

    PaintModel& model_;
    QTabBar* bar_;
    QStackedWidget* pages_; // in the order of the tabs; empty ones have not been shown
};

} // namespace qirn
