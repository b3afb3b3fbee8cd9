#include <QComboBox>
#include <QStyleOption>

#include "kit/ChromeFont.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "kit/style/ChromeStyle.h"

namespace qirn {

void ChromeStyle::drawField(const QStyleOption& option, QPainter& painter, const QRect& rect) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const bool enabled = option.state.testFlag(State_Enabled);
    const bool over = option.state.testFlag(State_MouseOver);
    ChromePaint::box(painter, rect, m.radius, enabled ? c.well : c.panel,
                     !enabled ? c.divider
                     : over   ? c.edgeHover
                              : c.edge);
    if (option.state.testFlag(State_HasFocus)) ChromePaint::focusRing(painter, rect, m.radius);
}

void ChromeStyle::drawCombo(const QStyleOptionComboBox& option, QPainter& painter,
                            const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const bool enabled = option.state.testFlag(State_Enabled);
    if (option.editable) {
        drawField(option, painter, option.rect);
    } else {
        const bool open = option.state.testFlag(State_On) || option.state.testFlag(State_Sunken);
        const bool over = option.state.testFlag(State_MouseOver);
        const QColor fill = !enabled ? c.bar : open ? c.pressed : over ? c.hover : c.raised;
        ChromePaint::box(painter, option.rect, m.radius, fill,
                         !enabled       ? c.divider
                         : over || open ? c.edgeHover
                                        : c.edge);
        if (showsFocus(option)) ChromePaint::focusRing(painter, option.rect, m.radius);
    }
    const QRect arrow = proxy()->subControlRect(CC_ComboBox, &option, SC_ComboBoxArrow, widget);
    ChromePaint::icon(painter, arrow, Icon::chevronDown, m.chevron, enabled ? c.dim : c.faint);
}

void ChromeStyle::drawComboLabel(const QStyleOptionComboBox& option, QPainter& painter,
                                 const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    if (option.editable) return; // its line edit shows the text
    const ChromeColors& c = QirnKitHost::colors();
    const bool enabled = option.state.testFlag(State_Enabled);
    QRectF rect = proxy()->subControlRect(CC_ComboBox, &option, SC_ComboBoxEditField, widget);
    if (!option.currentIcon.isNull()) {
        const QRectF mark(rect.left(), rect.top(), option.iconSize.width(), rect.height());
        ChromePaint::icon(painter, ChromePaint::visual(rect, mark), option.currentIcon, option.iconSize,
                          enabled ? QIcon::Normal : QIcon::Disabled, QIcon::Off);
        rect = ChromePaint::visual(rect, rect.adjusted(mark.width() + m.tightGap, 0, 0, 0));
    }
    ChromePaint::text(painter, rect, Qt::AlignLeft | Qt::AlignVCenter, option.currentText,
                      enabled ? c.text : c.faint);
}

void ChromeStyle::drawSpin(const QStyleOptionSpinBox& option, QPainter& painter,
                           const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    if (option.frame) drawField(option, painter, option.rect);
    const auto step = [&](SubControl part, Icon icon, QAbstractSpinBox::StepEnabledFlag flag) {
        const QRect rect = proxy()->subControlRect(CC_SpinBox, &option, part, widget);
        if (!rect.isValid()) return;
        const bool can = option.state.testFlag(State_Enabled) && option.stepEnabled.testFlag(flag);
        const bool over = option.activeSubControls.testFlag(part) && option.state.testFlag(State_MouseOver);
        ChromePaint::icon(painter, rect, icon, m.px(12), !can ? c.faint : over ? c.text : c.dim);
    };
    step(SC_SpinBoxUp, Icon::chevronUp, QAbstractSpinBox::StepUpEnabled);
    step(SC_SpinBoxDown, Icon::chevronDown, QAbstractSpinBox::StepDownEnabled);
}

void ChromeStyle::drawGroup(const QStyleOptionGroupBox& option, QPainter& painter,
                            const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const QRect label = proxy()->subControlRect(CC_GroupBox, &option, SC_GroupBoxLabel, widget);
    double left = option.rect.left();
    if (!option.text.isEmpty()) {
        painter.save();
        painter.setFont(ChromeFont::caption());
        const QColor color = option.state.testFlag(State_Enabled) ? c.dim : c.faint;
        ChromePaint::text(painter, label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextHideMnemonic,
                          option.text, color);
        left = ChromePaint::visual(option.rect, label).left() +
               painter.fontMetrics().size(Qt::TextShowMnemonic, option.text).width() + m.gap;
        painter.restore();
    }
    const QRectF rule(left, label.top() + label.height() / 2.0, option.rect.right() + 1 - left, 1);
    ChromePaint::line(painter, ChromePaint::visual(option.rect, rule), ChromePaint::Side::top, c.divider);
    if (option.subControls.testFlag(SC_GroupBoxCheckBox)) {
        QStyleOption box = option;
        box.rect = proxy()->subControlRect(CC_GroupBox, &option, SC_GroupBoxCheckBox, widget);
        drawCheckMark(box, painter);
    }
}

} // namespace qirn
