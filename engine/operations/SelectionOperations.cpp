#include "operations/SelectionOperations.h"

namespace qirn {

void selectAll(PaintDocument& doc) {
    doc.selection = Selection::all(doc.grid().width, doc.grid().height);
}

void deselect(PaintDocument& doc) {
    doc.selection = nullptr;
}

void invertSelection(PaintDocument& doc) {
    if (doc.selection) doc.selection = doc.selection->inverted();
}

} // namespace qirn
