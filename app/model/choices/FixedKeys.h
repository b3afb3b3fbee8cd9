#pragma once
#include <span>

#include <QString>

namespace qirn {

/// A key of the canvas or the window that means one thing, whatever keys the user gives to commands and tools.
struct FixedKey {
    int key;          ///< Qt's, with modifiers.
    const char* what; ///< English source text: what it does.
};

std::span<const FixedKey> fixedKeys();     ///< Those that belong together stand together.
QString whatItDoes(const FixedKey& fixed); ///< In the user's language.
const FixedKey* fixedKey(int key);         ///< Null for any other key.

} // namespace qirn
