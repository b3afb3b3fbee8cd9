#include "app/commands/CommandRows.h"

#include "app/commands/KeyOwners.h"
#include "app/commands/rows/MenuRows.h"
#include "app/desktop/keys/TypedKeys.h"
#include "platform/Require.h"

#include <algorithm>

#include <QKeyEvent>

namespace qirn {

std::span<const CommandRow> commandRows() {
    static const std::vector<CommandRow> theRows = [] {
        std::vector<CommandRow> rows;
        for (const auto& menu :
             {MenuRows::file(), MenuRows::edit(), MenuRows::picture(), MenuRows::view(), MenuRows::help()})
            rows.insert(rows.end(), menu.begin(), menu.end());
        return rows;
    }();
    return theRows;
}

const CommandRow& commandNamed(const char* name) {
    const auto rows = commandRows();
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const CommandRow& row) { return qstrcmp(row.name, name) == 0; });
    require(found != rows.end());
    return *found;
}

const CommandRow* commandOfKey(const QKeyEvent& event, const KeyChoices& choices) {
    const auto held = event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (held && typesASCII(event)) return nullptr;
    const auto character = characterOf(event);
    if (!character) return nullptr;
    const int plain = character->toUpper().unicode(); // Qt's keys of ASCII
    const int key = held ? static_cast<int>(event.modifiers()) | plain : plain;
    if (!held && !isPlainKey(key)) return nullptr;
    const KeyOwner* owner = ownerOfKey(key, choices);
    return owner ? owner->command : nullptr; // a tool's letter is the canvas's
}

} // namespace qirn
