#include "kit/QrZoom.h"

#include "kit/KitStore.h"
#include "kit/QirnKit.h"

#include <algorithm>
#include <cmath>

namespace qirn::QrZoom {

double clamp(double zoom) {
    return std::clamp(std::round(zoom * 100) / 100, min, max);
}

double value() {
    const double stored = QirnKitHost::store().number(key);
    return stored == 0 || !std::isfinite(stored) ? 1 : clamp(stored);
}

void setValue(double zoom) {
    QirnKitHost::store().setNumber(key, clamp(zoom));
    QirnKit::applyZoom(value());
}

QString levelTitle(int level) {
    return QString::number(level) + u'%';
}

} // namespace qirn::QrZoom
