#pragma once
#include <QProxyStyle>

#include "kit/style/WheelRule.h"

class QStyleOptionButton;
class QStyleOptionComboBox;
class QStyleOptionFrame;
class QStyleOptionGroupBox;
class QStyleOptionMenuItem;
class QStyleOptionSlider;
class QStyleOptionSpinBox;
class QStyleOptionTab;
class QStyleOptionToolButton;

namespace qirn {

/// Draws every control of the program from the theme's colors and the grid of `Metrics`. Geometry that it does
/// not give comes from Fusion.
///
/// A focus ring is drawn where the focus came by the keyboard, and always round text fields.
class ChromeStyle : public QProxyStyle {
    Q_OBJECT
public:
    ChromeStyle();

    void polish(QWidget* widget) override;
    using QProxyStyle::polish;
    QPalette standardPalette() const override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget = nullptr) const override;

    int pixelMetric(PixelMetric metric, const QStyleOption* option = nullptr,
                    const QWidget* widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption* option = nullptr, const QWidget* widget = nullptr,
                  QStyleHintReturn* data = nullptr) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget = nullptr) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget = nullptr) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget = nullptr) const override;
    QIcon standardIcon(StandardPixmap pixmap, const QStyleOption* option = nullptr,
                       const QWidget* widget = nullptr) const override;

private:
    // ChromeStyleButtons.cpp
    void drawPushBevel(const QStyleOptionButton& option, QPainter& painter) const;
    void drawPushLabel(const QStyleOptionButton& option, QPainter& painter) const;
    void drawToolPanel(const QStyleOption& option, QPainter& painter, const QWidget* widget) const;
    void drawToolLabel(const QStyleOptionToolButton& option, QPainter& painter) const;
    void drawToolButton(const QStyleOptionToolButton& option, QPainter& painter, const QWidget* widget) const;
    void drawCheckMark(const QStyleOption& option, QPainter& painter) const;
    void drawRadioMark(const QStyleOption& option, QPainter& painter) const;
    // ChromeStyleFields.cpp
    void drawField(const QStyleOption& option, QPainter& painter, const QRect& rect) const;
    void drawCombo(const QStyleOptionComboBox& option, QPainter& painter, const QWidget* widget) const;
    void drawComboLabel(const QStyleOptionComboBox& option, QPainter& painter, const QWidget* widget) const;
    void drawSpin(const QStyleOptionSpinBox& option, QPainter& painter, const QWidget* widget) const;
    void drawGroup(const QStyleOptionGroupBox& option, QPainter& painter, const QWidget* widget) const;
    // ChromeStyleMenus.cpp
    void drawMenuRow(const QStyleOptionMenuItem& option, QPainter& painter, const QWidget* menu) const;
    void drawMenuBarItem(const QStyleOptionMenuItem& option, QPainter& painter) const;
    // ChromeStyleSliders.cpp
    void drawSlider(const QStyleOptionSlider& option, QPainter& painter, const QWidget* widget) const;
    void drawScrollBar(const QStyleOptionSlider& option, QPainter& painter, const QWidget* widget) const;
    // ChromeStyleViews.cpp
    void drawRow(const QStyleOption& option, QPainter& painter) const;
    void drawTab(const QStyleOptionTab& option, QPainter& painter) const;
    void drawTabLabel(const QStyleOptionTab& option, QPainter& painter) const;
    void drawFrame(const QStyleOptionFrame& option, QPainter& painter) const;

    WheelRule wheelRule_;
};

/// True where the focus came by the keyboard.
bool showsFocus(const QStyleOption& option);

} // namespace qirn
