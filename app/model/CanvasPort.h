#pragma once

namespace qirn {

class DocSession;

/// What the model asks of the canvas that shows its pictures. One without a canvas asks this, which does nothing.
class CanvasPort {
public:
    enum class AllTiles { no, yes };

    virtual ~CanvasPort() = default;
    virtual void showSession(DocSession&) {}
    virtual void forgetSession(const DocSession&) {} ///< Before the session goes away.
    /// Recomposites and shows the dirty tiles at once; ants and previews as the model now has them.
    virtual void refresh(AllTiles) {}
    virtual void choicesChanged() {}              ///< The tool, its brush or the preferences.
    virtual bool isBusy() const { return false; } ///< A stroke is in progress.
    virtual void endStroke() {}                   ///< Ends and commits the stroke in progress, if any.
    virtual void endGesture() {} ///< Whatever drag is in progress, as if it were let go where it last was.
    /// After a failure: any gesture goes, and all is drawn anew. The picture is the model's to put back.
    virtual void dropUncommitted() {}
};

} // namespace qirn
