#pragma once

namespace qirn {

/// The one grid of the interface at one zoom: every distance, height, radius and text size that more than one place
/// needs, in the display's logical pixels. Read where it is used (`QirnKitHost::metrics`), never kept.
struct Metrics {
    double zoom = 1; ///< 0.85 to 2.

    /// A length of the grid, given as it is at zoom 1, at this zoom.
    constexpr int px(double length) const { return static_cast<int>(length * zoom + 0.5); }

    int tightGap = px(4);  ///< Between the parts of one control.
    int gap = px(8);       ///< Between the controls of one group.
    int groupGap = px(12); ///< Between groups, and inside a bar's ends.
    int margin = px(16);   ///< Round the content of a dialog.

    int controlHeight = px(28);
    int controlPadding = px(10); ///< From a text to the side of its control.
    int controlWidth = px(148);  ///< Of a slider or menu that stays as wide whatever it shows.
    int leastButton = px(64);    ///< Width of a button with a short word.
    int smallButton = px(20);    ///< Side of an icon button inside something else.
    int rowHeight = px(28);      ///< A row of a list, a menu or a tab bar.
    int menuBarHeight = px(30);
    int headerHeight = px(44);
    int optionsHeight = px(44);
    int statusHeight = px(28);
    int railButton = px(36);  ///< Side of a round tool button.
    int panelWidth = px(256); ///< Of the column of panels.

    int radius = px(6);      ///< Corners of controls.
    int smallRadius = px(4); ///< Corners of rows and small marks.
    int inset = px(2);       ///< Of a mark or a button in what surrounds it.
    int focusWidth = px(2);

    int smallIcon = px(16); ///< Beside text, in rows and fields.
    int icon = px(20);      ///< Alone on a button.
    int chevron = px(14);

    int checkBox = px(16);
    int sliderLine = px(3); ///< Under the texts of a slider, as long as its level.
    int switchWidth = px(30);
    int switchHeight = px(18);
    int scrollBar = px(12);
    int scrollThumb = px(6);

    int titleText = px(15); ///< Pixel sizes of the one font.
    int bodyText = px(13);
    int smallText = px(12);
    int captionText = px(11);
};

} // namespace qirn
