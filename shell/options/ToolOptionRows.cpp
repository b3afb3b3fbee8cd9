#include "shell/options/ToolOptionRows.h"

#include "app/edits/CanvasEdits.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"
#include "shell/BrushValue.h"
#include "shell/options/BrushPresetMenu.h"

#include <cmath>
#include <type_traits>

#include <QCoreApplication>

namespace qirn::ToolOptionRows {

namespace {

using Slider = Row::Slider;
using Stepper = Row::Stepper;
using Toggle = Row::Toggle;
using Segments = Row::Segments;
using Picker = Row::Picker;
using Button = Row::Button;
using Note = Row::Note;
using Custom = Row::Custom;

QWidget* presetMenu(PaintModel& model, QWidget* parent) {
    return new BrushPresetMenu(model, parent);
}
QStringList shapes(const PaintModel&) {
    QStringList titles;
    for (const ShapeRow& shape : kShapes) titles << QCoreApplication::translate("ShapeKind", shape.title);
    return titles;
}

template <OptionGroup kGroup> bool has(const PaintModel& model) {
    return rowOf(model.tool()).options == kGroup;
}
/// Of the tools with a brush, those whose brush is of one of these kinds.
template <BrushKind... kKinds> bool brushOf(const PaintModel& model) {
    const ToolRow& row = rowOf(model.tool());
    return row.usesBrush() && ((row.brushKind == kKinds) || ...);
}
bool canLift(const PaintModel& model) {
    return has<OptionGroup::transform>(model) && !model.transform().isPending();
}
bool hasLifted(const PaintModel& model) {
    return model.transform().isPending();
}

template <double BrushSettings::*kField>
constexpr Slider brushSlider(const char* label, const SliderScale& scale, const NumberFormat& format,
                             const char* tip = nullptr) {
    return {label, scale, format, tip, BrushValue::get<kField>, BrushValue::set<kField>};
}

/// An option of a tool without a brush, by its field: as a number, a flag or the position of an enumerator.
template <auto kField> auto option(const PaintModel& model) {
    return model.options().*kField;
}
template <auto kField> double number(const PaintModel& model) {
    return model.options().*kField;
}
template <auto kField> int position(const PaintModel& model) {
    return static_cast<int>(model.options().*kField);
}
template <auto kField, class Value> void setOption(PaintModel& model, Value value) {
    ToolOptions options = model.options();
    options.*kField = static_cast<std::remove_reference_t<decltype(options.*kField)>>(value);
    model.setOptions(options);
}
template <auto kField> double fillNumber(const PaintModel& model) {
    return static_cast<double>(model.options().fill.*kField);
}
template <auto kField> int fillSteps(const PaintModel& model) {
    return static_cast<int>(model.options().fill.*kField);
}
template <auto kField> bool fillFlag(const PaintModel& model) {
    return model.options().fill.*kField;
}
template <auto kField, class Value> void setFill(PaintModel& model, Value value) {
    ToolOptions options = model.options();
    options.fill.*kField = static_cast<std::remove_reference_t<decltype(options.fill.*kField)>>(value);
    model.setOptions(options);
}

double transformScale(const PaintModel& model) {
    return model.transform().state() ? model.transform().state()->scaleX : 1;
}
void setTransformScale(PaintModel& model, double scale) {
    model.transform().updateTransform([=](TransformState& state) { state.scaleX = state.scaleY = scale; });
}
double transformAngle(const PaintModel& model) {
    return model.transform().state() ? std::remainder(model.transform().state()->angle, 360) : 0;
}
void setTransformAngle(PaintModel& model, double angle) {
    model.transform().updateTransform([=](TransformState& state) { state.angle = angle; });
}
template <bool TransformState::*kFlip> void toggleFlip(PaintModel& model) {
    model.transform().updateTransform([](TransformState& state) { state.*kFlip = !(state.*kFlip); });
}

bool pickFromAll(const PaintModel& model) {
    return model.prefs().eyedropperAllLayers;
}
void setPickFromAll(PaintModel& model, bool on) {
    PaintPrefs prefs = model.prefs();
    prefs.eyedropperAllLayers = on;
    model.setPrefs(prefs);
}

template <auto kSubject, auto kMethod> void call(PaintModel& model) {
    ((model.*kSubject)().*kMethod)();
}

#define TEXT(text) QT_TRANSLATE_NOOP("qirn::ToolOptionsBar", text)

constexpr Row kRows[] = {
    {has<OptionGroup::brush>, Custom{presetMenu}},
    {has<OptionGroup::brush>,
     brushSlider<&BrushSettings::size>(TEXT("Size"), {1, 400, 1, true}, NumberFormat::pixels(),
                                       TEXT("Brush size in pixels ( [ and ] keys)"))},
    {brushOf<BrushKind::paint, BrushKind::erase>,
     brushSlider<&BrushSettings::opacity>(TEXT("Opacity"), {0, 1, 0.01}, NumberFormat::percent())},
    {brushOf<BrushKind::paint, BrushKind::erase>,
     brushSlider<&BrushSettings::flow>(TEXT("Flow"), {0.01, 1, 0.01}, NumberFormat::percent())},
    {brushOf<BrushKind::smudge, BrushKind::blur>,
     brushSlider<&BrushSettings::strength>(TEXT("Strength"), {0, 1, 0.01}, NumberFormat::percent())},
    {has<OptionGroup::brush>,
     brushSlider<&BrushSettings::stabilizer>(TEXT("Stabilizer"), {0, 100, 1}, NumberFormat::plain(),
                                             TEXT("Smooths shaky lines"))},
    {brushOf<BrushKind::paint>, Note{TEXT("Tip: hold ⌥ Option with the brush to pick a color")}},
    {has<OptionGroup::fill>, Slider{TEXT("Tolerance"),
                                    {0, 255, 1},
                                    NumberFormat::plain(),
                                    TEXT("How different a color can be and still get filled"),
                                    fillNumber<&FillOptions::tolerance>,
                                    setFill<&FillOptions::tolerance>}},
    {has<OptionGroup::fill>,
     Toggle{TEXT("Contiguous"), TEXT("On: only the connected area. Off: every matching pixel."),
            fillFlag<&FillOptions::contiguous>, setFill<&FillOptions::contiguous>}},
    {has<OptionGroup::fill>,
     Toggle{TEXT("Sample all layers"),
            TEXT("Find edges in the finished picture (fill under line art on its own layer)"),
            fillFlag<&FillOptions::sampleAllLayers>, setFill<&FillOptions::sampleAllLayers>}},
    {has<OptionGroup::fill>, Stepper{TEXT("Grow"), TEXT("Grow %1 px"), 0, 4, 1,
                                     TEXT("Grows the fill under soft line edges so no white halo is left"),
                                     fillSteps<&FillOptions::expand>, setFill<&FillOptions::expand>}},
    {has<OptionGroup::gradient>, Segments{TEXT("Type"),
                                          {TEXT("Linear"), TEXT("Radial"), TEXT("Reflected"), nullptr},
                                          nullptr,
                                          position<&ToolOptions::gradientKind>,
                                          setOption<&ToolOptions::gradientKind>}},
    {has<OptionGroup::gradient>,
     Toggle{TEXT("Color → transparent"), TEXT("Off: paint color to second color"),
            option<&ToolOptions::gradientToTransparent>, setOption<&ToolOptions::gradientToTransparent>}},
    {has<OptionGroup::gradient>, Slider{TEXT("Opacity"),
                                        {0, 1, 0.01},
                                        NumberFormat::percent(),
                                        nullptr,
                                        number<&ToolOptions::gradientOpacity>,
                                        setOption<&ToolOptions::gradientOpacity>}},
    {has<OptionGroup::gradient>, Note{TEXT("Drag across the canvas")}},
    {has<OptionGroup::shape>, Picker{TEXT("Shape"), shapes, nullptr, position<&ToolOptions::shapeKind>,
                                     setOption<&ToolOptions::shapeKind>}},
    {has<OptionGroup::shape>,
     Toggle{TEXT("Fill"), nullptr, option<&ToolOptions::shapeFill>, setOption<&ToolOptions::shapeFill>}},
    {has<OptionGroup::shape>,
     Toggle{TEXT("Outline"), TEXT("Outline uses the second color when Fill is on"),
            option<&ToolOptions::shapeOutline>, setOption<&ToolOptions::shapeOutline>}},
    {has<OptionGroup::shape>, Slider{TEXT("Line width"),
                                     {1, 100, 1},
                                     NumberFormat::pixels(),
                                     nullptr,
                                     number<&ToolOptions::shapeLineWidth>,
                                     setOption<&ToolOptions::shapeLineWidth>}},
    {has<OptionGroup::shape>, Note{TEXT("Shift = square / circle / 45°")}},
    {canLift, Button{TEXT("Transform"), call<&PaintModel::transform, &PendingTransform::beginTransform>}},
    {hasLifted, Slider{TEXT("Scale"),
                       {0.01, 4, 0.01},
                       NumberFormat::percent(),
                       nullptr,
                       transformScale,
                       setTransformScale}},
    {hasLifted, Slider{TEXT("Rotate"),
                       {-180, 180, 1},
                       NumberFormat::degrees(),
                       nullptr,
                       transformAngle,
                       setTransformAngle}},
    {hasLifted, Button{TEXT("Flip ↔"), toggleFlip<&TransformState::flipH>}},
    {hasLifted, Button{TEXT("Flip ↕"), toggleFlip<&TransformState::flipV>}},
    {hasLifted,
     Button{TEXT("Apply (Return)"), call<&PaintModel::transform, &PendingTransform::applyTransform>}},
    {hasLifted,
     Button{TEXT("Cancel (Esc)"), call<&PaintModel::transform, &PendingTransform::cancelTransform>}},
    {hasLifted, Note{TEXT("Drag on the canvas to move the selection (or the whole layer)")}},
    {has<OptionGroup::text>,
     Note{TEXT("Click on the canvas where the text should go. Each text becomes its own layer.")}},
    {has<OptionGroup::picking>,
     Toggle{TEXT("Sample all layers"), TEXT("Off: pick from the current layer only"), pickFromAll,
            setPickFromAll}},
    {has<OptionGroup::selection>, Segments{TEXT("Selection mode"),
                                           {TEXT("New"), TEXT("Add"), TEXT("Subtract"), TEXT("Intersect")},
                                           TEXT("Or hold ⌘ to add, ⌥ to subtract, ⌘⌥ to intersect"),
                                           position<&ToolOptions::selectionMode>,
                                           setOption<&ToolOptions::selectionMode>}},
    {has<OptionGroup::selection>,
     Toggle{TEXT("Smooth edges"), nullptr, option<&ToolOptions::selectionAntialias>,
            setOption<&ToolOptions::selectionAntialias>}},
    {has<OptionGroup::selection>, Button{TEXT("All"), CanvasEdits::selectAll}},
    {has<OptionGroup::selection>, Button{TEXT("None"), CanvasEdits::deselect}},
    {has<OptionGroup::selection>, Button{TEXT("Invert"), CanvasEdits::invertSelection}},
};

#undef TEXT

} // namespace

std::span<const Row> all() {
    return kRows;
}

} // namespace qirn::ToolOptionRows
