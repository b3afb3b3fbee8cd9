#pragma once
#include "formats/palettes/Palette.h"

#include <optional>
#include <vector>

#include <QWidget>

namespace qirn {

/// Colors as squares in rows that fill the width; draws those alone that are seen. A click picks one; the arrow keys move a
/// mark and Return or Space picks. Tips and a screen reader have the name of a color and its hexadecimal number.
class SwatchGrid : public QWidget {
    Q_OBJECT
public:
    enum class Editing {
        no,
        yes
    }; ///< With a context item that removes, and a drag that reorders while `canReorder`.
    SwatchGrid(const QString& objectName, const QString& accessibleName, Editing editing, QWidget* parent);

    void setColors(const std::vector<PaletteColor>& colors);
    const std::vector<PaletteColor>& colors() const { return colors_; }
    void setChosen(const PaintColor& color); ///< Marks the first of its red, green and blue.
    void setCanReorder(bool can) { canReorder_ = can; }

    int current() const { return current_; } ///< The one of the keyboard's mark; -1 without colors.
    QString nameOf(int index) const;         ///< As "Sand #F1C27D".
    QRectF cell(int index) const;
    int indexAt(QPointF position) const; ///< -1 for none.

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

Q_SIGNALS:
    void picked(int index);
    void removed(int index);      ///< The user asks for it; the colors are the owner's to change.
    void moved(int from, int to); ///< As above: the color at `from` is to stand at `to`.

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    int columns(int width) const;
    int count() const { return static_cast<int>(colors_.size()); }
    int gapAt(
        QPointF position) const; ///< The one that a drag ends in: before the color of this index; -1 outside.
    void setCurrent(int index);
    void setHovered(int index);
    void updateCell(int index);
    void drawSwatch(QPainter& painter, int index) const;
    void drawGap(QPainter& painter) const;

    Editing editing_;
    std::vector<PaletteColor> colors_;
    std::optional<PaintColor> chosenColor_;
    int chosen_ = -1;
    int current_ = -1;
    int hovered_ = -1;
    bool canReorder_ = false;
    int pressed_ = -1; // while a button is down on one
    bool dragging_ = false;
    QPointF pressedAt_;
    int gap_ = -1; // while dragging
};

} // namespace qirn
