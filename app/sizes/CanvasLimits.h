#pragma once
#include <cstdint>

#include <QCoreApplication>
#include <QString>

namespace qirn {

/// Which canvases there can be, and which take so much memory that the user is told before.
class CanvasLimits {
    Q_DECLARE_TR_FUNCTIONS(qirn::CanvasLimits)
public:
    static bool allow(int64_t width, int64_t height); ///< 1 to 30,000 pixels a side.

    /// What a layer of that size takes; empty for a size that is not allowed or needs no warning.
    static QString warning(int64_t width, int64_t height);
    /// The same for a picture that has layers already, and what all of them take.
    static QString warning(int64_t width, int64_t height, int64_t layers);
};

} // namespace qirn
