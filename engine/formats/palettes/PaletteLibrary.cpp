#include "formats/palettes/PaletteLibrary.h"

#include "brush/BrushSettings.h"

namespace qirn {

namespace {

using PaletteLibrary::Entry;

// clang-format off
constexpr Entry chromeAndCandy[] = {
    {"#0B0C10", "Gloss Black"}, {"#3A3F47", "Gunmetal"},
    {"#8C939D", "Brushed Steel"}, {"#D9DDE3", "Chrome Highlight"},
    {"#FFFFFF", "Mirror White"}, {"#B3001B", "Candy Apple Red"},
    {"#E2231A", "Fire Red"}, {"#FF6A13", "Tangerine Flake"},
    {"#FFB000", "Gold Leaf"}, {"#C9A227", "Chrome Gold"},
    {"#00A3E0", "Electric Blue"}, {"#0047AB", "Cobalt"},
    {"#14213D", "Midnight Navy"}, {"#6A0DAD", "Deep Purple Pearl"},
    {"#FF1F8F", "Hot Pink Candy"}, {"#00B140", "Kandy Green"},
};

constexpr Entry basic[] = {
    {"#000000", "Black"}, {"#FFFFFF", "White"},
    {"#808080", "Gray"}, {"#FF0000", "Red"},
    {"#FF8000", "Orange"}, {"#FFFF00", "Yellow"},
    {"#00C000", "Green"}, {"#00FFFF", "Cyan"},
    {"#0000FF", "Blue"}, {"#8000FF", "Violet"},
    {"#FF00FF", "Magenta"}, {"#804000", "Brown"},
};

constexpr Entry skinTones[] = {
    {"#FFE0C9", "Porcelain"}, {"#F9D3B4", "Ivory"},
    {"#F1C27D", "Sand"}, {"#E0AC69", "Honey"},
    {"#C68642", "Caramel"}, {"#A86B3C", "Bronze"},
    {"#8D5524", "Chestnut"}, {"#6B3E1F", "Espresso"},
    {"#4A2912", "Deep Umber"}, {"#E8A598", "Blush Shadow"},
    {"#B5654F", "Warm Shadow"}, {"#5C3A2E", "Cool Shadow"},
};

constexpr Entry desertAndCanyon[] = {
    {"#F2D7A6", "Dune"}, {"#E3B778", "Sandstone"},
    {"#C97C3D", "Mesa Orange"}, {"#A0522D", "Red Rock"},
    {"#7B3F20", "Canyon Shadow"}, {"#5E6B3A", "Juniper"},
    {"#8A9A5B", "Sage"}, {"#B7C9A8", "Pale Sage"},
    {"#6E8CA0", "Distant Ridge"}, {"#9EC1D9", "High Desert Sky"},
    {"#F4A259", "Sunset Glow"}, {"#3D2C29", "Basalt"},
};

constexpr Entry oceanAndSky[] = {
    {"#03045E", "Abyss"}, {"#023E8A", "Deep Water"},
    {"#0077B6", "Ocean"}, {"#0096C7", "Lagoon"},
    {"#48CAE4", "Shallows"}, {"#90E0EF", "Surf"},
    {"#CAF0F8", "Foam"}, {"#FFFFFF", "Cloud"},
    {"#87CEEB", "Sky"}, {"#4682B4", "Steel Sky"},
    {"#F7CAC9", "Dawn Pink"}, {"#FCE38A", "Sunlight"},
};

constexpr Entry pastels[] = {
    {"#FFD1DC", "Pink"}, {"#FFDAB9", "Peach"},
    {"#FFFACD", "Lemon"}, {"#E0FFD1", "Mint"},
    {"#C1F0F6", "Aqua"}, {"#C9D7FF", "Periwinkle"},
    {"#E6D1FF", "Lilac"}, {"#F5E6CC", "Cream"},
    {"#D7F2E3", "Seafoam"}, {"#FCE1E4", "Rose Water"},
};

constexpr Entry neonNight[] = {
    {"#0D0221", "Night"}, {"#261447", "Indigo Haze"},
    {"#FF2A6D", "Neon Pink"}, {"#FF6B00", "Neon Orange"},
    {"#FFE600", "Neon Yellow"}, {"#39FF14", "Neon Green"},
    {"#05D9E8", "Neon Cyan"}, {"#7B2CBF", "Ultraviolet"},
    {"#D1F7FF", "Glow White"},
};

constexpr Entry autumnForest[] = {
    {"#2D3A1F", "Pine Shadow"}, {"#4F6D2F", "Moss"},
    {"#8DA34A", "Fern"}, {"#D9A441", "Aspen Gold"},
    {"#E07A1F", "Pumpkin"}, {"#B23A16", "Maple"},
    {"#7A2E12", "Rust"}, {"#5B3A29", "Bark"},
    {"#C2B280", "Dry Grass"}, {"#E9E4D4", "Frost"},
};
// clang-format on

struct Row {
    const char* name;
    std::span<const Entry> entries; ///< None where the colors are computed.
};
constexpr Row kRows[] = {
    {"Qirn Chrome & Candy", chromeAndCandy},
    {"Basic", basic},
    {"Grayscale", {}},
    {"Skin Tones", skinTones},
    {"Desert & Canyon", desertAndCanyon},
    {"Ocean & Sky", oceanAndSky},
    {"Pastels", pastels},
    {"Neon Night", neonNight},
    {"Autumn Forest", autumnForest},
};

/// 16 grays from black to white, named by the whole percent below.
std::vector<PaletteColor> grays() {
    std::vector<PaletteColor> colors;
    for (int i = 0; i <= 15; ++i) {
        const auto byte = static_cast<uint8_t>(17 * i);
        const int percent = static_cast<int>(i / 15.0 * 100);
        colors.push_back({PaintColor::fromBytes(byte, byte, byte), QStringLiteral("Gray %1%").arg(percent)});
    }
    return colors;
}

} // namespace

Palette PaletteLibrary::pal(const QString& name, std::span<const Entry> entries) {
    Palette palette{BrushSettings::stableID(QStringLiteral("palette/") + name), name, {}, true};
    for (const Entry& entry : entries) {
        const auto color = PaintColor::fromHex(QString::fromUtf8(entry.hex));
        if (color) palette.colors.push_back({*color, QString::fromUtf8(entry.name)});
    }
    return palette;
}

const std::vector<Palette>& PaletteLibrary::builtIn() {
    static const std::vector<Palette> list = [] {
        std::vector<Palette> palettes;
        for (const Row& row : kRows) {
            palettes.push_back(pal(QString::fromUtf8(row.name), row.entries));
            if (row.entries.empty()) palettes.back().colors = grays();
        }
        return palettes;
    }();
    return list;
}

} // namespace qirn
