#pragma once

namespace qirn {

class DocSession;

/// The canvas as the model knows it. This class itself is the null object, for a model without a canvas.
class CanvasPort {
public:
    enum class AllTiles { no, yes };

    virtual ~CanvasPort() = default;
    virtual void showSession(DocSession&) {}
    virtual void forgetSession(const DocSession&) {} ///< Before the session goes away.
    /// Recomposites and shows the dirty tiles at once; ants and previews as the model now has them.
    virtual void refresh(AllTiles) {}
    virtual void choicesChanged() {}                   ///< The tool, its brush or the preferences.
    virtual bool isBusy() const { return false; }      ///< A stroke is in progress.
    virtual bool isInGesture() const { return false; } ///< A stroke or any other drag is in progress.
    virtual void endStroke() {}                        ///< Ends and commits the stroke in progress, if any.
    virtual void endGesture() {} ///< Ends any drag in progress as if it were released where it last was.
    /// After a failure: drops any gesture without committing it and redraws everything. The model restores the document.
    virtual void dropUncommitted() {}
};

} // namespace qirn
