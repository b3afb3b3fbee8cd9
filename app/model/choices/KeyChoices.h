#pragma once
#include "app/model/choices/Tool.h"

#include <functional>
#include <map>
#include <optional>

#include <QString>

namespace qirn {

class Store;

/// The keys that the user gave to commands and tools in place of their own; kept as one record of what differs.
///
/// A key is Qt's, with modifiers; 0 is no key at all. It is chosen for one name at most, and whoever has it as a key of his
/// own goes without it meanwhile. `keysOf` (app/commands/CommandRow.h) and `keyOf` say which keys work.
class KeyChoices {
public:
    static constexpr const char* storeKey = "qirn.pt.keys";
    static KeyChoices load(const Store& store); ///< Leaves out what is no key or may not be chosen.
    void save(Store& store) const;

    std::optional<int> of(const QString& name) const; ///< Nothing where it has its own.
    /// Whether some other name than this has the key by choice.
    bool isTakenFrom(const QString& name, int key) const;
    /// Another name that had it by choice has its own again.
    void choose(const QString& name, int key);
    void forget(const QString& name); ///< It has its own again.
    void forgetWhere(const std::function<bool(const QString& name)>& isGone);
    bool isEmpty() const { return chosen_.empty(); }

    bool operator==(const KeyChoices&) const = default;

private:
    std::map<QString, int> chosen_; // by the object name of a command's action, or `keyName` of a tool
};

QString keyName(Tool tool); ///< Under which its key is chosen; no command has such a name.
/// The letter or digit that picks the tool on the canvas; null where it has none now.
QChar keyOf(Tool tool, const KeyChoices& choices);
std::optional<Tool> toolWithKey(QChar letter, const KeyChoices& choices); ///< Upper or lower case.
QString titleWithKey(Tool tool, const KeyChoices& choices);               ///< "Brush (B)".

/// Why a name may not have this key, in the user's words; empty where it may. Keys of other names are no reason.
QString refusalOf(const QString& name, int key);

bool isPlainKey(int key); ///< One letter or digit, without a modifier: it is typed on the canvas.
QString keyText(int key); ///< As the menus show it: "Ctrl+N"; empty for 0.
QString withKey(const QString& words, int key); ///< "Save (Ctrl+S)"; the words alone for 0.

} // namespace qirn
