#include "shell/ToolRail.h"

#include <QVBoxLayout>

#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/controls/RoundButton.h"

namespace qirn {

ToolRail::ToolRail(PaintModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    setAccessibleName(tr("Tools"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    QirnKit::followMetrics(this, [column](const Metrics& m) { column->setSpacing(m.tightGap); });
    for (const ToolRow& row : kTools) {
        auto* button = new RoundButton(row.icon, titleWithKey(row.tool, model.keys()), this);
        button->setObjectName(QLatin1String(row.id));
        button->setCheckable(true);
        button->setAutoExclusive(true); // arrows go from tool to tool, Tab to the current one and on
        connect(button, &RoundButton::clicked, this,
                guarding(model_, [this, tool = row.tool] { model_.setTool(tool); }));
        column->addWidget(button);
        entries_.push_back({row.tool, button});
    }
    connect(&model, &PaintModel::changed, this, &ToolRail::refresh);
    refresh();
}

void ToolRail::refresh() {
    for (const Entry& entry : entries_) {
        entry.button->setChecked(entry.tool == model_.tool());
        entry.button->setTip(titleWithKey(entry.tool, model_.keys()));
    }
}

} // namespace qirn
