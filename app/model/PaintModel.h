#pragma once
#include "app/model/CanvasPort.h"
#include "app/model/PaintSheet.h"
#include "app/model/choices/InspectorTab.h"
#include "app/model/choices/KeyChoices.h"
#include "app/model/choices/PaintPrefs.h"
#include "app/model/choices/Tool.h"
#include "app/model/choices/ToolOptions.h"

#include <functional>
#include <memory>
#include <optional>

#include <QObject>
#include <QString>
#include <QTimer>

namespace qirn {

class Brushes;
class CanvasStatus;
class Clipboard;
class Colors;
class Desktop;
class DocSession;
class LongTask;
class Messages;
class OpacityPreview;
class OpenPictures;
class PaintDocument;
class Palettes;
class PendingTransform;
class PictureFiles;
class Progress;
class Safety;
class Store;

/// The one application object: the tool, its options and the preferences, and a subject each for everything else. Menus,
/// panels and the canvas call it and its subjects, and read them again when it says `changed`; only they and the canvas
/// change documents. Main thread only.
class PaintModel : public QObject {
    Q_OBJECT
public:
    enum class LoadStores { no, yes };
    /// Borrows desktop and store for its life. `no` keeps the built-in values and reads nothing stored.
    PaintModel(LoadStores stores, Desktop& desktop, Store& store);
    ~PaintModel() override;

    static PaintModel* shared; ///< The application's own; null in the command modes.

    // --- Subjects, each with a header of its own
    Messages& messages() const { return *messages_; }
    Colors& colors() const { return *colors_; }
    Brushes& brushes() const { return *brushes_; }
    Palettes& palettes() const { return *palettes_; }
    OpenPictures& pictures() const { return *pictures_; }
    PictureFiles& files() const { return *files_; }
    Safety& safety() const { return *safety_; }
    PendingTransform& transform() const { return *transform_; }
    OpacityPreview& opacity() const { return *opacity_; }
    Clipboard& clipboard() const { return *clipboard_; }
    CanvasStatus& status() const { return *status_; }

    // --- Choices
    DocSession* current() const; ///< The picture that all edits go to; null only before the first one.
    Tool tool() const { return tool_; }
    void setTool(Tool tool);
    const ToolOptions& options() const { return options_; }
    void setOptions(const ToolOptions& options);
    const PaintPrefs& prefs() const { return prefs_; }
    void setPrefs(const PaintPrefs& prefs);
    const KeyChoices& keys() const { return keys_; }
    void setKeys(const KeyChoices& keys);
    const std::optional<PaintSheet>& sheet() const { return sheet_; } ///< The one that is up.
    void showSheet(const PaintSheet& sheet);                          ///< Replaces one that is up.
    void closeSheet();
    void showPreferences() { Q_EMIT preferencesAsked(); }
    bool panelsAreHidden() const {
        return panelsAreHidden_;
    } ///< All round the canvas but the header and the status bar.
    void togglePanels();
    InspectorTab inspectorTab() const { return inspectorTab_; }
    void setInspectorTab(InspectorTab tab);
    void revealInspectorTab(InspectorTab tab); ///< Brings hidden panels back for it.
    bool penIsEraser = false;                  ///< The eraser end of the pen is down or near.

    // --- Edits: each is one undo step with a fixed name, or none where it changed nothing
    enum class NeedsUnlockedLayer { no, yes };
    void edit(const QString& name, const std::function<void(PaintDocument&)>& body,
              NeedsUnlockedLayer needs = NeedsUnlockedLayer::no);
    /// The same for an edit that may take long: `body` works on a draft, off the main thread, and the picture becomes the
    /// draft in one go. A cancel leaves the last commit.
    void editLong(const QString& name, const std::function<void(PaintDocument&, const Progress&)>& body);
    /// Ends and commits whatever is uncommitted: the gesture in progress, a previewed opacity, floating pixels. Every
    /// command calls it first.
    void finishGesture();
    void afterChange(DocSession& session); ///< After a commit or for a preview: redraws and announces.
    void undo();
    void redo();
    /// After a failure: reverts the picture to its last commit, drops what is in progress and flashes `why`.
    void takeBack(const QString& why);

    // --- Services and the canvas
    Desktop& desktop() const { return desktop_; }
    Store& store() const { return store_; }
    CanvasPort& canvas() const { return *canvas_; }
    LongTask& longTask() const { return *longTask_; }
    void setCanvas(CanvasPort* canvas); ///< Borrowed until another one is set; null for none.

    void announce() { Q_EMIT changed(); }
    void choiceChanged(); ///< Announces, and saves the choices when control returns to the event loop.
    void saveState();     ///< Puts the choices into the store.
    /// The same, and waits until they, the presets and the palettes are on disk, or cannot be written.
    void flushState();

Q_SIGNALS:
    void changed();
    void preferencesAsked(); ///< By a command: they have a window of their own.

private:
    void loadState();

    Desktop& desktop_;
    Store& store_;
    CanvasPort noCanvas_;
    CanvasPort* canvas_ = &noCanvas_;
    Tool tool_ = Tool::brush;
    ToolOptions options_;
    PaintPrefs prefs_;
    KeyChoices keys_;
    std::optional<PaintSheet> sheet_;
    bool panelsAreHidden_ = false;
    InspectorTab inspectorTab_ = InspectorTab::color;
    QTimer stateTimer_; // single shot, 0 ms: saves once for what changes together
    std::unique_ptr<LongTask> longTask_;
    std::unique_ptr<CanvasStatus> status_;
    std::unique_ptr<Messages> messages_;
    std::unique_ptr<Colors> colors_;
    std::unique_ptr<Brushes> brushes_;
    std::unique_ptr<Palettes> palettes_;
    std::unique_ptr<OpenPictures> pictures_;
    std::unique_ptr<PictureFiles> files_;
    std::unique_ptr<PendingTransform> transform_;
    std::unique_ptr<OpacityPreview> opacity_;
    std::unique_ptr<Clipboard> clipboard_;
    std::unique_ptr<Safety> safety_;
};

} // namespace qirn
