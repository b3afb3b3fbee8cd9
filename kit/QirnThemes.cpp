#include "kit/QirnThemes.h"

#include "kit/QirnKit.h"

#include <algorithm>

#include <QCoreApplication>

namespace qirn::QirnThemes {

namespace {

using Family = QirnTheme::Family;

struct Row {
    const char* id;
    const char* name;
    Family family;
    uint32_t bg, panelTop, panelBottom, text, dim, accent;
};

constexpr Row kRows[] = {
    {"cobalt-gunmetal", QT_TRANSLATE_NOOP("QirnThemes", "Cobalt Gunmetal"), Family::masculine, //
     0x14181F, 0x353C48, 0x1C2129, 0xF2F5FA, 0xA3AEC0, 0x2F7BF2},
    {"candy-red-titanium", QT_TRANSLATE_NOOP("QirnThemes", "Candy Red Titanium"), Family::masculine, //
     0x1A1616, 0x403736, 0x231D1D, 0xFAF3F2, 0xC2AAA7, 0xD3262E},
    {"rose-gold", QT_TRANSLATE_NOOP("QirnThemes", "Rose Gold"), Family::feminine, //
     0x24161D, 0x4A3039, 0x2C1B23, 0xFFF2F5, 0xD6AFBC, 0xE0789A},
    {"lavender-pearl", QT_TRANSLATE_NOOP("QirnThemes", "Lavender Pearl"), Family::feminine, //
     0x1C1726, 0x40375A, 0x241D33, 0xF6F2FF, 0xBDB1DA, 0x9B7BE8},
    {"midnight-black", QT_TRANSLATE_NOOP("QirnThemes", "Midnight Black"), Family::black, //
     0x050506, 0x26272B, 0x0E0E10, 0xFFFFFF, 0x9C9EA6, 0x5AA9FF},
    {"brushed-gray", QT_TRANSLATE_NOOP("QirnThemes", "Brushed Gray"), Family::gray, //
     0x3A3D42, 0x6A6E75, 0x45484E, 0xFFFFFF, 0xD9DCE1, 0x1F6FD1},
};

QirnTheme themeFrom(const Row& row) {
    using RGB = QirnTheme::RGB;
    return {QString::fromLatin1(row.id),
            QCoreApplication::translate("QirnThemes", row.name),
            row.family,
            RGB::fromHex(row.bg),
            RGB::fromHex(row.panelTop),
            RGB::fromHex(row.panelBottom),
            RGB::fromHex(row.text),
            RGB::fromHex(row.dim),
            RGB::fromHex(row.accent)};
}

struct State {
    std::vector<QirnTheme> builtIn;
    std::vector<QirnTheme> registered;

    State() { std::ranges::transform(kRows, std::back_inserter(builtIn), themeFrom); }
};

State& state() {
    static State theState;
    return theState;
}

const QirnTheme* find(const QString& id) {
    for (const auto* list : {&state().builtIn, &state().registered})
        for (const QirnTheme& theme : *list)
            if (theme.id == id) return &theme;
    return nullptr;
}

} // namespace

std::span<const QirnTheme> builtIn() {
    return state().builtIn;
}

std::vector<QirnTheme> all() {
    std::vector<QirnTheme> themes = state().builtIn;
    themes.insert(themes.end(), state().registered.begin(), state().registered.end());
    return themes;
}

void registerThemes(std::span<const QirnTheme> themes) {
    for (const QirnTheme& theme : themes)
        if (!find(theme.id)) state().registered.push_back(theme);
}

QString currentID() {
    const QString stored = QirnKitHost::store().text(kKey);
    return stored.isEmpty() ? QString::fromLatin1(kDefaultID) : stored;
}

void setCurrentID(const QString& id) {
    QirnKitHost::store().setText(kKey, id);
    QirnKit::applyTheme();
}

QirnTheme current() {
    return named(currentID());
}

QirnTheme named(const QString& id) {
    const QirnTheme* theme = find(id);
    return theme ? *theme : state().builtIn.front();
}

} // namespace qirn::QirnThemes
