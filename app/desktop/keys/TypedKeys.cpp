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
constexpr int kLastOfASCII = 0x7e;
constexpr int kFirstNamed = Qt::Key_Escape; // keys that type nothing

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

std::optional<int> shortcutOf(const QKeyEvent& event) {
    int key = event.key();
    const bool isModifier = (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) ||
                            (key >= Qt::Key_Super_L && key <= Qt::Key_Hyper_R) || key == Qt::Key_AltGr;
    if (isModifier || key == Qt::Key_unknown) return std::nullopt;
    if (!typesASCII(event)) {
        const auto character = characterOf(event);
        if (!character) return std::nullopt;
        key = character->toUpper().unicode();
    }
    if (key <= 0 || (key > kLastOfASCII && key < kFirstNamed)) return std::nullopt;
    Qt::KeyboardModifiers held =
        event.modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (key == Qt::Key_Backtab) {
        key = Qt::Key_Tab;
        held |= Qt::ShiftModifier;
    }
    const bool isLetter = key >= Qt::Key_A && key <= Qt::Key_Z;
    // Shift that belongs to a sign, as in "+", is not part of the shortcut.
    const bool typesSign = !event.text().isEmpty() && event.text().front().isPrint() && !isLetter &&
                           key != Qt::Key_Space && (key < Qt::Key_0 || key > Qt::Key_9);
    if (typesSign || (isLetter && held == Qt::ShiftModifier)) held &= ~Qt::ShiftModifier;
    return static_cast<int>(held) | key;
}

} // namespace qirn
