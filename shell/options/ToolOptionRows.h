#pragma once
#include <span>
#include <variant>

#include <QString>

#include "app/model/Tool.h"
#include "kit/controls/SliderFormat.h"

namespace qirn {

class PaintModel;

/// What a tool's options are: a table that the options bar walks. Texts are English sources of the context
/// "qirn::ToolOptionsBar"; tips may name keys as the tables do (⌘).
namespace ToolOptionRows {

enum class Show { number, percent, pixels, degrees };
SliderFormat formatOf(Show show);

struct PresetMenu {};
struct Slider {
    const char* label;
    SliderScale scale;
    Show show;
    const char* tip;
    double (*get)(const PaintModel&);
    void (*set)(PaintModel&, double);
};
struct Segments {
    const char* label;                 ///< Only read out.
    std::array<const char*, 4> titles; ///< The last ones may be null.
    const char* tip;
    int (*get)(const PaintModel&);
    void (*set)(PaintModel&, int);
};
/// A menu of the shapes.
struct ShapeMenu {};
struct Toggle {
    const char* label;
    const char* tip;
    bool (*get)(const PaintModel&);
    void (*set)(PaintModel&, bool);
};
struct Button {
    const char* label;
    void (*run)(PaintModel&);
};
struct Note {
    const char* text;
};

struct Row {
    bool (*shows)(const PaintModel&); ///< When it is there.
    std::variant<PresetMenu, Slider, Segments, ShapeMenu, Toggle, Button, Note> control;
};

std::span<const Row> all(); ///< In the order in which they stand in the bar.

} // namespace ToolOptionRows

} // namespace qirn
