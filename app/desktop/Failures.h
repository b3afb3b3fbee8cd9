#pragma once
#include <exception>
#include <utility>

#include <QString>

namespace qirn {

/// Why something did not work, in words for the user: those of a DescribedError, or that memory is out.
QString failureText(const std::exception& error);

/// Runs `body` and swallows what it throws: for work that changes no picture, such as drawing one, and that the caller can
/// do without. True when `body` ran to its end.
template <class Body> bool contained(Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace qirn
