#pragma once
#include "core/BlendMode.h"
#include "platform/RowOrder.h"

#include <array>
#include <optional>

#include <QLatin1String>
#include <QStringView>

namespace qirn::OpenRaster {

// Names in the list of layers that its writer and its reader share.

struct ModeName {
    BlendMode mode;
    QLatin1String name;
};
/// The format's own where it has one, else Krita's, which other programs read as normal.
inline constexpr std::array kModeNames{
    ModeName{BlendMode::normal, QLatin1String("svg:src-over")},
    ModeName{BlendMode::multiply, QLatin1String("svg:multiply")},
    ModeName{BlendMode::screen, QLatin1String("svg:screen")},
    ModeName{BlendMode::overlay, QLatin1String("svg:overlay")},
    ModeName{BlendMode::darken, QLatin1String("svg:darken")},
    ModeName{BlendMode::lighten, QLatin1String("svg:lighten")},
    ModeName{BlendMode::colorDodge, QLatin1String("svg:color-dodge")},
    ModeName{BlendMode::colorBurn, QLatin1String("svg:color-burn")},
    ModeName{BlendMode::hardLight, QLatin1String("svg:hard-light")},
    ModeName{BlendMode::softLight, QLatin1String("svg:soft-light")},
    ModeName{BlendMode::difference, QLatin1String("svg:difference")},
    ModeName{BlendMode::exclusion, QLatin1String("krita:exclusion")},
    ModeName{BlendMode::add, QLatin1String("svg:plus")},
    ModeName{BlendMode::subtract, QLatin1String("krita:subtract")},
    ModeName{BlendMode::linearBurn, QLatin1String("krita:linear_burn")},
    ModeName{BlendMode::hue, QLatin1String("svg:hue")},
    ModeName{BlendMode::saturation, QLatin1String("svg:saturation")},
    ModeName{BlendMode::color, QLatin1String("svg:color")},
    ModeName{BlendMode::luminosity, QLatin1String("svg:luminosity")},
};
static_assert(kModeNames.size() == kBlendModes.size() && isInOrder(kModeNames, &ModeName::mode));

/// Others by which programs have called them.
inline constexpr std::array kOtherModeNames{
    ModeName{BlendMode::exclusion, QLatin1String("svg:exclusion")},
    ModeName{BlendMode::add, QLatin1String("svg:add")},
    ModeName{BlendMode::add, QLatin1String("krita:linear_dodge")},
    ModeName{BlendMode::softLight, QLatin1String("krita:soft_light")},
};

constexpr QLatin1String nameOf(BlendMode mode) {
    return kModeNames[static_cast<std::size_t>(mode)].name;
}
constexpr QLatin1String kClipped("svg:src-atop"); ///< In place of a mode: clipped, and normal.

/// Ours, for what the format cannot say; others pass it over.
inline constexpr QLatin1String kOurNames("urn:qirnpaint:openraster");
constexpr QLatin1String kOurPrefix("qirnpaint");
constexpr QLatin1String kOurMode("qirnpaint:composite-op"); ///< Of a clipped layer, in the names above.
constexpr QLatin1String kOurAlphaLock("qirnpaint:alpha-locked");
constexpr QLatin1String kOurClipping("qirnpaint:clipping"); ///< Of the bottom layer, where it shows nothing.
constexpr QLatin1String kOurDpi("qirnpaint:dpi");           ///< With its fraction.

} // namespace qirn::OpenRaster
