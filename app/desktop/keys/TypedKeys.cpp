#include "app/desktop/keys/TypedKeys.h"

#include <string_view>

#include <QKeyEvent>

namespace qirn {

namespace {

/// Keys side by side on a US keyboard, by the scan codes of X11 and Wayland.
struct KeyRow {
    quint32 first;
    std::string_view characters;
};
constexpr KeyRow kUSKeys[] = {{20, "-="}, {24, "qwertyuiop[]"}, {38, "asdfghjkl"}, {52, "zxcvbnm,./"}};

} // namespace

bool typesASCII(const QKeyEvent& event) {
    return event.text().isEmpty() || event.text().front().unicode() < 128;
}

std::optional<QChar> characterOf(const QKeyEvent& event) {
    if (typesASCII(event)) {
        if (event.text().size() == 1) return event.text().front();
        return std::nullopt;
    }
    for (const KeyRow& row : kUSKeys) {
        const quint32 place = event.nativeScanCode() - row.first; // wraps around below the first
        if (place < row.characters.size()) return QLatin1Char(row.characters[place]);
    }
    return std::nullopt;
}

} // namespace qirn
