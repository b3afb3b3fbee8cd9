#pragma once
#include <QPointF>

namespace qirn {

/// A sheet over the window that asks for something; the window lays it out and owns what is typed into it.
struct PaintSheet {
    enum class Kind { text, newDocument, exportPicture, imageSize, canvasSize, recovery };
    Kind kind = Kind::recovery;
    QPointF textRequest = {}; ///< `text`: the canvas point of the words' top left corner.

    bool operator==(const PaintSheet&) const = default;
};

} // namespace qirn
