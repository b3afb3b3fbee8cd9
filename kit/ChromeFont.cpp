#include "kit/ChromeFont.h"

#include "kit/Metrics.h"

namespace qirn::ChromeFont {

namespace {

QFont made(int pixels, QFont::Weight weight) {
    QFont font;
    font.setFamilies({QStringLiteral("Inter"), QStringLiteral("Sans Serif")});
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(pixels);
    font.setWeight(weight);
    // Vertical hinting puts the x-height on a pixel edge; the widths stay those of the design.
    font.setHintingPreference(QFont::PreferVerticalHinting);
    return font;
}

} // namespace

QFont title() {
    return made(Metrics::kTextTitle, QFont::DemiBold);
}
QFont body() {
    return made(Metrics::kTextBody, QFont::Normal);
}
QFont small() {
    return made(Metrics::kTextSmall, QFont::Normal);
}
QFont caption() {
    return made(Metrics::kTextCaption, QFont::Medium);
}

} // namespace qirn::ChromeFont
