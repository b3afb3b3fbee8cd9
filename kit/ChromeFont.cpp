#include "kit/ChromeFont.h"

#include "kit/QirnKit.h"

namespace qirn::ChromeFont {

namespace {

QFont sized(int pixels, QFont::Weight weight) {
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
    return sized(QirnKitHost::metrics().titleText, QFont::DemiBold);
}
QFont body() {
    return sized(QirnKitHost::metrics().bodyText, QFont::Normal);
}
QFont small() {
    return sized(QirnKitHost::metrics().smallText, QFont::Normal);
}
QFont caption() {
    return sized(QirnKitHost::metrics().captionText, QFont::Medium);
}

} // namespace qirn::ChromeFont
