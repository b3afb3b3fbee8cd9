#include "ToolOptionRows.h"

#include <QCoreApplication>

#include "PaintModel.h"

namespace qirn::ToolOptionRows {

namespace {

constexpr bool isBrushTool(Tool tool) {
    return rowOf(tool).usesBrush;
}
constexpr bool isSelectTool(Tool tool) {
    return tool == Tool::selectRect || tool == Tool::selectEllipse || tool == Tool::lasso;
}
constexpr bool laysPaint(Tool tool) {
    return tool == Tool::brush || tool == Tool::eraser;
}
constexpr bool movesPaint(Tool tool) {
    return tool == Tool::smudge || tool == Tool::blur;
}
template <Tool kTool> constexpr bool is(Tool tool) {
    return tool == kTool;
}

template <double BrushSettings::*kField> double brushValue(const PaintModel& model) {
    return model.activeBrush().*kField;
}
template <double BrushSettings::*kField> void setBrushValue(PaintModel& model, double value) {
    BrushSettings brush = model.activeBrush();
    brush.*kField = value;
    model.setActiveBrush(brush);
}

template <double BrushSettings::*kField>
constexpr Slider brushSlider(const char* label, const SliderScale& scale, Show show,
                             const char* tip = nullptr) {
    return {label, scale, show, tip, brushValue<kField>, setBrushValue<kField>};
}

int selectionMode(const PaintModel& model) {
    return static_cast<int>(model.selectionMode());
}
void setSelectionMode(PaintModel& model, int mode) {
    model.setSelectionMode(static_cast<SelectionOp>(mode));
}
bool smoothEdges(const PaintModel& model) {
    return model.selectionAntialias();
}
void setSmoothEdges(PaintModel& model, bool on) {
    model.setSelectionAntialias(on);
}
bool pickFromAll(const PaintModel& model) {
    return model.prefs().eyedropperAllLayers;
}
void setPickFromAll(PaintModel& model, bool on) {
    PaintPrefs prefs = model.prefs();
    prefs.eyedropperAllLayers = on;
    model.setPrefs(prefs);
}

template <void (PaintModel::*kCommand)()> void call(PaintModel& model) {
    (model.*kCommand)();
}

#define TEXT(text) QT_TRANSLATE_NOOP("qirn::ToolOptionsBar", text)

constexpr Row kRows[] = {
    {isBrushTool, PresetMenu{}},
    {isBrushTool, brushSlider<&BrushSettings::size>(TEXT("Size"), {1, 400, 1, true}, Show::pixels,
                                                    TEXT("Brush size in pixels ( [ and ] keys)"))},
    {laysPaint, brushSlider<&BrushSettings::opacity>(TEXT("Opacity"), {0, 1, 0.01}, Show::percent)},
    {laysPaint, brushSlider<&BrushSettings::flow>(TEXT("Flow"), {0.01, 1, 0.01}, Show::percent)},
    {movesPaint, brushSlider<&BrushSettings::strength>(TEXT("Strength"), {0, 1, 0.01}, Show::percent)},
    {isBrushTool, brushSlider<&BrushSettings::stabilizer>(TEXT("Stabilizer"), {0, 100, 1}, Show::number,
                                                          TEXT("Smooths shaky lines"))},
    {is<Tool::brush>, Note{TEXT("Tip: hold ⌥ Option with the brush to pick a color")}},
    {is<Tool::eyedropper>, Toggle{TEXT("Sample all layers"), TEXT("Off: pick from the current layer only"),
                                  pickFromAll, setPickFromAll}},
    {isSelectTool, Segments{TEXT("Selection mode"),
                            {TEXT("New"), TEXT("Add"), TEXT("Subtract"), TEXT("Intersect")},
                            TEXT("Or hold ⌘ to add, ⌥ to subtract, ⌘⌥ to intersect"),
                            selectionMode,
                            setSelectionMode}},
    {isSelectTool, Toggle{TEXT("Smooth edges"), nullptr, smoothEdges, setSmoothEdges}},
    {isSelectTool, Button{TEXT("All"), call<&PaintModel::selectAll>}},
    {isSelectTool, Button{TEXT("None"), call<&PaintModel::deselect>}},
    {isSelectTool, Button{TEXT("Invert"), call<&PaintModel::invertSelection>}},
};

#undef TEXT

} // namespace

SliderFormat formatOf(Show show) {
    switch (show) {
    case Show::percent:
        return SliderFormat::percent();
    case Show::pixels:
        return SliderFormat::pixels();
    case Show::degrees:
        return SliderFormat::degrees();
    case Show::number:
        break;
    }
    return SliderFormat::plain();
}

std::span<const Row> all() {
    return kRows;
}

} // namespace qirn::ToolOptionRows
