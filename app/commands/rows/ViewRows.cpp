#include "app/commands/rows/MenuRows.h"

#include "app/canvas/CanvasView.h"
#include "app/commands/PaintCommands.h"
#include "app/model/OpenPictures.h"
#include "kit/QirnThemes.h"
#include "kit/QrZoom.h"

#include <cmath>

namespace qirn::MenuRows {

namespace {

QString panelsTitle(const PaintModel& model) {
    return model.panelsAreHidden() ? PaintCommands::tr("Show Panels") : PaintCommands::tr("Hide Panels");
}

void togglePerformance(PaintModel& model) {
    PaintPrefs prefs = model.prefs();
    prefs.showPerformance = !prefs.showPerformance;
    model.setPrefs(prefs);
}

template <InspectorTab kTab> constexpr CommandRow panelRow(const char* name, const char* title, int key) {
    return {.menu = "View",
            .name = name,
            .title = title,
            .key = Command | key,
            .run = [](PaintModel& model) { model.revealInspectorTab(kTab); },
            .checked = [](const PaintModel& model) { return model.inspectorTab() == kTab; }};
}

std::vector<CommandChoice> zoomLevels(PaintModel&) {
    std::vector<CommandChoice> choices;
    const int now = static_cast<int>(std::lround(QrZoom::value() * 100));
    for (const int level : QrZoom::levels)
        choices.push_back(
            {QrZoom::levelTitle(level), [level] { QrZoom::setValue(level / 100.0); }, level == now});
    return choices;
}

std::vector<CommandChoice> themes(PaintModel&) {
    std::vector<CommandChoice> choices;
    const QString now = QirnThemes::current().id;
    for (const QirnTheme& theme : QirnThemes::all())
        choices.push_back({theme.name, [id = theme.id] { QirnThemes::setCurrentID(id); }, theme.id == now});
    return choices;
}

const CommandRow kRows[] = {
    {"View", "zoomIn", QIRN_TITLE("Canvas: Zoom In  (= key)"), Command | Option | Qt::Key_Equal,
     [](CanvasView& view) { view.zoomStep(true); }},
    {"View", "zoomOut", QIRN_TITLE("Canvas: Zoom Out  (− key)"), Command | Option | Qt::Key_Minus,
     [](CanvasView& view) { view.zoomStep(false); }},
    {"View", "fit", QIRN_TITLE("Canvas: Fit in Window  (F)"), Command | Option | Qt::Key_0,
     [](CanvasView& view) { view.fit(); }},
    {"View", "actualPixels", QIRN_TITLE("Canvas: Actual Pixels 100%  (1)"), Command | Option | Qt::Key_1,
     [](CanvasView& view) { view.actualPixels(); }},
    {"View", nullptr},
    {"View", "rotateLeft", QIRN_TITLE("Canvas: Rotate Left 15°  (,)"), 0,
     [](CanvasView& view) { view.rotateView(-15); }},
    {"View", "rotateRight", QIRN_TITLE("Canvas: Rotate Right 15°  (.)"), 0,
     [](CanvasView& view) { view.rotateView(15); }},
    {"View", "resetRotation", QIRN_TITLE("Canvas: Reset Rotation  (/)"), 0,
     [](CanvasView& view) { view.setRotation(0); }},
    {"View", "flipView", QIRN_TITLE("Canvas: Flip View (mirror check)  (W)"), 0,
     [](CanvasView& view) { view.toggleFlipView(); }},
    {"View", nullptr},
    {.menu = "View",
     .name = "interfaceZoomIn",
     .title = QIRN_TITLE("Zoom In"),
     .key = Command | Qt::Key_Plus,
     .run = [](PaintModel&) { QrZoom::setValue(QrZoom::value() + QrZoom::step); },
     .secondKeys = {Command | Qt::Key_Equal},
     .overSheets = true},
    {.menu = "View",
     .name = "interfaceZoomOut",
     .title = QIRN_TITLE("Zoom Out"),
     .key = Command | Qt::Key_Minus,
     .run = [](PaintModel&) { QrZoom::setValue(QrZoom::value() - QrZoom::step); },
     .overSheets = true},
    {.menu = "View",
     .name = "interfaceActualSize",
     .title = QIRN_TITLE("Actual Size (100%)"),
     .key = Command | Qt::Key_0,
     .run = [](PaintModel&) { QrZoom::setValue(1); },
     .overSheets = true},
    {.menu = "View",
     .name = "zoomLevel",
     .title = QIRN_TITLE("Zoom Level"),
     .choices = zoomLevels,
     .overSheets = true},
    {"View", nullptr},
    {"View", "showPerformance", QIRN_TITLE("Show Stroke Performance"), 0, togglePerformance, nullptr,
     [](const PaintModel& model) { return model.prefs().showPerformance; }},
    {"View", nullptr},
    {.menu = "View",
     .name = "nextPicture",
     .title = QIRN_TITLE("Next Picture"),
     .run = [](PaintModel& model) { model.pictures().selectNeighbor(1); },
     .secondKeys = {Command | Qt::Key_Tab, Command | Qt::Key_PageDown}},
    {.menu = "View",
     .name = "previousPicture",
     .title = QIRN_TITLE("Previous Picture"),
     .run = [](PaintModel& model) { model.pictures().selectNeighbor(-1); },
     .secondKeys = {Command | Shift | Qt::Key_Tab, Command | Qt::Key_PageUp}},
    {"View", nullptr},
    {"View", "fullScreen", QIRN_TITLE("Full Screen"), Qt::Key_F11,
     [](QWidget& window) { window.setWindowState(window.windowState() ^ Qt::WindowFullScreen); }},
    {"View", "hidePanels", QIRN_TITLE("Hide Panels"), 0, call<&PaintModel::togglePanels>, panelsTitle},
    {"View", nullptr},
    panelRow<InspectorTab::color>("colorPanel", QIRN_TITLE("Color Panel"), Qt::Key_1),
    panelRow<InspectorTab::brush>("brushPanel", QIRN_TITLE("Brush Panel"), Qt::Key_2),
    panelRow<InspectorTab::palettes>("palettesPanel", QIRN_TITLE("Palettes Panel"), Qt::Key_3),

    {.menu = "Theme", .name = "theme", .choices = themes, .overSheets = true},
};

} // namespace

std::span<const CommandRow> view() {
    return kRows;
}

} // namespace qirn::MenuRows
