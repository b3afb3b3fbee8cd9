#pragma once
#include "app/files/DocSession.h"
#include "app/files/UserBrushes.h"
#include "app/files/UserPalettes.h"
#include "app/model/CanvasPort.h"
#include "app/model/CanvasStatus.h"
#include "app/model/PaintPrefs.h"
#include "app/model/PaintSheet.h"
#include "app/model/RecentColors.h"
#include "app/model/Tool.h"
#include "app/model/ToolOptions.h"
#include "app/model/TransformState.h"
#include "brush/BrushSettings.h"
#include "core/PaintColor.h"
#include "formats/ImageExport.h"
#include "operations/Floating.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include <QObject>
#include <QPoint>
#include <QTimer>

class QMimeData;

namespace qirn {

class Desktop;
class Store;
struct TextSpec;

/// The one application object: the open pictures, the tool, the colours, a brush for each brush tool, and every
/// command. Menus, panels and the canvas call it and read it again when it says `changed`; only it and the canvas
/// change documents. Main thread only.
class PaintModel : public QObject {
    Q_OBJECT
public:
    enum class LoadStores { no, yes };
    /// Borrows desktop and store for its life. `no` keeps the built-in values and reads nothing stored.
    PaintModel(LoadStores stores, Desktop& desktop, Store& store);
    ~PaintModel() override;

    static PaintModel* shared; ///< The application's own; null in the command modes.

    // --- Choices (PaintModel.cpp)
    const std::vector<SessionRef>& sessions() const { return sessions_; }
    DocSession* current() const; ///< Null only before the first picture.
    Tool tool() const { return tool_; }
    void setTool(Tool tool); ///< A tool that does not work yet is ignored.
    const PaintColor& primary() const { return primary_; }
    const PaintColor& secondary() const { return secondary_; }
    void setPrimary(const PaintColor& color); ///< As a drag in a colour chooser does: nothing becomes recent.
    enum class AddRecent { no, yes };
    void pick(const PaintColor& color, AddRecent addRecent); ///< Made opaque.
    void pushRecent(const PaintColor& color);
    const std::vector<PaintColor>& recent() const { return recent_; }
    void swapColors();
    void defaultColors();
    const ToolOptions& options() const { return options_; }
    void setOptions(const ToolOptions& options);
    const PaintPrefs& prefs() const { return prefs_; }
    void setPrefs(const PaintPrefs& prefs);

    // --- Brushes (PaintModelBrushes.cpp)
    Tool brushTool() const; ///< Tools without a brush edit the Brush tool's.
    const BrushSettings& activeBrush() const;
    void setActiveBrush(const BrushSettings& brush); ///< Sanitised; written to the store later.
    std::vector<BrushSettings> allBrushes() const;   ///< Built-in, then the user's.
    std::vector<BrushSettings> brushesFor(Tool tool) const;
    const std::vector<BrushSettings>& userBrushes() const { return userBrushes_; }
    void choose(const BrushSettings& preset); ///< Switches to the tool of the preset's kind.
    std::optional<BrushSettings> savedPreset(const BrushSettings& brush) const;
    void resetBrush();
    void saveBrushAsNew(const QString& name);
    void updateUserBrush();
    void deleteUserBrush(const BrushSettings& preset);
    void exportBrushes(); ///< The user's presets; without any, the active brush.
    void importBrushes();
    static BrushSettings defaultBrush(Tool tool);

    // --- Palettes (PaintModelPalettes.cpp). A built-in one is never changed: an edit goes to the user's own copy.
    std::vector<Palette> allPalettes() const; ///< Built-in, then the user's.
    const std::vector<Palette>& userPalettes() const { return userPalettes_; }
    const Palette& currentPalette() const; ///< The first built-in one where the chosen one is gone.
    void selectPalette(const QUuid& id);
    enum class FromRecent { no, yes };
    void newPalette(const QString& name,
                    FromRecent fromRecent); ///< Of the paint colour, or of the recent ones.
    std::size_t editablePaletteIndex(); ///< Among the user's own, where the copy is made that an edit needs.
    void addToPalette(const PaintColor& color);
    void removeFromPalette(std::size_t index);
    void renamePalette(const QString& name);
    void deletePalette();
    void importPalette();
    enum class PaletteFile { gpl, aco };
    void exportPalette(PaletteFile file);

    // --- Messages (PaintModel.cpp)
    const std::optional<QString>& hud() const { return hud_; } ///< The transient line over the canvas.
    void flash(const QString& text);                           ///< Shown for 2.6 seconds; the newest wins.
    void alert(const QString& title, const QString& text);
    bool confirm(const QString& title, const QString& text);
    /// After a failure: the picture is what it was at its last commit, nothing is in progress, and `why` is said.
    void takeBack(const QString& why);
    void announce() { Q_EMIT changed(); }
    void requestSheet(PaintSheet sheet) { Q_EMIT sheetRequested(sheet); }

    // --- Pictures (PaintModelFiles.cpp)
    void newDocument(int64_t width, int64_t height, double dpi, std::optional<PaintColor> background,
                     const QString& name);
    void newCanvas(); ///< 1920 x 1080 on white, or transparent where the preferences say so.
    void ensureDocument();
    void add(SessionRef session);
    void select(DocSession& session);
    void openPanel();
    void open(const QString& path);
    enum class SaveAs { no, yes };
    bool save(DocSession* session, SaveAs as); ///< Null: the current one. False when not saved.
    /// Writes a copy in another format; the picture stays as dirty as it was.
    void exportPicture(ExportFormat format, double jpegQuality, const PaintColor& jpegBackground);
    bool close(DocSession& session); ///< False when the user cancels.
    void closeCurrent();
    bool shouldQuit(); ///< Asks about each picture with unsaved work.
    /// Copies of all unsaved work, as it was last committed and whatever the preferences say, and the store: what remains
    /// to be done when the process is made to end. Waits for it.
    void keepWork();
    void startAutosave();
    void autosaveTick();
    const std::optional<QString>& lastAutosaveText() const { return lastAutosaveText_; }
    /// Puts a recovered picture in, in place of an untouched starter.
    void addRecovered(SessionRef session);

    // --- Commands (PaintModelEdits.cpp)
    enum class NeedsUnlockedLayer { no, yes };
    void edit(const QString& name, const std::function<void(PaintDocument&)>& body,
              NeedsUnlockedLayer needs = NeedsUnlockedLayer::no);
    void afterChange(DocSession& session);
    void undo();
    void redo();
    bool canUndo() const; ///< Undo would take something back: floating pixels, a previewed opacity or a step.
    bool canRedo() const;
    void addLayer();
    void duplicateLayer();
    void deleteLayer();
    void moveLayerUp();
    void moveLayerDown();
    void moveLayer(int64_t from, int64_t to);
    void mergeDown();
    void mergeVisible();
    void flatten();
    void clearLayer();
    void selectAll();
    void deselect();
    void invertSelection();
    void setLayer(int64_t index, const QString& name, const std::function<void(Layer&)>& change);
    void toggleClipping();
    void toggleLock();
    void toggleAlphaLock();
    void toggleVisibility();
    void setActiveLayer(int64_t index);
    /// Live, while a slider moves: shown, and in no step before `commitOpacity` or whatever else comes next.
    void previewOpacity(int64_t index, double opacity);
    void commitOpacity(); ///< The one undo step of what was previewed; none where nothing was.
    void setOnion(const std::function<void(OnionSkin&)>& change);
    void toggleOnion();

    void fillSelection(const PaintColor& color);
    void cropToSelection();
    void rotateCanvas(int quarterTurns); ///< 1, 2 or 3, clockwise.
    void flipCanvasHorizontal();
    void flipCanvasVertical();
    void placeText(const TextSpec& spec, QPointF at); ///< Canvas point of the text's top left corner.

    // --- Pictures out and in (PaintModelClipboard.cpp)
    void copy(Merged merged); ///< Lifted pixels stay where they are and are not copied.
    void cut();
    void paste();
    /// As a new layer, never cut by the selection; centred where no place of the top left pixel is given.
    void pasteBuffer(const RGBABuffer& buffer, const QString& name, std::optional<QPoint> at);
    void importImageAsLayer();
    void importImage(const QString& path);
    bool drop(const QMimeData& offer); ///< False when nothing in it is of use; files are read after the call.

    // --- The pending transform (PaintModelTransform.cpp)
    const std::optional<TransformState>& transform() const { return transform_; }
    void beginTransform(); ///< Lifts the selected pixels, or the whole layer's, and takes the Move tool.
    void updateTransform(const std::function<void(TransformState&)>& change);
    void applyTransform();
    void cancelTransform();

    // --- Stored state (PaintModelStore.cpp)
    void saveState();      ///< Puts the choices into the store.
    void saveStateLater(); ///< Queued, so that it is done once for what changes together.

    Store& store() const { return store_; }
    CanvasStatus& status() { return status_; }
    void setCanvas(CanvasPort* canvas); ///< Borrowed until another one is set; null for none.
    bool penIsEraser = false;           ///< The eraser end of the pen is down or near.
    int messageTime = 2600;             ///< Milliseconds that a message stands.

Q_SIGNALS:
    void changed();
    void sheetRequested(PaintSheet sheet); ///< By a menu or a button, for the window to show.

private:
    bool copyPicture(Merged merged);
    std::optional<QPoint> placeOfCopy(const RGBABuffer& buffer) const;
    /// Makes steps of whatever is on the picture and in none yet, be it the gesture of a pen, a previewed opacity or
    /// floating pixels: no command runs in the middle of them.
    void finishGesture();
    void toggleActive(const QString& name, bool Layer::*flag);
    void loadState();
    void applyPrefs();
    void setToolBrush(Tool tool, const BrushSettings& brush);
    void saveUserBrushes();
    std::size_t addOwnPalette(Palette palette); ///< Made the current one; its index among the user's own.
    void savePalettes();
    bool isUntouchedStarter(const DocSession& session) const;
    void remove(DocSession& session);
    /// Unsaved work goes to the Trash. False where it cannot and the user would rather keep the picture open.
    bool leaveInTrash(DocSession& session);
    void showOnCanvas(DocSession& session);

    Desktop& desktop_;
    Store& store_;
    std::vector<SessionRef> sessions_;
    QUuid currentID_;
    Tool tool_ = Tool::brush;
    PaintColor primary_{0.7, 0.02, 0.08, 1};
    PaintColor secondary_ = PaintColor::white();
    std::vector<PaintColor> recent_;
    std::map<Tool, BrushSettings> toolBrush_;
    std::vector<BrushSettings> userBrushes_;
    UserBrushFile userBrushFile_;
    std::vector<Palette> userPalettes_;
    UserPaletteFile userPaletteFile_;
    QUuid paletteID_; // of the current palette
    ToolOptions options_;
    std::optional<TransformState> transform_;
    bool transformLockedAlpha_ = false; // the layer's alpha lock, set aside while its pixels float
    struct OpacityPreview {
        QUuid layer;
        double before;
    };
    std::optional<OpacityPreview> opacityPreview_; // of the current picture
    std::optional<IRect> lastCopyOrigin_;          // where the latest copy was taken, canvas pixels
    PaintPrefs prefs_;
    std::optional<QString> hud_;
    CanvasStatus status_;
    std::optional<QString> lastAutosaveText_;
    CanvasPort noCanvas_;
    CanvasPort* canvas_ = &noCanvas_;
    QTimer autosaveTimer_;
    QTimer hudTimer_;
    QTimer stateTimer_; // single shot, 0 ms: the queued saveState
};

} // namespace qirn
