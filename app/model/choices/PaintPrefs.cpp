#include "app/model/choices/PaintPrefs.h"

#include "app/desktop/Store.h"

#include <algorithm>

namespace qirn {

namespace {

/// The record's keys are the names of its fields.
template <class Prefs, class Visit> void forEachField(Prefs& prefs, Visit visit) {
    visit("autosaveSeconds", prefs.autosaveSeconds);
    visit("undoSteps", prefs.undoSteps);
    visit("pressureCurve", prefs.pressureCurve);
    visit("mouseSpeedPressure", prefs.mouseSpeedPressure);
    visit("tabletEraserSwitches", prefs.tabletEraserSwitches);
    visit("showBrushOutline", prefs.showBrushOutline);
    visit("showPerformance", prefs.showPerformance);
    visit("newDocTransparent", prefs.newDocTransparent);
    visit("eyedropperAllLayers", prefs.eyedropperAllLayers);
    visit("checkerSize", prefs.checkerSize);
}

struct FieldReader {
    const Json& record;
    void operator()(const char* name, double& field) const { field = jsonNumber(jsonMember(record, name)); }
    void operator()(const char* name, int64_t& field) const { field = jsonWhole(jsonMember(record, name)); }
    void operator()(const char* name, bool& field) const { field = jsonFlag(jsonMember(record, name)); }
};

} // namespace

PaintPrefs PaintPrefs::load(const Store& store) {
    const Json* record = store.json(QLatin1String(key));
    if (!record) return {};
    try {
        PaintPrefs prefs;
        forEachField(prefs, FieldReader{*record});
        if (prefs.autosaveSeconds != 0)
            prefs.autosaveSeconds = std::clamp(prefs.autosaveSeconds, 30.0, 600.0);
        prefs.undoSteps = std::clamp<int64_t>(prefs.undoSteps, 20, 500);
        prefs.pressureCurve = std::clamp(prefs.pressureCurve, 0.4, 2.5);
        prefs.checkerSize = std::clamp(prefs.checkerSize, 4.0, 40.0);
        return prefs;
    } catch (const JsonTypeError&) {
        return {};
    }
}

void PaintPrefs::save(Store& store) const {
    OrderedJson record;
    forEachField(*this, [&](const char* name, const auto& field) { record[name] = field; });
    store.set(QLatin1String(key), record);
}

} // namespace qirn
