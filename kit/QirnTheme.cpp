#include "kit/QirnTheme.h"

#include <algorithm>
#include <cmath>

namespace qirn {

namespace {

constexpr double kRimAlpha = 0.25;

double linear(double channel) {
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

QColor display(const QirnTheme::RGB& c) {
    return QColor::fromRgbF(static_cast<float>(c.r), static_cast<float>(c.g), static_cast<float>(c.b));
}

} // namespace

QirnTheme::RGB QirnTheme::RGB::fromColor(const QColor& color) {
    return {color.red() / 255.0, color.green() / 255.0, color.blue() / 255.0};
}

double QirnTheme::RGB::luminance() const {
    return 0.2126 * linear(r) + 0.7152 * linear(g) + 0.0722 * linear(b);
}

double QirnTheme::RGB::contrast(const RGB& other) const {
    const double mine = luminance();
    const double theirs = other.luminance();
    return (std::max(mine, theirs) + 0.05) / (std::min(mine, theirs) + 0.05);
}

QrKitTheme QirnTheme::kitTheme() const {
    QColor rim(Qt::white);
    rim.setAlphaF(kRimAlpha);
    return {display(bg),     display(text),     display(dim),        rim,
            display(accent), display(panelTop), display(panelBottom)};
}

} // namespace qirn
