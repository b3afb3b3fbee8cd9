#include "app/commands/KeyOwners.h"

#include "app/commands/CommandRows.h"
#include "app/commands/PaintCommands.h"

#include <algorithm>

namespace qirn {

std::span<const KeyOwner> keyOwners() {
    static const std::vector<KeyOwner> theOwners = [] {
        std::vector<KeyOwner> owners;
        for (const ToolRow& tool : kTools)
            owners.push_back(
                {keyName(tool.tool), QT_TRANSLATE_NOOP("qirn::PaintCommands", "Tools"), nullptr, tool.tool});
        for (const CommandRow& row : commandRows())
            if (row.name && !row.choices) owners.push_back({QLatin1String(row.name), row.menu, &row});
        return owners;
    }();
    return theOwners;
}

QString groupOf(const KeyOwner& owner) {
    return PaintCommands::tr(owner.group);
}

QString titleOf(const KeyOwner& owner) {
    return owner.command ? nameOf(*owner.command) : toolTitle(owner.tool);
}

int ownKeyOf(const KeyOwner& owner) {
    return owner.command ? owner.command->key : rowOf(owner.tool).key;
}

std::vector<int> keysOf(const KeyOwner& owner, const KeyChoices& choices) {
    if (owner.command) return keysOf(*owner.command, choices);
    const int key = shownKeyOf(owner, choices);
    return key == 0 ? std::vector<int>() : std::vector<int>{key};
}

int shownKeyOf(const KeyOwner& owner, const KeyChoices& choices) {
    return owner.command ? shownKeyOf(*owner.command, choices) : keyOf(owner.tool, choices).unicode();
}

const KeyOwner* ownerOfKey(int key, const KeyChoices& choices) {
    const auto owners = keyOwners();
    const auto found = std::find_if(owners.begin(), owners.end(), [&](const KeyOwner& owner) {
        const std::vector<int> keys = keysOf(owner, choices);
        return std::find(keys.begin(), keys.end(), key) != keys.end();
    });
    return found == owners.end() ? nullptr : &*found;
}

} // namespace qirn
