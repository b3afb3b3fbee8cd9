#pragma once
#include <QtGlobal>

/// The pages of the manual, a file each: English source texts.
namespace qirn::PaintHelp {

/// One page as it is written. In the body lines are broken where the source needs it: an empty line, a heading ("## ") or
/// a bullet ("• ") begins a new paragraph. The name of a command or a tool in braces stands for its key of the moment,
/// and keys are written as the tables have them (⌘, ⌥, ⇧). «id» is a link.
struct TopicText {
    const char* id;
    const char* title;
    const char* keywords; ///< Between commas.
    const char* body;
};

extern const TopicText kStart, kWorkspace, kNew, kNavigate, kBrush, kBrushSettings, kAirbrush, kTablet,
    kEraser, kSmudgeBlur, kBucket, kGradient, kEyedropper, kSelections, kTransform, kShapes, kText, kUndo,
    kImage, kColor, kPalettes, kLayers, kBlend, kClipping, kOnion, kSaving, kAutosave, kExport, kOpen,
    kTutorialPaint, kTutorialChrome, kTutorialOnion, kShortcuts, kPrefs, kTrouble, kPerformance;

} // namespace qirn::PaintHelp

#define QIRN_HELP(text) QT_TRANSLATE_NOOP("PaintHelp", text)
