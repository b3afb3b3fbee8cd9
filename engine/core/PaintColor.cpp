#include "core/PaintColor.h"

#include "platform/Require.h"

#include <algorithm>
#include <cmath>

namespace qirn {

namespace {

double clampUnit(double v) {
    return std::min(std::max(0.0, v), 1.0); // in this order, so that NaN becomes 0
}

uint8_t roundedByte(double unit) {
    const double v = std::round(unit * 255);
    require(v >= 0 && v <= 255);
    return static_cast<uint8_t>(v);
}

} // namespace

PaintColor::PaintColor(double red, double green, double blue, double alpha)
    : r(clampUnit(red)),
      g(clampUnit(green)),
      b(clampUnit(blue)),
      a(clampUnit(alpha)) {}

PaintColor PaintColor::fromBytes(uint8_t r, uint8_t g, uint8_t b, uint8_t a) {
    return {r / 255.0, g / 255.0, b / 255.0, a / 255.0};
}

std::optional<PaintColor> PaintColor::fromHex(const QString& text) {
    QString digits = text.trimmed();
    if (digits.startsWith(u'#')) digits.remove(0, 1);
    if (digits.size() == 3) {
        QString doubled;
        for (QChar c : digits) doubled += QString(2, c);
        digits = doubled;
    }
    if (digits.size() != 6 && digits.size() != 8) return std::nullopt;
    uint32_t value = 0;
    // A leading plus sign may stand for a first digit, as number readers commonly allow.
    const qsizetype first = digits.startsWith(u'+') ? 1 : 0;
    for (qsizetype i = first; i < digits.size(); ++i) {
        const char16_t c = digits[i].unicode();
        uint32_t digit = 0;
        if (c >= u'0' && c <= u'9')
            digit = c - u'0';
        else if (c >= u'a' && c <= u'f')
            digit = c - u'a' + 10u;
        else if (c >= u'A' && c <= u'F')
            digit = c - u'A' + 10u;
        else
            return std::nullopt;
        value = value * 16 + digit;
    }
    const uint32_t rgba = digits.size() == 6 ? (value << 8) | 0xFFu : value;
    return fromBytes(static_cast<uint8_t>(rgba >> 24), static_cast<uint8_t>((rgba >> 16) & 0xFF),
                     static_cast<uint8_t>((rgba >> 8) & 0xFF), static_cast<uint8_t>(rgba & 0xFF));
}

PaintColor PaintColor::fromHSV(double h, double s, double v, double a) {
    const double hh = (h - std::floor(h)) * 6;
    const int sector = static_cast<int>(hh) % 6;
    const double f = hh - std::floor(hh);
    const double p = (1 - s) * v;
    const double q = (1 - f * s) * v;
    const double t = (1 - (1 - f) * s) * v;
    switch (sector) {
    case 0:
        return {v, t, p, a};
    case 1:
        return {q, v, p, a};
    case 2:
        return {p, v, t, a};
    case 3:
        return {p, q, v, a};
    case 4:
        return {t, p, v, a};
    default:
        return {v, p, q, a};
    }
}

uint8_t PaintColor::r8() const {
    return roundedByte(r);
}
uint8_t PaintColor::g8() const {
    return roundedByte(g);
}
uint8_t PaintColor::b8() const {
    return roundedByte(b);
}
uint8_t PaintColor::a8() const {
    return roundedByte(a);
}

QString PaintColor::hex() const {
    return QString::asprintf("#%02X%02X%02X", r8(), g8(), b8());
}

PaintColor::HSB PaintColor::hsb() const {
    const double top = std::max({r, g, b});
    const double d = top - std::min({r, g, b});
    double h = 0;
    if (d > 0) {
        if (top == r)
            h = std::fmod((g - b) / d, 6);
        else if (top == g)
            h = (b - r) / d + 2;
        else
            h = (r - g) / d + 4;
        h /= 6;
        if (h < 0) h += 1;
    }
    return {h, top == 0 ? 0 : d / top, top};
}

PixelBytes PaintColor::premultiplied() const {
    return {roundedByte(r * a), roundedByte(g * a), roundedByte(b * a), roundedByte(a)};
}

} // namespace qirn
