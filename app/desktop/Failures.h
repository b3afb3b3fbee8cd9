#pragma once
#include <exception>
#include <utility>

#include <QString>

namespace qirn {

/// Why something did not work, in words for the user: those of a DescribedError, or that memory is out.
QString failureText(const std::exception& error);

/// For what changes no picture, such as drawing one: nothing is taken back, and the caller makes do without. True when
/// `body` ran to its end.
template <class Body> bool contained(Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace qirn
