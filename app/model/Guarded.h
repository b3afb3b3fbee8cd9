#pragma once
#include "app/desktop/Failures.h"

#include <type_traits>
#include <utility>

namespace qirn {

class PaintModel;

/// Puts the picture back to its last commit after the exception in flight, and says so. Memory kept for this moment is
/// let go first.
void takeBackAfterFailure(PaintModel& model) noexcept;

/// Whatever Qt calls and that touches pictures runs in here: an exception that passed Qt's Gui or Widgets would leave
/// them broken, and one that nobody takes ends the program with every picture. A failure, which is nearly always
/// memory that is out, costs what was not committed: a stroke goes as by Esc. True when `body` ran to its end.
template <class Body> bool guarded(PaintModel& model, Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (...) {
        takeBackAfterFailure(model);
        return false;
    }
}

/// Calls `body` with `arguments` where it takes them, without where it takes none.
template <class Body, class... Arguments>
void callWithWhatItTakes(const Body& body, Arguments&&... arguments) {
    if constexpr (std::is_invocable_v<const Body&, Arguments...>)
        body(std::forward<Arguments>(arguments)...);
    else
        body();
}

/// The same as a slot, which may leave out the arguments that its signal brings.
template <class Body> auto guarding(PaintModel& model, Body body) {
    return [&model, body = std::move(body)](auto&&... arguments) -> void {
        guarded(model, [&] { callWithWhatItTakes(body, std::forward<decltype(arguments)>(arguments)...); });
    };
}

} // namespace qirn
