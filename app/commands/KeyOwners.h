#pragma once
#include "app/model/choices/KeyChoices.h"

#include <span>
#include <vector>

namespace qirn {

struct CommandRow;

/// Whoever can be given a key: a command of the menus or a tool.
struct KeyOwner {
    QString name;                        ///< Under which its key is chosen.
    const char* group;                   ///< English source text: the menu it stands in, or "Tools".
    const CommandRow* command = nullptr; ///< Null for a tool.
    Tool tool = Tool::brush;             ///< Where it is no command.
};

std::span<const KeyOwner> keyOwners();  ///< The tools, then the commands in the order of the menu bar.
QString groupOf(const KeyOwner& owner); ///< In the user's language, as `titleOf`.
QString titleOf(const KeyOwner& owner);
int ownKeyOf(const KeyOwner& owner); ///< Without any choice; 0 for none.
/// All keys that work now, the one that is shown first; see `keysOf` of a command and `keyOf` of a tool.
std::vector<int> keysOf(const KeyOwner& owner, const KeyChoices& choices);
int shownKeyOf(const KeyOwner& owner, const KeyChoices& choices); ///< 0 for none.
/// The one that a key is for now; null for none.
const KeyOwner* ownerOfKey(int key, const KeyChoices& choices);

} // namespace qirn
