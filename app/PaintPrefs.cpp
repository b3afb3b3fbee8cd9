#include "PaintPrefs.h"

#include "Defaults.h"
#include "platform/Json.h"

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

PaintPrefs PaintPrefs::load(const Defaults& defaults) {
    const std::optional<Json> record = defaults.json(QLatin1String(key));
    if (!record) return {};
    try {
        PaintPrefs prefs;
        forEachField(prefs, FieldReader{*record});
        return prefs;
    } catch (const JsonTypeError&) {
        return {};
    }
}

void PaintPrefs::save(Defaults& defaults) const {
    OrderedJson record;
    forEachField(*this, [&](const char* name, const auto& field) { record[name] = field; });
    defaults.setJson(QLatin1String(key), record);
}

} // namespace qirn
