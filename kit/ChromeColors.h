#pragma once
#include <QColor>
#include <QPalette>

#include "kit/QirnTheme.h"

namespace qirn {

/// Every color that the chrome draws with, derived from the seven of a theme. Text colors are moved, where a
/// theme needs it, until they can be read on each surface that they stand on (contrast 4.5 or more).
struct ChromeColors {
    // Surfaces, opaque.
    QColor canvas; ///< The surround of the picture.
    QColor panel;  ///< Side panels, status bar, dialogs.
    QColor bar;    ///< Header and options bar, a shade above the panel.
    QColor popup;  ///< Menus, lists of combo boxes, tips.
    QColor raised; ///< A button at rest.
    QColor hover;  ///< A button under the pointer.
    QColor pressed;
    QColor well;     ///< What is typed into or dragged along.
    QColor level;    ///< The filled part of a slider's well.
    QColor selected; ///< The chosen row of a list or menu, marked text.
    QColor accent;   ///< What is on: a checked button, a switch, the default button.
    QColor accentHover;

    // Marks and text, opaque.
    QColor text;  ///< On every surface but the accent.
    QColor dim;   ///< On canvas, panel, bar, popup, raised, well and level.
    QColor faint; ///< Disabled; meant to be less readable.
    QColor onAccent;
    QColor focus; ///< The ring of the keyboard; stands out from every surface (contrast 3 or more).

    // Edges, opaque: they stand out from canvas, panel, bar, popup, raised and well (contrast 3 or more).
    QColor edge; ///< Round a control, a menu, a sheet.
    QColor edgeHover;
    QColor accentEdge; ///< Round what is on.

    // Lines, translucent, laid over a surface.
    QColor divider; ///< Between groups on one surface.
    QColor seam;    ///< Between two surfaces.

    static ChromeColors fromTheme(const QrKitTheme& theme);
    QPalette palette() const;
};

} // namespace qirn
