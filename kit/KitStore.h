#pragma once
#include <functional>

#include <QString>

namespace qirn {

/// Where the kit keeps what is chosen in it: the theme, the zoom, where its windows stand. The kit knows no preferences
/// of its own; the program lends it a place for texts and numbers under keys.
struct KitStore {
    std::function<QString(const char* key)> text; ///< Empty where there is none.
    std::function<void(const char* key, const QString& value)> setText;
    std::function<double(const char* key)> number; ///< 0 where there is none.
    std::function<void(const char* key, double value)> setNumber;

    static KitStore forThisRun(); ///< Keeps nothing beyond the process.
};

} // namespace qirn
