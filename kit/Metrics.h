#pragma once

/// The one grid of the interface: every distance, height, radius and text size, in logical pixels.
namespace qirn::Metrics {

inline constexpr int kSpace4 = 4;   // between parts of one control
inline constexpr int kSpace8 = 8;   // between controls of one group
inline constexpr int kSpace12 = 12; // between groups, and inside a bar's ends
inline constexpr int kSpace16 = 16; // round the content of a dialog

inline constexpr int kControlHeight = 28;
inline constexpr int kControlPadding = 10; // text to the side of its control
inline constexpr int kRowHeight = 28;      // a row of a list, a menu or a tab bar
inline constexpr int kMenuBarHeight = 30;
inline constexpr int kHeaderHeight = 44;
inline constexpr int kOptionsHeight = 44;
inline constexpr int kStatusHeight = 28;
inline constexpr int kRailButton = 36; // side of a round tool button

inline constexpr int kRadius = 6;      // corners of controls
inline constexpr int kRadiusSmall = 4; // corners of rows and small marks
inline constexpr int kFocusWidth = 2;

inline constexpr int kIconSmall = 16; // beside text, in rows and fields
inline constexpr int kIcon = 20;      // alone on a button
inline constexpr int kChevron = 14;

inline constexpr int kCheckBox = 16;
inline constexpr int kSwitchWidth = 30;
inline constexpr int kSwitchHeight = 18;
inline constexpr int kScrollBar = 12;
inline constexpr int kScrollThumb = 6;

inline constexpr int kTextTitle = 15; // pixel sizes of the one font
inline constexpr int kTextBody = 13;
inline constexpr int kTextSmall = 12;
inline constexpr int kTextCaption = 11;

} // namespace qirn::Metrics
