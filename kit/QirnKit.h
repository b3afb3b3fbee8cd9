#pragma once
#include <QString>

#include "kit/ChromeColors.h"
#include "kit/QirnTheme.h"

/// The interface kit: themes, the one style that draws every control, icons, and a few controls of its own. It
/// knows nothing of painting.
namespace qirn::QirnKit {

/// Sets the application's name, and dresses the running QApplication: style, palette and font. Once, before the
/// first window.
void install(const QString& appName);

/// Puts the theme that is chosen now on every window.
void applyTheme();

} // namespace qirn::QirnKit

/// What the kit's own views ask for while they draw.
namespace qirn::QirnKitHost {

const QrKitTheme& theme();    ///< The theme last applied; the default one before that.
const ChromeColors& colors(); ///< Its derived colours.

} // namespace qirn::QirnKitHost
