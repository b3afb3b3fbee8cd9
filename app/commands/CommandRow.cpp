#include "app/commands/CommandRow.h"

#include "app/canvas/CanvasView.h"
#include "app/commands/PaintCommands.h"
#include "app/model/PaintModel.h"

#include <algorithm>

namespace qirn {

QString titleOf(const CommandRow& row, const PaintModel& model) {
    return row.liveTitle ? row.liveTitle(model) : row.title ? PaintCommands::tr(row.title) : QString();
}

QString nameOf(const CommandRow& row) {
    return PaintCommands::tr(row.title);
}

bool isEnabled(const CommandRow& row, const PaintModel& model) {
    if (model.sheet()) return row.inText || row.overSheets;
    return !row.enabled || row.enabled(model);
}

namespace {

/// The key and what stands for it, but for those that are somebody else's by choice.
std::vector<int> ownKeys(const CommandRow& row, int key, const KeyChoices& choices) {
    if (key == 0) return {};
    std::vector<int> keys{key};
    const int modifiers = key & static_cast<int>(Qt::KeyboardModifierMask);
    if ((key ^ modifiers) == Qt::Key_Backspace) keys.push_back(modifiers | Qt::Key_Delete);
    if (modifiers & Qt::META) keys.push_back((key & ~Qt::META) | Qt::ALT | Qt::SHIFT);
    std::erase_if(keys, [&](int own) { return choices.isTakenFrom(QLatin1String(row.name), own); });
    return keys;
}

/// What the menu shows, and what stands for it.
std::vector<int> firstKeysOf(const CommandRow& row, const KeyChoices& choices) {
    const auto chosen = choices.of(QLatin1String(row.name));
    if (!chosen) return ownKeys(row, row.key, choices);
    return *chosen == 0 ? std::vector<int>() : std::vector<int>{*chosen};
}

} // namespace

std::vector<int> keysOf(const CommandRow& row, const KeyChoices& choices) {
    std::vector<int> keys = firstKeysOf(row, choices);
    for (const int second : row.secondKeys) {
        for (const int key : ownKeys(row, second, choices))
            if (std::find(keys.begin(), keys.end(), key) == keys.end()) keys.push_back(key);
    }
    return keys;
}

int shownKeyOf(const CommandRow& row, const KeyChoices& choices) {
    const std::vector<int> keys = firstKeysOf(row, choices);
    return keys.empty() ? 0 : keys.front();
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
