#include <QStyleOption>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/controls/RoundButton.h"
#include "kit/style/ChromePaint.h"
#include "kit/style/ChromeStyle.h"

namespace qirn {

namespace {

struct Face {
    QColor fill;
    QColor edge;
    QColor text;
};

/// A raised button: at rest, under the pointer, held down, on, or disabled.
Face raisedFace(QStyle::State state, bool on) {
    const ChromeColors& c = QirnKitHost::colors();
    const bool over = state.testFlag(QStyle::State_MouseOver);
    if (!state.testFlag(QStyle::State_Enabled)) return {c.bar, c.divider, c.faint};
    if (on) return {over ? c.accentHover : c.accent, c.accentEdge, c.onAccent};
    if (state.testFlag(QStyle::State_Sunken)) return {c.pressed, c.edgeHover, c.text};
    return {over ? c.hover : c.raised, over ? c.edgeHover : c.edge, c.text};
}

/// A flat button: only its icon or text until the pointer is over it.
Face flatFace(QStyle::State state, bool on) {
    const ChromeColors& c = QirnKitHost::colors();
    const bool over = state.testFlag(QStyle::State_MouseOver);
    if (!state.testFlag(QStyle::State_Enabled)) return {{}, {}, c.faint};
    if (on) return {over ? c.accentHover : c.accent, c.accentEdge, c.onAccent};
    if (state.testFlag(QStyle::State_Sunken)) return {c.pressed, {}, c.text};
    return {over ? c.hover : QColor(), {}, c.text};
}

QIcon::Mode iconMode(const QStyleOption& option) {
    return option.state.testFlag(QStyle::State_Enabled) ? QIcon::Normal : QIcon::Disabled;
}

QIcon::State iconState(const QStyleOption& option) {
    return option.state.testFlag(QStyle::State_On) ? QIcon::On : QIcon::Off;
}

bool isOn(const QStyleOptionButton& option) {
    return option.state.testFlag(QStyle::State_On) ||
           option.features.testFlag(QStyleOptionButton::DefaultButton);
}

} // namespace

void ChromeStyle::drawPushBevel(const QStyleOptionButton& option, QPainter& painter) const {
    const Metrics& m = QirnKitHost::metrics();
    const bool flat = option.features.testFlag(QStyleOptionButton::Flat);
    const Face face = flat ? flatFace(option.state, isOn(option)) : raisedFace(option.state, isOn(option));
    ChromePaint::box(painter, option.rect, m.radius, face.fill, face.edge);
    if (showsFocus(option)) ChromePaint::focusRing(painter, option.rect, m.radius);
}

void ChromeStyle::drawPushLabel(const QStyleOptionButton& option, QPainter& painter) const {
    const Metrics& m = QirnKitHost::metrics();
    const Face face = raisedFace(option.state, isOn(option));
    QRectF rect = option.rect;
    const int textWidth = option.fontMetrics.size(Qt::TextShowMnemonic, option.text).width();
    if (!option.icon.isNull()) {
        const int gap = option.text.isEmpty() ? 0 : m.px(6);
        const double both = option.iconSize.width() + gap + textWidth;
        QRectF mark(rect.center().x() - both / 2, rect.top(), option.iconSize.width(), rect.height());
        const auto state = isOn(option) ? QIcon::On : QIcon::Off;
        ChromePaint::icon(painter, ChromePaint::visual(option.rect, mark), option.icon, option.iconSize,
                          iconMode(option), state);
        rect.setLeft(mark.right() + gap);
        rect.setWidth(textWidth + 1);
        rect = ChromePaint::visual(option.rect, rect);
    }
    ChromePaint::text(painter, rect, Qt::AlignCenter | Qt::TextHideMnemonic, option.text, face.text);
}

void ChromeStyle::drawToolPanel(const QStyleOption& option, QPainter& painter, const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    const bool round = qobject_cast<const RoundButton*>(widget) != nullptr;
    QRectF face = option.rect;
    if (round) {
        const double side = std::min(face.width(), face.height());
        face = QRectF(face.center() - QPointF(side, side) / 2, QSizeF(side, side));
    }
    const double radius = round ? face.width() / 2 : m.radius;
    const bool on = option.state.testFlag(State_On);
    const bool flat = option.state.testFlag(State_AutoRaise);
    const Face look = flat ? flatFace(option.state, on) : raisedFace(option.state, on);
    ChromePaint::box(painter, face, radius, look.fill, look.edge);
    if (showsFocus(option)) ChromePaint::focusRing(painter, face, radius);
}

void ChromeStyle::drawToolLabel(const QStyleOptionToolButton& option, QPainter& painter) const {
    const Metrics& m = QirnKitHost::metrics();
    const bool showsText = option.toolButtonStyle != Qt::ToolButtonIconOnly && !option.text.isEmpty();
    const bool showsIcon = option.toolButtonStyle != Qt::ToolButtonTextOnly && !option.icon.isNull();
    const Face face = flatFace(option.state, option.state.testFlag(State_On));
    if (!showsText) {
        ChromePaint::icon(painter, option.rect, option.icon, option.iconSize, iconMode(option),
                          iconState(option));
        return;
    }
    QRectF rect = QRectF(option.rect).adjusted(m.gap, 0, -m.gap, 0);
    if (showsIcon) {
        const QRectF mark(rect.left(), rect.top(), option.iconSize.width(), rect.height());
        ChromePaint::icon(painter, ChromePaint::visual(option.rect, mark), option.icon, option.iconSize,
                          iconMode(option), iconState(option));
        rect.setLeft(mark.right() + m.px(6));
        rect = ChromePaint::visual(option.rect, rect);
    }
    const int align = showsIcon || option.features.testFlag(QStyleOptionToolButton::HasMenu)
                          ? Qt::AlignLeft
                          : Qt::AlignHCenter;
    ChromePaint::text(painter, rect, align | Qt::AlignVCenter | Qt::TextHideMnemonic, option.text, face.text);
}

void ChromeStyle::drawToolButton(const QStyleOptionToolButton& option, QPainter& painter,
                                 const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    QStyleOptionToolButton face = option;
    face.state.setFlag(State_Sunken, option.state.testFlag(State_Sunken) ||
                                         option.activeSubControls.testFlag(SC_ToolButtonMenu));
    drawToolPanel(face, painter, widget);
    if (option.features.testFlag(QStyleOptionToolButton::HasMenu)) {
        const QRect arrow(option.rect.right() - m.chevron - m.tightGap, option.rect.top(), m.chevron,
                          option.rect.height());
        const ChromeColors& c = QirnKitHost::colors();
        ChromePaint::icon(painter, ChromePaint::visual(option.rect, arrow), Icon::chevronDown, m.chevron,
                          option.state.testFlag(State_Enabled) ? c.dim : c.faint);
        face.rect.setRight(arrow.left() + m.tightGap);
        face.rect = ChromePaint::visual(option.rect, face.rect);
    }
    drawToolLabel(face, painter);
}

void ChromeStyle::drawCheckMark(const QStyleOption& option, QPainter& painter) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const bool enabled = option.state.testFlag(State_Enabled);
    const bool on = option.state.testFlag(State_On);
    const bool partly = option.state.testFlag(State_NoChange);
    const bool over = option.state.testFlag(State_MouseOver);
    const QColor mark = enabled ? c.onAccent : c.faint;
    if (on || partly)
        ChromePaint::box(painter, option.rect, m.smallRadius,
                         enabled ? (over ? c.accentHover : c.accent) : c.bar,
                         enabled ? c.accentEdge : c.divider);
    else
        ChromePaint::box(painter, option.rect, m.smallRadius, c.well,
                         !enabled ? c.divider
                         : over   ? c.edgeHover
                                  : c.edge);
    if (on || partly)
        ChromePaint::icon(painter, option.rect, on ? Icon::check : Icon::minus, m.checkBox - m.inset, mark);
}

void ChromeStyle::drawRadioMark(const QStyleOption& option, QPainter& painter) const {
    const ChromeColors& c = QirnKitHost::colors();
    const bool enabled = option.state.testFlag(State_Enabled);
    const double radius = option.rect.width() / 2.0;
    if (!option.state.testFlag(State_On)) {
        ChromePaint::box(painter, option.rect, radius, c.well, enabled ? c.edge : c.divider);
        return;
    }
    ChromePaint::box(painter, option.rect, radius, enabled ? c.accent : c.bar,
                     enabled ? c.accentEdge : c.divider);
    const int inset = option.rect.width() / 3;
    ChromePaint::box(painter, option.rect.adjusted(inset, inset, -inset, -inset), radius,
                     enabled ? c.onAccent : c.faint);
}

} // namespace qirn
