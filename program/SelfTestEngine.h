#pragma once
#include "brush/BrushSettings.h"
#include "core/PaintDocument.h"
#include "program/SelfTestReport.h"

#include <memory>

namespace qirn {

/// A hard round brush of one size at any pressure.
BrushSettings selfTestBrush(double size, double opacity = 1);
/// A layered picture with every kind of setting.
std::unique_ptr<PaintDocument> selfTestPicture();

/// The sections of the self-test that need nothing but the engine.
namespace SelfTestEngine {

void strokes(SelfTestReport& report);
void blendModes(SelfTestReport& report);
void bucket(SelfTestReport& report);
void undoRedo(SelfTestReport& report);
void saveReopen(SelfTestReport& report);
void exports(SelfTestReport& report);
void palettes(SelfTestReport& report);
void canvasOps(SelfTestReport& report);
void presets(SelfTestReport& report);
void quickPerformance(SelfTestReport& report);

} // namespace SelfTestEngine

} // namespace qirn
