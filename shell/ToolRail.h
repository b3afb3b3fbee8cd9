#pragma once
#include <vector>

#include <QWidget>

#include "app/model/choices/Tool.h"

namespace qirn {

class PaintModel;
class RoundButton;

/// The tools that work, one round button each, the current one marked.
class ToolRail : public QWidget {
    Q_OBJECT
public:
    ToolRail(PaintModel& model, QWidget* parent);

private:
    void refresh();

    struct Entry {
        Tool tool;
        RoundButton* button;
    };
    PaintModel& model_;
    std::vector<Entry> entries_;
};

} // namespace qirn
