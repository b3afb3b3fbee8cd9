#pragma once
#include "app/text/TextSpec.h"
#include "core/IRect.h"
#include "core/RGBABuffer.h"

#include <cstdint>
#include <memory>
#include <optional>

#include <QFont>
#include <QStringList>

class QPainter;

namespace qirn {

/// Draws words as the platform shapes them, complex scripts and emoji included. It needs an application object, and
/// no display.
namespace TextRenderer {

const QStringList& families(); ///< Those of the machine, read once.

/// The family in its weight and slant, or the interface's own sans where the machine lacks it.
QFont font(const TextSpec& spec);

/// Where the words' pixels lie, seen from the text's own corner. Nothing for text without words, or larger than 29,999
/// pixels on a side.
std::optional<IRect> bounds(const TextSpec& spec);
/// Draws the words with their own corner at the painter's origin, in units of canvas pixels.
void draw(QPainter& painter, const TextSpec& spec);

struct Rendered {
    std::shared_ptr<RGBABuffer> buffer; ///< Antialiased text on transparency, upright.
    int64_t x = 0;                      ///< Where the buffer's corner lies, seen from the text's own corner.
    int64_t y = 0;
};
/// Nothing where there are no bounds.
std::optional<Rendered> render(const TextSpec& spec);

} // namespace TextRenderer

} // namespace qirn
