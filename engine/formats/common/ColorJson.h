#pragma once
#include "core/PaintColor.h"
#include "platform/Json.h"

namespace qirn {

/// A color as files and records hold it: an object of the numbers r, g, b, a.
OrderedJson colorToJson(const PaintColor& color);
/// Each channel clamped to 0 to 1. Throws JsonTypeError where one is missing or no number.
PaintColor colorFromJson(const Json& value);

} // namespace qirn
