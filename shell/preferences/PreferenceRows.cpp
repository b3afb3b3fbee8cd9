#include "shell/preferences/PreferenceRows.h"

#include "shell/preferences/PreferencesView.h"
#include "shell/preferences/pen/PenTester.h"

#include <algorithm>
#include <cmath>

namespace qirn::PreferenceRows {

namespace {

using Slider = Row::Slider;
using Stepper = Row::Stepper;
using Toggle = Row::Toggle;
using Picker = Row::Picker;
using Custom = Row::Custom;

template <class Value> void setField(PaintModel& model, Value PaintPrefs::*field, Value value) {
    PaintPrefs prefs = model.prefs();
    prefs.*field = value;
    model.setPrefs(prefs);
}

template <double PaintPrefs::*kField>
constexpr Slider slider(const char* label, const SliderScale& scale, const NumberFormat& format,
                        const char* tip) {
    return {label,
            scale,
            format,
            tip,
            [](const PaintModel& model) { return model.prefs().*kField; },
            [](PaintModel& model, double value) { setField(model, kField, value); }};
}

template <bool PaintPrefs::*kField> constexpr Toggle toggle(const char* label) {
    return {label, nullptr, [](const PaintModel& model) { return model.prefs().*kField; },
            [](PaintModel& model, bool on) { setField(model, kField, on); }};
}

QStringList autosaveTexts(const PaintModel& model) {
    QStringList texts;
    for (const double seconds : autosaveChoices(model.prefs().autosaveSeconds))
        texts << autosaveText(seconds);
    return texts;
}
int autosaveChoice(const PaintModel& model) {
    const std::vector<double> choices = autosaveChoices(model.prefs().autosaveSeconds);
    return static_cast<int>(std::find(choices.begin(), choices.end(), model.prefs().autosaveSeconds) -
                            choices.begin());
}
void setAutosaveChoice(PaintModel& model, int choice) {
    const std::vector<double> choices = autosaveChoices(model.prefs().autosaveSeconds);
    setField(model, &PaintPrefs::autosaveSeconds, choices.at(static_cast<std::size_t>(choice)));
}

int undoSteps(const PaintModel& model) {
    return static_cast<int>(model.prefs().undoSteps);
}
void setUndoSteps(PaintModel& model, int steps) {
    setField<int64_t>(model, &PaintPrefs::undoSteps, steps);
}

QString touch(double curve) {
    if (curve < 0.85) return PreferencesView::tr("Soft");
    return curve > 1.2 ? PreferencesView::tr("Firm") : PreferencesView::tr("Normal");
}

QWidget* penTester(PaintModel& model, QWidget* parent) {
    return new PenTester(model, parent);
}

#define TEXT(text) QT_TRANSLATE_NOOP("qirn::PreferencesView", text)

constexpr Row kSaving[] = {
    {nullptr, Picker{TEXT("Autosave"), autosaveTexts,
                     TEXT("How often pictures with unsaved work are copied to safety"), autosaveChoice,
                     setAutosaveChoice}},
    {nullptr, Stepper{TEXT("Undo steps"), TEXT("Undo steps: %1"), 20, 500, 10,
                      TEXT("How many steps of each picture can be undone"), undoSteps, setUndoSteps}},
};

constexpr Row kPen[] = {
    {nullptr, slider<&PaintPrefs::pressureCurve>(
                  TEXT("Pressure"), {0.4, 2.5, 0.05}, {.decimals = 2, .words = touch},
                  TEXT("Soft: a light touch gives thick lines. Firm: you must press harder."))},
    {nullptr,
     toggle<&PaintPrefs::mouseSpeedPressure>(TEXT("Mouse: simulate pressure from speed (fast = thin)"))},
    {nullptr, toggle<&PaintPrefs::tabletEraserSwitches>(TEXT("Pen's eraser end switches to the Eraser"))},
    {nullptr, Custom{penTester}},
};

constexpr Row kCanvas[] = {
    {nullptr, toggle<&PaintPrefs::showBrushOutline>(TEXT("Show the brush outline"))},
    {nullptr, toggle<&PaintPrefs::showPerformance>(TEXT("Show stroke performance in the status bar"))},
    {nullptr, toggle<&PaintPrefs::newDocTransparent>(TEXT("New canvases start transparent"))},
    {nullptr, toggle<&PaintPrefs::eyedropperAllLayers>(TEXT("Eyedropper samples all layers"))},
    {nullptr, slider<&PaintPrefs::checkerSize>(TEXT("Checkerboard"), {4, 40, 1}, NumberFormat::pixels(),
                                               TEXT("Size of the squares shown behind transparent areas"))},
};

#undef TEXT

} // namespace

std::span<const Row> saving() {
    return kSaving;
}

std::span<const Row> pen() {
    return kPen;
}

std::span<const Row> canvas() {
    return kCanvas;
}

std::vector<double> autosaveChoices(double stored) {
    std::vector<double> choices{30, 60, 120, 180, 300, 600, 0};
    if (std::find(choices.begin(), choices.end(), stored) == choices.end())
        choices.insert(std::upper_bound(choices.begin(), choices.end() - 1, stored), stored);
    return choices;
}

QString autosaveText(double seconds) {
    if (seconds == 0) return PreferencesView::tr("Off (not recommended)");
    if (seconds == 60) return PreferencesView::tr("Every minute");
    const auto whole = static_cast<int>(std::lround(seconds));
    if (std::fmod(seconds, 60) == 0) return PreferencesView::tr("Every %Ln minutes", nullptr, whole / 60);
    return PreferencesView::tr("Every %Ln seconds", nullptr, whole);
}

} // namespace qirn::PreferenceRows
