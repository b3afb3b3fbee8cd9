#include "support/PenRecording.h"

#include <array>
#include <cmath>

#include <QFile>

namespace qirn::test {

namespace {

/// Adds samples until `length` seconds have passed, 125 a second; shape(t) gives a point for t from 0 to 1.
template <class Shape> std::vector<StrokePoint> drawn(double start, double length, Shape shape) {
    std::vector<StrokePoint> points;
    const int count = static_cast<int>(length * 125);
    for (int i = 0; i <= count; ++i) {
        const double t = static_cast<double>(i) / count;
        StrokePoint point = shape(t);
        point.time = start + t * length;
        points.push_back(point);
    }
    return points;
}

double swell(double t) {
    return 0.05 + 0.9 * std::sin(M_PI * t);
}

} // namespace

std::optional<PenStrokes> readPenRecording(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    PenStrokes strokes;
    bool isDown = false;
    while (!file.atEnd()) {
        const QByteArray text = file.readLine().simplified();
        if (text.isEmpty()) continue;
        const QList<QByteArray> words = text.split(' ');
        if (words.size() != 4) return std::nullopt;
        std::array<double, 4> values{};
        for (std::size_t i = 0; i < 4; ++i) {
            bool isNumber = false;
            values[i] = words[static_cast<qsizetype>(i)].toDouble(&isNumber);
            if (!isNumber || !std::isfinite(values[i])) return std::nullopt;
        }
        const auto [time, x, y, pressure] = values;
        if (pressure > 0) {
            if (!isDown) strokes.emplace_back();
            strokes.back().emplace_back(x, y, pressure, 0, 0, time);
        }
        isDown = pressure > 0;
    }
    return strokes;
}

std::optional<PenStrokes> recordedHand() {
    const QString folder = qEnvironmentVariable("QIRN_DATA");
    if (folder.isEmpty()) return std::nullopt;
    return readPenRecording(folder + QStringLiteral("/pen-30s.txt"));
}

PenStrokes syntheticHand() {
    PenStrokes strokes;
    // A long S that swells and fades.
    strokes.push_back(drawn(0, 0.8, [](double t) {
        return StrokePoint(40 + 520 * t, 120 + 70 * std::sin(2 * M_PI * t), swell(t));
    }));
    // A quick scribble that crosses itself, with loops that shrink.
    strokes.push_back(drawn(1, 0.9, [](double t) {
        const double turn = 2 * M_PI * 5 * t, r = 70 * (1 - 0.6 * t);
        return StrokePoint(150 + 280 * t + r * std::cos(turn), 260 + r * std::sin(turn),
                           0.35 + 0.3 * std::sin(turn));
    }));
    // Two taps of the pen, one of them shaking.
    strokes.push_back({StrokePoint(500, 60, 0.7, 0, 0, 2.2)});
    strokes.push_back(drawn(2.4, 0.08, [](double t) { return StrokePoint(540 + t, 60 - t, 0.2 + 0.5 * t); }));
    // A slow straight line of full pressure that stops for a moment on its way.
    strokes.push_back(drawn(2.7, 0.8, [](double t) {
        const double along = t < 0.4 ? t / 0.4 * 0.5 : t < 0.6 ? 0.5 : 0.5 + (t - 0.6) / 0.4 * 0.5;
        return StrokePoint(60 + 200 * along, 380 - 40 * along, 1);
    }));
    return strokes;
}

PenStrokes adjusted(const PenStrokes& strokes, const PenAdjustment& how) {
    const auto rounded = [&](double v) { return how.toSixtyFourths ? std::round(v * 64) / 64 : v; };
    PenStrokes result = strokes;
    for (auto& stroke : result) {
        for (StrokePoint& point : stroke) {
            point.x = rounded(point.x * how.scale + how.dx);
            point.y = rounded(point.y * how.scale + how.dy);
            point.pressure = rounded(point.pressure);
        }
    }
    return result;
}

} // namespace qirn::test
