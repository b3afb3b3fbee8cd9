#pragma once
#include "app/files/ViewTransform.h"

#include <array>
#include <optional>
#include <vector>

#include <QPointF>

class QTouchEvent;

namespace qirn {

struct Finger {
    int id = 0;
    QPointF place; ///< Logical widget points.
};
/// Those that lie on the canvas, in the order of their ids.
std::vector<Finger> fingersOf(const QTouchEvent& event);

/// Two fingers that hold the picture by the canvas points that they came down on.
struct FingerGrip {
    std::array<int, 2> fingers{};
    std::array<QPointF, 2> canvas;
    ViewState before;
    ViewState latest; ///< What the fingers made of it.
    double since = 0; ///< Seconds.

    bool isOf(const std::vector<Finger>& down) const {
        return down.size() == 2 && down[0].id == fingers[0] && down[1].id == fingers[1];
    }
};

} // namespace qirn
