#pragma once
#include "formats/palettes/PaletteLibrary.h"

/// The colors of the palettes that come with the program; `PaletteLibrary::builtIn` makes palettes of them.
namespace qirn::BuiltInPalettes {

// clang-format off
inline constexpr PaletteLibrary::Entry chromeAndCandy[] = {
    {"#0B0C10", "Gloss Black"}, {"#3A3F47", "Gunmetal"},
    {"#8C939D", "Brushed Steel"}, {"#D9DDE3", "Chrome Highlight"},
    {"#FFFFFF", "Mirror White"}, {"#B3001B", "Candy Apple Red"},
    {"#E2231A", "Fire Red"}, {"#FF6A13", "Tangerine Flake"},
    {"#FFB000", "Gold Leaf"}, {"#C9A227", "Chrome Gold"},
    {"#00A3E0", "Electric Blue"}, {"#0047AB", "Cobalt"},
    {"#14213D", "Midnight Navy"}, {"#6A0DAD", "Deep Purple Pearl"},
    {"#FF1F8F", "Hot Pink Candy"}, {"#00B140", "Kandy Green"},
};

inline constexpr PaletteLibrary::Entry basic[] = {
    {"#000000", "Black"}, {"#FFFFFF", "White"},
    {"#808080", "Gray"}, {"#FF0000", "Red"},
    {"#FF8000", "Orange"}, {"#FFFF00", "Yellow"},
    {"#00C000", "Green"}, {"#00FFFF", "Cyan"},
    {"#0000FF", "Blue"}, {"#8000FF", "Violet"},
    {"#FF00FF", "Magenta"}, {"#804000", "Brown"},
};

inline constexpr PaletteLibrary::Entry skinTones[] = {
    {"#FFE0C9", "Porcelain"}, {"#F9D3B4", "Ivory"},
    {"#F1C27D", "Sand"}, {"#E0AC69", "Honey"},
    {"#C68642", "Caramel"}, {"#A86B3C", "Bronze"},
    {"#8D5524", "Chestnut"}, {"#6B3E1F", "Espresso"},
    {"#4A2912", "Deep Umber"}, {"#E8A598", "Blush Shadow"},
    {"#B5654F", "Warm Shadow"}, {"#5C3A2E", "Cool Shadow"},
};

inline constexpr PaletteLibrary::Entry desertAndCanyon[] = {
    {"#F2D7A6", "Dune"}, {"#E3B778", "Sandstone"},
    {"#C97C3D", "Mesa Orange"}, {"#A0522D", "Red Rock"},
    {"#7B3F20", "Canyon Shadow"}, {"#5E6B3A", "Juniper"},
    {"#8A9A5B", "Sage"}, {"#B7C9A8", "Pale Sage"},
    {"#6E8CA0", "Distant Ridge"}, {"#9EC1D9", "High Desert Sky"},
    {"#F4A259", "Sunset Glow"}, {"#3D2C29", "Basalt"},
};

inline constexpr PaletteLibrary::Entry oceanAndSky[] = {
    {"#03045E", "Abyss"}, {"#023E8A", "Deep Water"},
    {"#0077B6", "Ocean"}, {"#0096C7", "Lagoon"},
    {"#48CAE4", "Shallows"}, {"#90E0EF", "Surf"},
    {"#CAF0F8", "Foam"}, {"#FFFFFF", "Cloud"},
    {"#87CEEB", "Sky"}, {"#4682B4", "Steel Sky"},
    {"#F7CAC9", "Dawn Pink"}, {"#FCE38A", "Sunlight"},
};

inline constexpr PaletteLibrary::Entry pastels[] = {
    {"#FFD1DC", "Pink"}, {"#FFDAB9", "Peach"},
    {"#FFFACD", "Lemon"}, {"#E0FFD1", "Mint"},
    {"#C1F0F6", "Aqua"}, {"#C9D7FF", "Periwinkle"},
    {"#E6D1FF", "Lilac"}, {"#F5E6CC", "Cream"},
    {"#D7F2E3", "Seafoam"}, {"#FCE1E4", "Rose Water"},
};

inline constexpr PaletteLibrary::Entry neonNight[] = {
    {"#0D0221", "Night"}, {"#261447", "Indigo Haze"},
    {"#FF2A6D", "Neon Pink"}, {"#FF6B00", "Neon Orange"},
    {"#FFE600", "Neon Yellow"}, {"#39FF14", "Neon Green"},
    {"#05D9E8", "Neon Cyan"}, {"#7B2CBF", "Ultraviolet"},
    {"#D1F7FF", "Glow White"},
};

inline constexpr PaletteLibrary::Entry autumnForest[] = {
    {"#2D3A1F", "Pine Shadow"}, {"#4F6D2F", "Moss"},
    {"#8DA34A", "Fern"}, {"#D9A441", "Aspen Gold"},
    {"#E07A1F", "Pumpkin"}, {"#B23A16", "Maple"},
    {"#7A2E12", "Rust"}, {"#5B3A29", "Bark"},
    {"#C2B280", "Dry Grass"}, {"#E9E4D4", "Frost"},
};
// clang-format on

/// A palette of the list.
struct Row {
    const char* name;
    std::span<const PaletteLibrary::Entry> entries; ///< None where the colors are computed.
};
inline constexpr Row kRows[] = {
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

} // namespace qirn::BuiltInPalettes
