#pragma once
#include "app/desktop/keys/Typing.h"

#include <array>
#include <functional>
#include <optional>
#include <type_traits>
#include <vector>

#include <QString>

class QWidget;

namespace qirn {

class CanvasView;
class KeyChoices;
class PaintModel;

/// What a command does: to the model, to the view of the canvas, or to the window.
struct CommandBody {
    void (*onModel)(PaintModel&) = nullptr;
    void (*onView)(CanvasView&) = nullptr;
    void (*onWindow)(QWidget&) = nullptr;

    constexpr CommandBody() = default;
    template <class Function>
    constexpr CommandBody(Function function) { // NOLINT(google-explicit-constructor)
        if constexpr (std::is_convertible_v<Function, void (*)(PaintModel&)>)
            onModel = function;
        else if constexpr (std::is_convertible_v<Function, void (*)(CanvasView&)>)
            onView = function;
        else
            onWindow = function;
    }
};

/// An entry of a command that is a list.
struct CommandChoice {
    QString title; ///< Empty for a divider.
    std::function<void()> run;
    std::optional<bool> isChosen = {}; ///< Where one of the choices is.
};

/// One command of the studio: a row of the menu bar, and what else has a button or a key for it.
struct CommandRow {
    const char* menu;            ///< The menu it stands in; rows of one menu stand together.
    const char* name;            ///< Object name of the action; null for a divider.
    const char* title = nullptr; ///< English source text.
    int key = 0;                 ///< A key with modifiers, 0 for none; the user may choose another.
    CommandBody run = {};
    QString (*liveTitle)(const PaintModel&) =
        nullptr;                                  ///< In place of `title` in the menu, asked at each change.
    bool (*checked)(const PaintModel&) = nullptr; ///< Makes the item checkable.
    bool (*enabled)(const PaintModel&) = nullptr; ///< Always, where there is none.
    std::array<int, 2> secondKeys = {};           ///< These work as well and are not shown; see `keysOf`.
    std::vector<CommandChoice> (*choices)(PaintModel&) =
        nullptr; ///< A submenu, filled anew whenever it opens; without a title the whole menu.
    /// While a sheet is up all commands are off but those that a text field can do, which go to it, and those that have
    /// nothing to do with pictures.
    std::optional<Typing::TextAction> inText = {};
    bool overSheets = false;
};

QString titleOf(const CommandRow& row, const PaintModel& model); ///< In the user's language, as it is now.
bool isEnabled(const CommandRow& row, const PaintModel& model);
QString
nameOf(const CommandRow& row); ///< The same whatever the model is like: "Undo". Of one that has a name.
/// All keys that run the command now, with modifiers; the one that is shown first, if there is one. With a key of its
/// own, Delete stands for Backspace, and Ctrl+Alt+Shift for Ctrl+Meta, which desktops take for themselves. A key of its own
/// that the user chose for another command or a tool does not run it.
std::vector<int> keysOf(const CommandRow& row, const KeyChoices& choices);
int shownKeyOf(const CommandRow& row, const KeyChoices& choices); ///< In the menu and in tips; 0 for none.
/// Does nothing where it is not enabled.
void runCommand(const CommandRow& row, PaintModel& model, CanvasView& view);

} // namespace qirn
