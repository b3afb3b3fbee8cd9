#pragma once
#include "app/desktop/Failures.h"

#include <functional>
#include <type_traits>
#include <utility>

namespace qirn {

class PaintModel;

/// Called in a catch block: frees the reserve of memory, reverts the picture to its last commit, and tells the user what
/// the exception says.
void takeBackAfterFailure(PaintModel& model) noexcept;

/// Runs `body` and catches what it throws. Everything that Qt calls and that touches pictures runs in here: an exception
/// must not pass Qt's Gui or Widgets, and an uncaught one would end the program with every picture. A failure, nearly
/// always std::bad_alloc, costs only what was not committed. True when `body` ran to its end.
template <class Body> bool guarded(PaintModel& model, Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (...) {
        takeBackAfterFailure(model);
        return false;
    }
}

/// Calls `body` with `arguments`, or without any where it takes none.
template <class Body, class... Arguments>
void callWithWhatItTakes(const Body& body, Arguments&&... arguments) {
    if constexpr (std::is_invocable_v<const Body&, Arguments...>)
        body(std::forward<Arguments>(arguments)...);
    else
        body();
}

/// A slot that runs `body` guarded. It may take fewer arguments than its signal has.
template <class Body> auto guarding(PaintModel& model, Body body) {
    return [&model, body = std::move(body)](auto&&... arguments) -> void {
        guarded(model, [&] { callWithWhatItTakes(body, std::forward<decltype(arguments)>(arguments)...); });
    };
}

/// Runs `body` so on the next turn of the main loop, and not while long work runs.
void soon(PaintModel& model, std::function<void()> body);

} // namespace qirn
