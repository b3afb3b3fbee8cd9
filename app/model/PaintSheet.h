#pragma once
#include <QPointF>
#include <QUuid>

namespace qirn {

/// A sheet over the window that asks for something; the window lays it out and owns what is typed into it.
struct PaintSheet {
    enum class Kind { text, newDocument, exportPicture, imageSize, canvasSize, recovery, renameLayer };
    Kind kind = Kind::recovery;
    QPointF textRequest = {}; ///< `text`: the canvas point of the words' top left corner.
    QUuid layer = {};         ///< `renameLayer`: the one whose name is asked for.

    bool operator==(const PaintSheet&) const = default;
};

} // namespace qirn
