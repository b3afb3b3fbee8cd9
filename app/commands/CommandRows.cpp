#include "app/commands/CommandRows.h"

#include "app/canvas/CanvasView.h"
#include "app/commands/PaintCommands.h"
#include "app/desktop/keys/TypedKeys.h"
#include "app/edits/CanvasEdits.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Brushes.h"
#include "app/model/Clipboard.h"
#include "app/model/Colors.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/Palettes.h"
#include "app/model/PendingTransform.h"
#include "app/model/PictureFiles.h"
#include "platform/Require.h"

#include <algorithm>

#include <QFileInfo>
#include <QKeyEvent>

namespace qirn {

namespace {

constexpr int Command = Qt::CTRL, Shift = Qt::SHIFT, Option = Qt::ALT, Control = Qt::META;

QString undoTitle(const PaintModel& model) {
    const auto name = model.current() ? model.current()->doc().undoName() : std::nullopt;
    return name ? PaintCommands::tr("Undo %1").arg(*name) : PaintCommands::tr("Undo");
}

QString redoTitle(const PaintModel& model) {
    const auto name = model.current() ? model.current()->doc().redoName() : std::nullopt;
    return name ? PaintCommands::tr("Redo %1").arg(*name) : PaintCommands::tr("Redo");
}

QString onionTitle(const PaintModel& model) {
    const bool on = model.current() && model.current()->doc().onion.enabled;
    return on ? PaintCommands::tr("Turn Onion Skin Off") : PaintCommands::tr("Turn Onion Skin On");
}

QString panelsTitle(const PaintModel& model) {
    return model.panelsAreHidden() ? PaintCommands::tr("Show Panels") : PaintCommands::tr("Hide Panels");
}

bool transformPending(const PaintModel& model) {
    return model.transform().isPending();
}

void togglePerformance(PaintModel& model) {
    PaintPrefs prefs = model.prefs();
    prefs.showPerformance = !prefs.showPerformance;
    model.setPrefs(prefs);
}

template <auto kMethod> void call(PaintModel& model) {
    (model.*kMethod)();
}

template <auto kSubject, auto kMethod> void call(PaintModel& model) {
    ((model.*kSubject)().*kMethod)();
}

template <PaintSheet::Kind kKind> void sheet(PaintModel& model) {
    model.showSheet({kKind});
}

std::vector<CommandChoice> recentPictures(PaintModel& model) {
    std::vector<CommandChoice> choices;
    for (const QString& path : model.files().recentFiles()) {
        choices.push_back({QFileInfo(path).fileName(), [&model, path] { model.files().open(path); }});
    }
    if (!choices.empty()) choices.push_back({});
    choices.push_back({PaintCommands::tr("Clear"), [&model] { model.files().forgetRecentFiles(); }});
    return choices;
}

void save(PaintModel& model) {
    model.files().save(nullptr, PictureFiles::SaveAs::no);
}
void saveAs(PaintModel& model) {
    model.files().save(nullptr, PictureFiles::SaveAs::yes);
}

#define TEXT(text) QT_TRANSLATE_NOOP("qirn::PaintCommands", text)

const CommandRow kCommands[] = {
    {"File", "newCanvas", TEXT("New Canvas…"), Command | Qt::Key_N, sheet<PaintSheet::Kind::newDocument>},
    {"File", "open", TEXT("Open…"), Command | Qt::Key_O, call<&PaintModel::files, &PictureFiles::openPanel>},
    {.menu = "File", .name = "openRecent", .title = TEXT("Open Recent"), .choices = recentPictures},
    {"File", "importLayer", TEXT("Import Picture as Layer…"), Command | Shift | Qt::Key_I,
     call<&PaintModel::clipboard, &Clipboard::importImageAsLayer>},
    {"File", "recover", TEXT("Recover Autosaved Work…"), 0, sheet<PaintSheet::Kind::recovery>},
    {"File", nullptr},
    {"File", "closePicture", TEXT("Close Picture"), Command | Qt::Key_W,
     call<&PaintModel::pictures, &OpenPictures::closeCurrent>},
    {"File", "save", TEXT("Save"), Command | Qt::Key_S, save},
    {"File", "saveAs", TEXT("Save As…"), Command | Shift | Qt::Key_S, saveAs},
    {"File", "export", TEXT("Export (PNG, JPEG, TIFF, PSD)…"), Command | Qt::Key_E,
     sheet<PaintSheet::Kind::exportPicture>},
    {"File", nullptr},
    {"File", "importBrushes", TEXT("Import Brushes…"), 0,
     call<&PaintModel::brushes, &Brushes::importBrushes>},
    {"File", "exportBrushes", TEXT("Export Brushes…"), 0,
     call<&PaintModel::brushes, &Brushes::exportBrushes>},
    {"File", "importPalette", TEXT("Import Palettes…"), 0,
     call<&PaintModel::palettes, &Palettes::importPalette>},
    {"File", "exportGpl", TEXT("Export Palette as .gpl…"), 0,
     [](PaintModel& model) { model.palettes().exportPalette(Palettes::PaletteFile::gpl); }},
    {"File", "exportAco", TEXT("Export Palette as .aco…"), 0,
     [](PaintModel& model) { model.palettes().exportPalette(Palettes::PaletteFile::aco); }},
    {"File", nullptr},
    {.menu = "File",
     .name = "quit",
     .title = TEXT("Quit"),
     .key = Command | Qt::Key_Q,
     .run = [](QWidget& window) { window.close(); },
     .isForLeaving = true},

    {.menu = "Edit",
     .name = "undo",
     .key = Command | Qt::Key_Z,
     .run = call<&PaintModel::undo>,
     .liveTitle = undoTitle,
     .inText = Typing::TextAction::undo},
    {.menu = "Edit",
     .name = "redo",
     .key = Command | Shift | Qt::Key_Z,
     .run = call<&PaintModel::redo>,
     .liveTitle = redoTitle,
     .secondKeys = {Command | Qt::Key_Y},
     .inText = Typing::TextAction::redo},
    {"Edit", nullptr},
    {.menu = "Edit",
     .name = "cut",
     .title = TEXT("Cut"),
     .key = Command | Qt::Key_X,
     .run = call<&PaintModel::clipboard, &Clipboard::cut>,
     .inText = Typing::TextAction::cut},
    {.menu = "Edit",
     .name = "copy",
     .title = TEXT("Copy"),
     .key = Command | Qt::Key_C,
     .run = [](PaintModel& model) { model.clipboard().copy(Merged::no); },
     .inText = Typing::TextAction::copy},
    {"Edit", "copyMerged", TEXT("Copy Merged"), Command | Shift | Qt::Key_C,
     [](PaintModel& model) { model.clipboard().copy(Merged::yes); }},
    {.menu = "Edit",
     .name = "paste",
     .title = TEXT("Paste as New Layer"),
     .key = Command | Qt::Key_V,
     .run = call<&PaintModel::clipboard, &Clipboard::paste>,
     .inText = Typing::TextAction::paste},
    {"Edit", nullptr},
    {"Edit", "fillPrimary", TEXT("Fill with Paint Color"), Option | Qt::Key_Backspace,
     [](PaintModel& model) { CanvasEdits::fillSelection(model, model.colors().primary()); }},
    {"Edit", "fillSecondary", TEXT("Fill with Second Color"), Command | Qt::Key_Backspace,
     [](PaintModel& model) { CanvasEdits::fillSelection(model, model.colors().secondary()); }},
    {"Edit", "clear", TEXT("Clear (Delete Pixels)"), 0, LayerEdits::clearLayer},
    {"Edit", nullptr},
    {"Edit", "freeTransform", TEXT("Free Transform"), Command | Qt::Key_T,
     call<&PaintModel::transform, &PendingTransform::beginTransform>},
    {"Edit", "applyTransform", TEXT("Apply Transform"), 0,
     call<&PaintModel::transform, &PendingTransform::applyTransform>, nullptr, nullptr, transformPending},
    {"Edit", "cancelTransform", TEXT("Cancel Transform"), 0,
     call<&PaintModel::transform, &PendingTransform::cancelTransform>, nullptr, nullptr, transformPending},

    {.menu = "Select",
     .name = "selectAll",
     .title = TEXT("Select All"),
     .key = Command | Qt::Key_A,
     .run = CanvasEdits::selectAll,
     .inText = Typing::TextAction::selectAll},
    {"Select", "deselect", TEXT("Deselect"), Command | Qt::Key_D, CanvasEdits::deselect},
    {"Select", "invertSelection", TEXT("Invert Selection"), Command | Option | Qt::Key_I,
     CanvasEdits::invertSelection},
    {"Select", nullptr},
    {"Select", "selectRect", TEXT("Rectangle Select (M)"), 0,
     [](PaintModel& model) { model.setTool(Tool::selectRect); }},
    {"Select", "selectEllipse", TEXT("Ellipse Select (O)"), 0,
     [](PaintModel& model) { model.setTool(Tool::selectEllipse); }},
    {"Select", "lasso", TEXT("Lasso Select (L)"), 0, [](PaintModel& model) { model.setTool(Tool::lasso); }},
    {"Select", "crop", TEXT("Crop to Selection"), 0, CanvasEdits::cropToSelection},

    {"Image", "imageSize", TEXT("Image Size…"), Command | Control | Qt::Key_I,
     sheet<PaintSheet::Kind::imageSize>},
    {"Image", "canvasSize", TEXT("Canvas Size…"), Command | Control | Qt::Key_C,
     sheet<PaintSheet::Kind::canvasSize>},
    {"Image", nullptr},
    {"Image", "rotateClockwise", TEXT("Rotate 90° Clockwise"), 0,
     [](PaintModel& model) { CanvasEdits::rotateCanvas(model, 1); }},
    {"Image", "rotateCounterClockwise", TEXT("Rotate 90° Counter-clockwise"), 0,
     [](PaintModel& model) { CanvasEdits::rotateCanvas(model, 3); }},
    {"Image", "rotateHalf", TEXT("Rotate 180°"), 0,
     [](PaintModel& model) { CanvasEdits::rotateCanvas(model, 2); }},
    {"Image", "flipHorizontal", TEXT("Flip Canvas Horizontal"), 0, CanvasEdits::flipCanvasHorizontal},
    {"Image", "flipVertical", TEXT("Flip Canvas Vertical"), 0, CanvasEdits::flipCanvasVertical},
    {"Image", nullptr},
    {"Image", "flatten", TEXT("Flatten Image"), 0, LayerEdits::flatten},

    {"Layer", "newLayer", TEXT("New Layer"), Command | Shift | Qt::Key_N, LayerEdits::addLayer},
    {"Layer", "duplicateLayer", TEXT("Duplicate Layer"), Command | Qt::Key_J, LayerEdits::duplicateLayer},
    {"Layer", "deleteLayer", TEXT("Delete Layer"), 0, LayerEdits::deleteLayer},
    {"Layer", nullptr},
    {.menu = "Layer",
     .name = "moveLayerUp",
     .title = TEXT("Move Layer Up"),
     .key = Command | Qt::Key_BracketRight,
     .run = LayerEdits::moveLayerUp,
     .secondKeys = {Command | Shift | Qt::Key_PageUp}},
    {.menu = "Layer",
     .name = "moveLayerDown",
     .title = TEXT("Move Layer Down"),
     .key = Command | Qt::Key_BracketLeft,
     .run = LayerEdits::moveLayerDown,
     .secondKeys = {Command | Shift | Qt::Key_PageDown}},
    {"Layer", "mergeDown", TEXT("Merge Down"), Command | Option | Qt::Key_E, LayerEdits::mergeDown},
    {"Layer", "mergeVisible", TEXT("Merge Visible"), Command | Shift | Qt::Key_E, LayerEdits::mergeVisible},
    {"Layer", nullptr},
    {"Layer", "clip", TEXT("Clip to Layer Below"), Command | Option | Qt::Key_G, LayerEdits::toggleClipping},
    {"Layer", "lock", TEXT("Lock / Unlock Layer"), 0, LayerEdits::toggleLock},
    {"Layer", "alphaLock", TEXT("Alpha Lock On / Off"), 0, LayerEdits::toggleAlphaLock},
    {"Layer", "showHide", TEXT("Show / Hide Layer"), 0, LayerEdits::toggleVisibility},
    {"Layer", nullptr},
    {"Layer", "onionSkin", nullptr, Command | Option | Qt::Key_K, LayerEdits::toggleOnion, onionTitle},

    {"View", "zoomIn", TEXT("Canvas: Zoom In  (= key)"), Command | Option | Qt::Key_Equal,
     [](CanvasView& view) { view.zoomStep(true); }},
    {"View", "zoomOut", TEXT("Canvas: Zoom Out  (− key)"), Command | Option | Qt::Key_Minus,
     [](CanvasView& view) { view.zoomStep(false); }},
    {"View", "fit", TEXT("Canvas: Fit in Window  (F)"), Command | Option | Qt::Key_0,
     [](CanvasView& view) { view.fit(); }},
    {"View", "actualPixels", TEXT("Canvas: Actual Pixels 100%  (1)"), Command | Option | Qt::Key_1,
     [](CanvasView& view) { view.actualPixels(); }},
    {"View", nullptr},
    {"View", "rotateLeft", TEXT("Canvas: Rotate Left 15°  (,)"), 0,
     [](CanvasView& view) { view.rotateView(-15); }},
    {"View", "rotateRight", TEXT("Canvas: Rotate Right 15°  (.)"), 0,
     [](CanvasView& view) { view.rotateView(15); }},
    {"View", "resetRotation", TEXT("Canvas: Reset Rotation  (/)"), 0,
     [](CanvasView& view) { view.setRotation(0); }},
    {"View", "flipView", TEXT("Canvas: Flip View (mirror check)  (W)"), 0,
     [](CanvasView& view) { view.toggleFlipView(); }},
    {"View", nullptr},
    {"View", "showPerformance", TEXT("Show Stroke Performance"), 0, togglePerformance, nullptr,
     [](const PaintModel& model) { return model.prefs().showPerformance; }},
    {"View", nullptr},
    {.menu = "View",
     .name = "nextPicture",
     .title = TEXT("Next Picture"),
     .run = [](PaintModel& model) { model.pictures().selectNeighbor(1); },
     .secondKeys = {Command | Qt::Key_Tab, Command | Qt::Key_PageDown}},
    {.menu = "View",
     .name = "previousPicture",
     .title = TEXT("Previous Picture"),
     .run = [](PaintModel& model) { model.pictures().selectNeighbor(-1); },
     .secondKeys = {Command | Shift | Qt::Key_Tab, Command | Qt::Key_PageUp}},
    {"View", nullptr},
    {"View", "fullScreen", TEXT("Full Screen"), Qt::Key_F11,
     [](QWidget& window) { window.setWindowState(window.windowState() ^ Qt::WindowFullScreen); }},
    {"View", "hidePanels", nullptr, 0, call<&PaintModel::togglePanels>, panelsTitle},
};

#undef TEXT

} // namespace

std::span<const CommandRow> commandRows() {
    return kCommands;
}

const CommandRow& commandNamed(const char* name) {
    const auto rows = commandRows();
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const CommandRow& row) { return qstrcmp(row.name, name) == 0; });
    require(found != rows.end());
    return *found;
}

const CommandRow* commandAtPlaceOf(const QKeyEvent& event) {
    constexpr auto kCommandKeys = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if (!(event.modifiers() & kCommandKeys) || typesASCII(event)) return nullptr;
    const auto character = characterOf(event);
    if (!character) return nullptr;
    const int key =
        static_cast<int>(event.modifiers()) | character->toUpper().unicode(); // Qt's keys of ASCII
    const auto rows = commandRows();
    const auto found = std::find_if(rows.begin(), rows.end(), [key](const CommandRow& row) {
        const std::vector<int> keys = keysOf(row);
        return std::find(keys.begin(), keys.end(), key) != keys.end();
    });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace qirn
