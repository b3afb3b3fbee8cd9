#pragma once
#include <optional>

#include <QString>

namespace qirn {

/// How a number is shown and typed: the shown number is the value times `scale`, with `decimals` places and a suffix
/// in UTF-8.
struct NumberFormat {
    double scale = 1;
    int decimals = 0;
    const char* suffix = "";
    bool groups =
        false; ///< A comma, point or blank before exactly three digits groups them: "1,920" is 1920.
    bool trimmed = false; ///< No zeros at the end of the places.
    QString (*words)(double value) =
        nullptr; ///< What is shown in place of the number, in the user's language.

    static constexpr NumberFormat plain(int decimals = 0) { return {1, decimals, ""}; }
    static constexpr NumberFormat percent() { return {100, 0, "%"}; } ///< A value of 0 to 1.
    static constexpr NumberFormat pixels() { return {1, 0, " px", true}; }
    static constexpr NumberFormat degrees() { return {1, 0, "°"}; }
    static constexpr NumberFormat times() { return {1, 2, "×"}; }
    static constexpr NumberFormat perSecond() { return {1, 0, "/s"}; }
    /// As many places as it takes, up to `decimals`.
    static constexpr NumberFormat upTo(int decimals, const char* suffix = "") {
        return {1, decimals, suffix, decimals == 0, true};
    }

    QString number(double value) const; ///< Without the suffix, by the user's locale.
    QString text(double value) const;
    /// The value meant by a typed text, with or without the suffix: by the user's locale, and where that does not know it
    /// in any digits with a point or a comma; nothing if it is no number.
    std::optional<double> value(const QString& text) const;
};

/// How a slider's length maps to its values: the place along it is from 0 to 1.
struct SliderScale {
    double lower = 0;
    double upper = 1;
    double step = 0.01;       ///< What a value is rounded to while it is dragged, and what a key moves it by.
    bool fineAtStart = false; ///< Small values take more of the length: the square of the place.

    double valueAt(double place) const; ///< Rounded to the step.
    double placeOf(double value) const; ///< A value outside gives the nearer end.
    double stepped(double value, int steps) const;
    double clamped(double value) const;
};

} // namespace qirn
