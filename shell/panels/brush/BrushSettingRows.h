#pragma once
#include <span>

#include "kit/rows/ControlRows.h"

namespace qirn {

class PaintModel;

/// Every setting of the active brush: a table that the brush panel shows. Texts are English sources of the context
/// "qirn::BrushPanel".
namespace BrushSettingRows {

using Row = ControlRow<PaintModel>;

std::span<const Row> all(); ///< In the order in which they stand in the panel.

} // namespace BrushSettingRows

} // namespace qirn
