#include "kit/style/ChromeStyle.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QSlider>
#include <QStyleOption>
#include <QTabBar>

#include "kit/ChromeFont.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

ChromeStyle::ChromeStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void ChromeStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    wheelRule_.watch(*widget);
    if (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget) ||
        qobject_cast<QAbstractSpinBox*>(widget) || qobject_cast<QScrollBar*>(widget) ||
        qobject_cast<QSlider*>(widget) || qobject_cast<QTabBar*>(widget) || widget->inherits("QLineEdit"))
        widget->setAttribute(Qt::WA_Hover);
}

QPalette ChromeStyle::standardPalette() const {
    return QirnKitHost::colors().palette();
}

bool showsFocus(const QStyleOption& option) {
    return option.state.testFlag(QStyle::State_HasFocus) &&
           option.state.testFlag(QStyle::State_KeyboardFocusChange);
}

void ChromeStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& colors = QirnKitHost::colors();
    QPainter& p = *painter;
    switch (element) {
    case PE_FrameFocusRect:
        // The rows of a list draw their own ring.
        if (showsFocus(*option) && !qobject_cast<const QAbstractItemView*>(widget))
            ChromePaint::focusRing(p, option->rect, m.smallRadius);
        return;
    case PE_PanelButtonTool:
    case PE_FrameButtonTool:
        drawToolPanel(*option, p, widget);
        return;
    case PE_PanelLineEdit:
    case PE_FrameLineEdit:
        // The field inside a combo or spin box has the box's own frame.
        if (!widget || !(qobject_cast<const QComboBox*>(widget->parentWidget()) ||
                         qobject_cast<const QAbstractSpinBox*>(widget->parentWidget())))
            drawField(*option, p, option->rect);
        return;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        drawCheckMark(*option, p);
        return;
    case PE_IndicatorRadioButton:
        drawRadioMark(*option, p);
        return;
    case PE_PanelMenu:
        p.fillRect(option->rect, colors.popup);
        return;
    case PE_FrameMenu:
        ChromePaint::box(p, option->rect, 0, {}, colors.edge);
        return;
    case PE_PanelTipLabel:
        ChromePaint::box(p, option->rect, 0, colors.popup, colors.edge);
        return;
    case PE_PanelItemViewItem:
        drawRow(*option, p);
        return;
    case PE_PanelItemViewRow:
        return; // the item draws its whole row
    case PE_Frame:
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option)) drawFrame(*frame, p);
        return;
    case PE_FrameStatusBarItem:
    case PE_FrameTabBarBase:
    case PE_FrameDefaultButton:
    case PE_FrameDockWidget:
        return;
    case PE_PanelStatusBar:
        p.fillRect(option->rect, colors.panel);
        return;
    case PE_IndicatorArrowUp:
        ChromePaint::icon(p, option->rect, Icon::chevronUp, m.chevron, colors.dim);
        return;
    case PE_IndicatorArrowDown:
        ChromePaint::icon(p, option->rect, Icon::chevronDown, m.chevron, colors.dim);
        return;
    case PE_IndicatorArrowRight:
        ChromePaint::icon(p, option->rect, Icon::chevronRight, m.chevron, colors.dim);
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void ChromeStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    const ChromeColors& colors = QirnKitHost::colors();
    QPainter& p = *painter;
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const auto* tool = qstyleoption_cast<const QStyleOptionToolButton*>(option);
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    const auto* menu = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    switch (element) {
    case CE_PushButtonBevel:
        if (button) drawPushBevel(*button, p);
        return;
    case CE_PushButtonLabel:
        if (button) drawPushLabel(*button, p);
        return;
    case CE_ToolButtonLabel:
        if (tool) drawToolLabel(*tool, p);
        return;
    case CE_ComboBoxLabel:
        if (combo) drawComboLabel(*combo, p, widget);
        return;
    case CE_MenuItem:
        if (menu) drawMenuRow(*menu, p, widget);
        return;
    case CE_MenuBarItem:
        if (menu) drawMenuBarItem(*menu, p);
        return;
    case CE_MenuBarEmptyArea:
        p.fillRect(option->rect, colors.bar);
        return;
    case CE_MenuEmptyArea:
        return;
    case CE_TabBarTabShape:
        if (tab) drawTab(*tab, p);
        return;
    case CE_TabBarTabLabel:
        if (tab) drawTabLabel(*tab, p);
        return;
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
        p.fillRect(option->rect, colors.panel);
        ChromePaint::line(p, option->rect, ChromePaint::Side::bottom, colors.divider);
        return;
    case CE_Splitter:
        p.fillRect(option->rect, colors.panel);
        return;
    default:
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void ChromeStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
    QPainter& p = *painter;
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ToolButton) {
        if (const auto* tool = qstyleoption_cast<const QStyleOptionToolButton*>(option))
            drawToolButton(*tool, p, widget);
    } else if (control == CC_ComboBox) {
        if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option))
            drawCombo(*combo, p, widget);
    } else if (control == CC_SpinBox) {
        if (const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option))
            drawSpin(*spin, p, widget);
    } else if (control == CC_GroupBox) {
        if (const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(option))
            drawGroup(*group, p, widget);
    } else if (control == CC_Slider && slider) {
        drawSlider(*slider, p, widget);
    } else if (control == CC_ScrollBar && slider) {
        drawScrollBar(*slider, p, widget);
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

QIcon ChromeStyle::standardIcon(StandardPixmap pixmap, const QStyleOption* option,
                                const QWidget* widget) const {
    switch (pixmap) {
    case SP_MessageBoxWarning:
    case SP_MessageBoxCritical:
        return Icons::themed(Icon::warning);
    case SP_MessageBoxInformation:
        return Icons::themed(Icon::info);
    case SP_MessageBoxQuestion:
        return Icons::themed(Icon::help);
    case SP_DirIcon:
    case SP_DirHomeIcon:
    case SP_DirOpenIcon:
        return Icons::themed(Icon::folder);
    case SP_FileDialogNewFolder:
        return Icons::themed(Icon::folderNew);
    case SP_FileDialogToParent:
        return Icons::themed(Icon::arrowUp);
    case SP_FileIcon:
        return Icons::themed(Icon::file);
    case SP_FileDialogBack:
    case SP_ArrowBack:
        return Icons::themed(Icon::arrowLeft);
    case SP_ArrowForward:
        return Icons::themed(Icon::arrowRight);
    case SP_FileDialogListView:
        return Icons::themed(Icon::grid);
    case SP_FileDialogDetailedView:
        return Icons::themed(Icon::list);
    case SP_ComputerIcon:
    case SP_DesktopIcon:
    case SP_DriveHDIcon:
        return Icons::themed(Icon::computer);
    case SP_DialogCloseButton:
    case SP_LineEditClearButton:
        return Icons::themed(Icon::close);
    default:
        return QProxyStyle::standardIcon(pixmap, option, widget);
    }
}

} // namespace qirn
