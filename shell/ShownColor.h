#pragma once
#include <QColor>

#include "core/PaintColor.h"

namespace qirn {

/// An opaque paint color as the window shows it.
inline QColor shownColor(const PaintColor& color) {
    return QColor(color.r8(), color.g8(), color.b8());
}

} // namespace qirn
