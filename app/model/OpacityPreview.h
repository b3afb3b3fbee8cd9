#pragma once
#include <cstdint>
#include <optional>

#include <QCoreApplication>
#include <QUuid>

namespace qirn {

class PaintModel;

/// A layer's opacity while its slider moves: shown at once, committed as one undo step by `commit` or by the next edit.
class OpacityPreview {
    Q_DECLARE_TR_FUNCTIONS(qirn::OpacityPreview)
public:
    explicit OpacityPreview(PaintModel& model) : model_(model) {} ///< Borrowed for its life.

    void show(int64_t layerIndex, double opacity); ///< Of the current picture's layer; 0 to 1.
    void commit();                    ///< The one undo step of what was shown; none where nothing was.
    void drop() { pending_.reset(); } ///< After a failure: the document has been reverted already.

private:
    struct Pending {
        QUuid layer;
        double before;
    };
    PaintModel& model_;
    std::optional<Pending> pending_;
};

} // namespace qirn
