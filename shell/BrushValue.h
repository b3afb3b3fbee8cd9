#pragma once
#include "app/model/Brushes.h"
#include "app/model/PaintModel.h"

/// One setting of the active brush, for tables of controls: `get<&BrushSettings::flow>`.
namespace qirn::BrushValue {

template <auto kField> auto get(const PaintModel& model) {
    return model.brushes().activeBrush().*kField;
}

template <auto kField, class Value> void set(PaintModel& model, Value value) {
    BrushSettings brush = model.brushes().activeBrush();
    brush.*kField = value;
    model.brushes().setActiveBrush(brush);
}

} // namespace qirn::BrushValue
