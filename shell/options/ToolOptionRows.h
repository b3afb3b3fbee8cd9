#pragma once
#include <span>

#include "kit/rows/ControlRows.h"

namespace qirn {

class PaintModel;

/// What a tool's options are: a table that the options bar shows. Texts are English sources of the context
/// "qirn::ToolOptionsBar"; they may name keys as the tables do (⌘).
namespace ToolOptionRows {

using Row = ControlRow<PaintModel>;

std::span<const Row> all(); ///< In the order in which they stand in the bar.

} // namespace ToolOptionRows

} // namespace qirn
