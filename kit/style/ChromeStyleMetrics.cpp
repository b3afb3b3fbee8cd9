#include <algorithm>

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QListView>
#include <QStyleOption>
#include <QTextOption>

#include "kit/QirnKit.h"
#include "kit/controls/PictureMenu.h"
#include "kit/style/ChromeStyle.h"

namespace qirn {

namespace {
constexpr int kLongestMotion = 120; // milliseconds
}

int ChromeStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    switch (metric) {
    case PM_ButtonIconSize:
    case PM_SmallIconSize:
    case PM_ListViewIconSize:
    case PM_TabBarIconSize:
        return m.smallIcon;
    case PM_ToolBarIconSize:
        return m.icon;
    case PM_MessageBoxIconSize:
        return 2 * m.icon;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return m.checkBox;
    case PM_FocusFrameHMargin: // the text of a list's row; the columns of a table are too narrow for more
        return qobject_cast<const QListView*>(widget) ? m.gap
                                                      : QProxyStyle::pixelMetric(metric, option, widget);
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
        return m.gap;
    case PM_ScrollBarExtent:
        return m.scrollBar;
    case PM_ScrollBarSliderMin:
        return 3 * m.scrollBar;
    case PM_ScrollView_ScrollBarSpacing:
    case PM_ScrollView_ScrollBarOverlap:
        return 0;
    case PM_SliderThickness:
    case PM_SliderControlThickness:
    case PM_SliderLength:
        return m.smallIcon;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarBaseOverlap:
    case PM_TabBarBaseHeight:
    case PM_MenuBarPanelWidth:
    case PM_MenuBarVMargin:
        return 0;
    case PM_MenuPanelWidth:
        return 1;
    case PM_MenuBarHMargin:
        return m.gap;
    case PM_MenuBarItemSpacing:
        return 0;
    case PM_MenuVMargin:
        return m.tightGap;
    case PM_MenuHMargin:
        return 0;
    case PM_SubMenuOverlap:
        return -1;
    case PM_ToolTipLabelFrameWidth:
        return m.px(6);
    case PM_DefaultFrameWidth:
        return 1;
    case PM_ComboBoxFrameWidth:
    case PM_SpinBoxFrameWidth:
        return 1;
    case PM_TabBarTabHSpace:
        return 2 * m.groupGap;
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
        return m.gap;
    case PM_LayoutLeftMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutBottomMargin:
        return widget && widget->isWindow() ? m.margin : m.groupGap;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int ChromeStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* data) const {
    switch (hint) {
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0;
    case SH_ItemView_ShowDecorationSelected:
        return 1;
    case SH_Menu_MouseTracking:
    case SH_MenuBar_MouseTracking:
    case SH_ComboBox_ListMouseTracking:
        return 1;
    case SH_Menu_SupportsSections:
        return 1;
    case SH_Menu_SloppySubMenus:
        return 1;
    case SH_ScrollBar_LeftClickAbsolutePosition:
        return 0;
    case SH_Slider_AbsoluteSetButtons:
        return static_cast<int>(Qt::LeftButton);
    case SH_Slider_PageSetButtons:
        return 0;
    case SH_MessageBox_CenterButtons:
        return 0;
    case SH_DialogButtonLayout: // as in the sheets, on each desktop: what is asked for stands last
        return QDialogButtonBox::GnomeLayout;
    case SH_Widget_Animation_Duration:
        return std::min(kLongestMotion, QProxyStyle::styleHint(hint, option, widget, data));
    case SH_ToolTipLabel_Opacity:
        return 255;
    case SH_ToolTip_WakeUpDelay:
        return 500;
    case SH_FormLayoutLabelAlignment:
        return Qt::AlignRight | Qt::AlignVCenter;
    default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

QSize ChromeStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                    const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    switch (type) {
    case CT_PushButton: {
        const bool hasText = !qstyleoption_cast<const QStyleOptionButton*>(option) ||
                             !qstyleoption_cast<const QStyleOptionButton*>(option)->text.isEmpty();
        const int least = hasText ? m.leastButton : m.controlHeight;
        return {std::max(least, contents.width() + 2 * m.controlPadding), m.controlHeight};
    }
    case CT_ToolButton: {
        const auto* tool = qstyleoption_cast<const QStyleOptionToolButton*>(option);
        if (!tool || tool->toolButtonStyle == Qt::ToolButtonIconOnly)
            return {m.controlHeight, m.controlHeight};
        const int arrow = tool->features.testFlag(QStyleOptionToolButton::HasMenu) ? m.chevron : 0;
        return {contents.width() + m.groupGap + m.tightGap + arrow, m.controlHeight};
    }
    case CT_ComboBox:
        return {contents.width() + 2 * m.controlPadding + m.chevron + m.groupGap, m.controlHeight};
    case CT_SpinBox:
        return {contents.width() + m.chevron + m.gap + 2 * m.tightGap, m.controlHeight};
    case CT_LineEdit:
        return {size.width() + 2 * m.gap, m.controlHeight};
    case CT_TabBarTab:
        return {size.width(), m.rowHeight + m.tightGap};
    case CT_ItemViewItem:
        return {size.width(), std::max(size.height(), m.rowHeight)};
    case CT_MenuBarItem:
        return {contents.width() + 2 * m.controlPadding, m.menuBarHeight};
    case CT_MenuItem: {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (!item) return size;
        if (item->menuItemType == QStyleOptionMenuItem::Separator)
            return {contents.width(), item->text.isEmpty() ? m.gap + 1 : m.rowHeight};
        int width = contents.width() + 2 * m.groupGap;
        if (item->menuHasCheckableItems || item->maxIconWidth > 0) width += m.smallIcon + m.gap;
        if (item->text.contains(QLatin1Char('\t'))) width += 2 * m.margin;
        if (item->menuItemType == QStyleOptionMenuItem::SubMenu) width += m.chevron + m.margin;
        const QSize picture = PictureMenu::pictureOf(*item, widget);
        if (picture.isEmpty()) return {width, m.rowHeight};
        return {width + picture.width() + m.gap, std::max(m.rowHeight, picture.height() + 2 * m.inset)};
    }
    default:
        return size;
    }
}

QRect ChromeStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                  const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    const QRect rect = option->rect;
    const int arrow = m.chevron + m.gap;
    const auto visual = [&](const QRect& room) { return visualRect(option->direction, rect, room); };
    if (control == CC_ComboBox && part == SC_ComboBoxArrow)
        return visual({rect.right() + 1 - arrow, rect.top(), arrow - m.tightGap, rect.height()});
    if (control == CC_ComboBox && part == SC_ComboBoxEditField) {
        const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        const int left = combo && combo->editable ? m.tightGap : m.controlPadding;
        return visual(rect.adjusted(left, 1, -arrow, -1));
    }
    if (control == CC_SpinBox) {
        const int half = rect.height() / 2;
        const int left = rect.right() + 1 - arrow;
        const int border = m.px(3);
        if (part == SC_SpinBoxUp) return visual({left, rect.top() + border, arrow - border, half - border});
        if (part == SC_SpinBoxDown) return visual({left, rect.top() + half, arrow - border, half - border});
        if (part == SC_SpinBoxEditField) return visual(rect.adjusted(m.tightGap, 1, -arrow, -1));
    }
    if (control == CC_ScrollBar) {
        // No arrows: the groove is the whole bar.
        if (part == SC_ScrollBarAddLine || part == SC_ScrollBarSubLine) return {};
        if (part == SC_ScrollBarGroove) return rect;
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (!bar) return {};
        const bool across = bar->orientation == Qt::Horizontal;
        const int length = across ? rect.width() : rect.height();
        const int range = bar->maximum - bar->minimum;
        const int shown = range + bar->pageStep;
        const int least = std::min(length, pixelMetric(PM_ScrollBarSliderMin, option, widget));
        const int thumb =
            shown <= 0 ? length
                       : std::clamp(static_cast<int>(qint64(length) * bar->pageStep / shown), least, length);
        const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                                  length - thumb, bar->upsideDown);
        const auto along = [&](int from, int count) {
            return across ? QRect(rect.left() + from, rect.top(), count, rect.height())
                          : QRect(rect.left(), rect.top() + from, rect.width(), count);
        };
        if (part == SC_ScrollBarSlider) return along(start, thumb);
        if (part == SC_ScrollBarSubPage) return along(0, start);
        if (part == SC_ScrollBarAddPage) return along(start + thumb, length - start - thumb);
    }
    if (control == CC_GroupBox) {
        const bool titled = option->subControls.testFlag(SC_GroupBoxLabel) ||
                            option->subControls.testFlag(SC_GroupBoxCheckBox);
        const int title = titled ? m.margin + m.tightGap : 1;
        const int box = option->subControls.testFlag(SC_GroupBoxCheckBox) ? m.checkBox : 0;
        if (part == SC_GroupBoxCheckBox) return visual({rect.left(), rect.top() + m.inset, box, box});
        if (part == SC_GroupBoxLabel)
            return visual({rect.left() + (box ? box + m.gap : 0), rect.top(), rect.width() - box, title});
        if (part == SC_GroupBoxContents) return rect.adjusted(0, title, 0, 0);
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QRect ChromeStyle::subElementRect(SubElement element, const QStyleOption* option,
                                  const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    if (element == SE_LineEditContents) {
        const QRect rect = QProxyStyle::subElementRect(element, option, widget);
        // A spin or combo box has inset its field already.
        const bool inBox = widget && (qobject_cast<const QComboBox*>(widget->parentWidget()) ||
                                      qobject_cast<const QAbstractSpinBox*>(widget->parentWidget()));
        const int inset = inBox ? m.tightGap : m.gap;
        return rect.adjusted(inset, 0, -inset, 0);
    }
    if (element == SE_CheckBoxFocusRect || element == SE_RadioButtonFocusRect)
        return QProxyStyle::subElementRect(element, option, widget)
            .adjusted(-m.inset, -m.px(1), m.inset, m.px(1));
    return QProxyStyle::subElementRect(element, option, widget);
}

} // namespace qirn
