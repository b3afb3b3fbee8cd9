#include "app/commands/CommandRow.h"

#include "app/canvas/CanvasView.h"
#include "app/commands/PaintCommands.h"
#include "app/model/PaintModel.h"

namespace qirn {

QString titleOf(const CommandRow& row, const PaintModel& model) {
    return row.liveTitle ? row.liveTitle(model) : row.title ? PaintCommands::tr(row.title) : QString();
}

bool isEnabled(const CommandRow& row, const PaintModel& model) {
    if (model.sheet()) return row.inText || row.overSheets;
    return !row.enabled || row.enabled(model);
}

std::vector<int> keysOf(const CommandRow& row) {
    std::vector<int> keys;
    for (const int key : {row.key, row.secondKeys[0], row.secondKeys[1]}) {
        if (key == 0) continue;
        keys.push_back(key);
        const int modifiers = key & static_cast<int>(Qt::KeyboardModifierMask);
        if ((key ^ modifiers) == Qt::Key_Backspace) keys.push_back(modifiers | Qt::Key_Delete);
        if (modifiers & Qt::META) keys.push_back((key & ~Qt::META) | Qt::ALT | Qt::SHIFT);
    }
    return keys;
}

void runCommand(const CommandRow& row, PaintModel& model, CanvasView& view) {
    if (!isEnabled(row, model)) return;
    if (model.sheet() && row.inText) {
        Typing::act(*row.inText);
        return;
    }
    if (row.run.onModel) row.run.onModel(model);
    if (row.run.onView) row.run.onView(view);
    if (row.run.onWindow) row.run.onWindow(*view.window());
}

} // namespace qirn
