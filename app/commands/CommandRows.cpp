#include "app/commands/CommandRows.h"

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

const CommandRow* commandAtPlaceOf(const QKeyEvent& event) {
    constexpr auto kCommandKeys = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if (!(event.modifiers() & kCommandKeys) || typesASCII(event)) return nullptr;
    const auto character = characterOf(event);
    if (!character) return nullptr;
    const int key =
        static_cast<int>(event.modifiers()) | character->toUpper().unicode(); // Qt's keys of ASCII
    const auto rows = commandRows();
    const auto found = std::find_if(rows.begin(), rows.end(), [key](const CommandRow& row) {
        const std::vector<int> keys = keysOf(row);
        return std::find(keys.begin(), keys.end(), key) != keys.end();
    });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace qirn
