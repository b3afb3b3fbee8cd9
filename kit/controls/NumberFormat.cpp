#include "kit/controls/NumberFormat.h"

#include <algorithm>
#include <cmath>

#include <QLocale>
#include <QRegularExpression>

namespace qirn {

namespace {
constexpr double kPlaceStep =
    0.01; // of the length: the least that a key moves where small values take more of it

QString inPlainDigits(QString text) {
    for (QChar& c : text)
        if (c.isDigit()) c = QChar(u'0' + c.digitValue());
    return text;
}

} // namespace

QString NumberFormat::text(double value) const {
    return words ? words(value) : number(value) + QString::fromUtf8(suffix);
}

QString NumberFormat::number(double value) const {
    double shown = value * scale;
    if (std::abs(shown) * std::pow(10, decimals) < 0.5) shown = 0; // never "-0"
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator); // in the way of whoever changes a digit
    int places = decimals;
    if (trimmed) {
        const QString digits = QString::number(shown, 'f', decimals);
        while (places > 0 && digits[digits.size() - 1 - (decimals - places)] == u'0') --places;
    }
    return locale.toString(shown, 'f', places);
}

std::optional<double> NumberFormat::value(const QString& text) const {
    QString digits = text.trimmed();
    if (const QString unit = QString::fromUtf8(suffix).trimmed();
        !unit.isEmpty() && digits.endsWith(unit, Qt::CaseInsensitive))
        digits.chop(unit.size());
    digits = digits.trimmed();
    static const QRegularExpression grouped(QStringLiteral("^-?[1-9]\\d{0,2}([,.\\s]\\d{3})+$"));
    static const QRegularExpression separators(QStringLiteral("[,.\\s]"));
    if (groups && grouped.match(digits).hasMatch()) digits.remove(separators);
    // As the locale has it, whose groups no zero begins; and else in any digits with a point or a comma.
    static const QRegularExpression belowOne(QStringLiteral("^-?0[,.]"));
    bool ok = false;
    double shown = 0;
    if (QLocale().language() != QLocale::C && !belowOne.match(digits).hasMatch())
        shown = QLocale().toDouble(digits, &ok);
    if (!ok) shown = inPlainDigits(digits).replace(u',', u'.').toDouble(&ok);
    if (!ok || !std::isfinite(shown)) return {};
    return shown / scale;
}

double SliderScale::clamped(double value) const {
    return std::clamp(value, lower, upper);
}

double SliderScale::valueAt(double place) const {
    const double t = std::clamp(place, 0.0, 1.0);
    const double value = lower + (upper - lower) * (fineAtStart ? t * t : t);
    return clamped(std::round(value / step) * step);
}

double SliderScale::placeOf(double value) const {
    const double t = upper > lower ? (clamped(value) - lower) / (upper - lower) : 0;
    return fineAtStart ? std::sqrt(t) : t;
}

double SliderScale::stepped(double value, int steps) const {
    const double plain = clamped(value + steps * step);
    if (!fineAtStart || steps == 0) return plain;
    const double byPlace = valueAt(placeOf(value) + steps * kPlaceStep);
    return steps > 0 ? std::max(plain, byPlace) : std::min(plain, byPlace);
}

} // namespace qirn
