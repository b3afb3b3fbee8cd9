#pragma once
#include <QString>

namespace qirn {

/// The zoom of the whole interface: 1 shows everything as designed. The picture on the canvas is not touched by it.
namespace QrZoom {

inline constexpr char key[] = "qirn.zoom"; ///< The preference that holds it; 0 and nothing stand for 1.
inline constexpr double min = 0.85, max = 2, step = 0.15;
inline constexpr int levels[] = {85, 100, 115, 130, 150, 175, 200}; // percent

double clamp(double zoom); ///< Rounded to a whole percent, then from `min` to `max`.
double value();
void setValue(double zoom);    ///< Stores it, and lays every window out at it.
QString levelTitle(int level); ///< "150%"

} // namespace QrZoom

} // namespace qirn
