#pragma once
#include "app/model/TransformState.h"

#include <functional>
#include <optional>

#include <QCoreApplication>

namespace qirn {

class PaintModel;

/// The floating pixels of the Move tool, from the lift off the active layer until they are placed or cancelled.
class PendingTransform {
    Q_DECLARE_TR_FUNCTIONS(qirn::PendingTransform)
public:
    explicit PendingTransform(PaintModel& model) : model_(model) {} ///< Borrowed for its life.

    bool isPending() const { return state_.has_value(); }
    const std::optional<TransformState>& state() const { return state_; }

    void beginTransform(); ///< Lifts the selected pixels, or the whole layer's, and takes the Move tool.
    void updateTransform(const std::function<void(TransformState&)>& change);
    void applyTransform();
    void cancelTransform();
    void drop() { state_.reset(); } ///< After a failure: the document has been reverted already.

private:
    PaintModel& model_;
    std::optional<TransformState> state_;
    bool lockedAlpha_ = false; // the layer's alpha lock, set aside while its pixels float
};

} // namespace qirn
