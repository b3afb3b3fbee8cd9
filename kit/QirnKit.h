#pragma once
#include <functional>
#include <span>
#include <vector>

#include <QString>

#include "kit/ChromeColors.h"
#include "kit/KitStore.h"
#include "kit/Metrics.h"
#include "kit/QirnTheme.h"
#include "kit/help/QirnHelp.h"

class QWidget;

/// The interface kit: themes, the one style that draws every control, icons, a few controls of its own, and the
/// manual's viewer. It knows nothing of painting.
namespace qirn::QirnKit {

/// Where the choices made in the kit are kept; before `install`. Without one they are kept for this run.
void useStore(KitStore store);

/// Sets the application's name, its manual and the themes that it adds, and dresses the running QApplication in the
/// stored theme and zoom: style, palette and font. Once, before the first window.
void install(const QString& appName, std::vector<QirnHelpTopic> helpTopics = {},
             std::span<const QirnTheme> extraThemes = {});

/// Puts the theme that is chosen now on every window.
void applyTheme();
/// Lays every window out again at a zoom of the interface, 1 for the sizes as designed. Each widget gets a
/// `QEvent::StyleChange`.
void applyZoom(double zoom);

/// Calls `apply` now and whenever the sizes change, while the widget lives: for what a widget is told and not asked
/// for, such as the margins of its layout, a fixed size, a font of its own.
void followMetrics(QWidget* widget, std::function<void(const Metrics&)> apply);

} // namespace qirn::QirnKit

/// What the kit's own views ask for while they draw.
namespace qirn::QirnKitHost {

const KitStore& store();
const QrKitTheme& theme();    ///< The theme last applied; the default one before that.
const ChromeColors& colors(); ///< Its derived colors.
const Metrics& metrics();     ///< The sizes at the zoom last applied.

} // namespace qirn::QirnKitHost
