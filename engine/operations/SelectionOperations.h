#pragma once
#include "core/PaintDocument.h"
#include "core/selection/Selection.h"

namespace qirn {

// Changes of what is selected; none commits.

void selectAll(PaintDocument& doc);
void deselect(PaintDocument& doc);
void invertSelection(PaintDocument& doc); ///< Nothing without a selection.

} // namespace qirn
