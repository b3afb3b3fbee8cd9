#pragma once
#include "core/PaintColor.h"

#include <QString>

namespace qirn {

/// Words to be drawn as pixels, and how they look.
struct TextSpec {
    QString text; ///< With line breaks.
    QString fontFamily = QStringLiteral("Helvetica Neue");
    double size = 72; ///< Canvas pixels.
    bool bold = true;
    bool italic = false;
    int alignment = 0; ///< 0 left, 1 center, 2 right, within the widest line.
    PaintColor color = PaintColor::black();
    bool outline = false;
    PaintColor outlineColor = PaintColor::white();
    double outlineWidth = 4; ///< Canvas pixels outside the letters' edge; as much covers their inside.
};

} // namespace qirn
