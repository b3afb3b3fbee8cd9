#include "kit/ChromeColors.h"

#include <algorithm>
#include <initializer_list>

namespace qirn {

namespace {

constexpr double kReadable = 4.5;       // WCAG AA for text
constexpr double kVisible = 3;          // WCAG AA for marks
constexpr double kStep = 0.02;          // how far a color moves at a time towards being readable
constexpr double kMostDarkening = 0.15; // an accent moved further would no longer look like itself

double contrast(const QColor& a, const QColor& b) {
    return QirnTheme::RGB::fromColor(a).contrast(QirnTheme::RGB::fromColor(b));
}

/// Linear mix of the encoded channels: `a` at t = 0, `b` at t = 1.
QColor mix(const QColor& a, const QColor& b, double t) {
    const auto channel = [t](int from, int to) { return qRound(from + (to - from) * t); };
    return QColor(channel(a.red(), b.red()), channel(a.green(), b.green()), channel(a.blue(), b.blue()));
}

QColor faded(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

/// Moves `from` towards `to` in small steps until `enough` holds; `to` where it never does.
template <class Enough> QColor moved(const QColor& from, const QColor& to, Enough enough) {
    for (double t = 0; t < 1; t += kStep) {
        const QColor candidate = mix(from, to, t);
        if (enough(candidate)) return candidate;
    }
    return to;
}

QColor readableOn(const QColor& color, const QColor& towards, std::initializer_list<QColor> surfaces,
                  double least) {
    return moved(color, towards, [&](const QColor& candidate) {
        return std::ranges::all_of(surfaces,
                                   [&](const QColor& s) { return contrast(candidate, s) >= least; });
    });
}

/// Moves a surface towards another color until its text can be read on it.
QColor surfaceUnder(const QColor& surface, const QColor& text, const QColor& towards) {
    return moved(surface, towards,
                 [&](const QColor& candidate) { return contrast(candidate, text) >= kReadable; });
}

} // namespace

ChromeColors ChromeColors::fromTheme(const QrKitTheme& theme) {
    const QColor black(Qt::black);
    const auto metal = [&](double t) { return mix(theme.panelBottom, theme.panelTop, t); };
    ChromeColors c;
    c.canvas = theme.bg;
    c.panel = theme.panelBottom;
    c.bar = metal(0.22);
    c.popup = metal(0.12);
    c.raised = metal(0.5);
    c.hover = metal(0.85);
    c.pressed = mix(theme.bg, theme.panelBottom, 0.4);
    c.well = mix(theme.bg, black, 0.08);
    c.text = readableOn(theme.text, Qt::white, {c.panel, c.hover, c.pressed, c.well}, kReadable);
    c.dim = readableOn(theme.dim, c.text, {c.canvas, c.panel, c.bar, c.popup, c.raised, c.well}, kReadable);
    c.faint = mix(c.panel, c.dim, 0.5);
    c.level = surfaceUnder(mix(c.well, theme.accent, 0.34), c.dim, c.well);
    c.selected = surfaceUnder(mix(c.panel, theme.accent, 0.5), c.text, c.panel);

    // Light text on the accent looks best; where the accent would have to darken too much for it, dark text.
    const QColor darkened = surfaceUnder(theme.accent, c.text, black);
    if (contrast(c.text, mix(theme.accent, black, kMostDarkening)) >= kReadable) {
        c.accent = darkened;
        c.onAccent = c.text;
    } else {
        c.accent = theme.accent;
        c.onAccent = readableOn(theme.bg, black, {c.accent}, kReadable);
    }
    c.accentHover = surfaceUnder(mix(c.accent, Qt::white, 0.12), c.onAccent, c.accent);
    const auto visible = [&](const QColor& from, const QColor& towards) {
        return readableOn(from, towards, {c.canvas, c.panel, c.bar, c.popup, c.raised, c.well, c.level},
                          kVisible);
    };
    c.focus = visible(theme.accent, Qt::white);
    c.edge = visible(c.panel, c.text);
    c.edgeHover = mix(c.edge, c.text, 0.45);
    c.accentEdge = visible(c.accent, c.text);

    const double rim = theme.rim.alphaF();
    c.divider = faded(theme.rim, rim * 0.36);
    c.seam = faded(black, 0.45);
    return c;
}

QPalette ChromeColors::palette() const {
    QPalette p;
    const auto both = [&p](QPalette::ColorRole role, const QColor& color) { p.setColor(role, color); };
    both(QPalette::Window, panel);
    both(QPalette::WindowText, text);
    both(QPalette::Base, well);
    both(QPalette::AlternateBase, mix(well, panel, 0.5));
    both(QPalette::Text, text);
    both(QPalette::PlaceholderText, dim);
    both(QPalette::Button, raised);
    both(QPalette::ButtonText, text);
    both(QPalette::BrightText, text);
    both(QPalette::ToolTipBase, popup);
    both(QPalette::ToolTipText, text);
    both(QPalette::Highlight, selected);
    both(QPalette::HighlightedText, text);
    both(QPalette::Link, focus);
    both(QPalette::LinkVisited, dim);
    both(QPalette::Light, hover);
    both(QPalette::Midlight, raised);
    both(QPalette::Mid, mix(panel, canvas, 0.5));
    both(QPalette::Dark, canvas);
    both(QPalette::Shadow, QColor(Qt::black));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::HighlightedText, QPalette::PlaceholderText, QPalette::ToolTipText})
        p.setColor(QPalette::Disabled, role, faint);
    p.setColor(QPalette::Disabled, QPalette::Highlight, raised);
    return p;
}

} // namespace qirn
