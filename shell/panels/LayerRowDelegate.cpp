#include "shell/panels/LayerRowDelegate.h"

#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "shell/panels/LayersModel.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace qirn {

namespace {

int rowHeight() {
    return LayerRowDelegate::rowHeight();
}

QRect eyeRect(const QRect& row) {
    return {row.left(), row.top(), rowHeight(), row.height()};
}

QRectF thumbnailRect(const QRect& row) {
    const int side = QirnKitHost::metrics().px(26);
    return QRectF(row.left() + rowHeight() + (rowHeight() - side) / 2.0,
                  row.top() + (row.height() - side) / 2.0, side, side);
}

/// On a checkerboard, at the display's own pixels.
void paintThumbnail(QPainter& painter, const QRectF& room, const QImage& image) {
    if (image.isNull()) return;
    const double ratio = ChromePaint::deviceRatio(painter);
    QRectF rect({}, QSizeF(image.size()) / ratio);
    rect.moveCenter(room.center());
    rect = ChromePaint::snapped(painter, rect);
    painter.fillRect(rect, QColor(255, 255, 255));
    const double square = QirnKitHost::metrics().px(4);
    for (int y = 0; y * square < rect.height(); ++y) {
        for (int x = y % 2; x * square < rect.width(); x += 2) {
            const QRectF dark(rect.left() + x * square, rect.top() + y * square, square, square);
            painter.fillRect(dark.intersected(rect), QColor(204, 204, 204));
        }
    }
    painter.drawImage(rect, image);
}

bool isShown(const QModelIndex& index) {
    return index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
}

} // namespace

int LayerRowDelegate::rowHeight() {
    return QirnKitHost::metrics().px(34);
}

void LayerRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    row.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &row, painter, row.widget);
    const bool shown = isShown(index);
    const bool selected = row.state.testFlag(QStyle::State_Selected);
    ChromePaint::icon(*painter, eyeRect(row.rect), shown ? Icon::eye : Icon::eyeOff, m.smallIcon,
                      selected ? c.text
                      : shown  ? c.dim
                               : c.faint);
    painter->save();
    paintThumbnail(*painter, thumbnailRect(row.rect), index.data(Qt::DecorationRole).value<QImage>());
    QRectF text = QRectF(row.rect).adjusted(2 * rowHeight() + m.tightGap, 0, -m.groupGap, 0);
    const QString marks = index.data(LayersModel::kMarksRole).toString();
    painter->setFont(ChromeFont::caption());
    const int marksWidth = marks.isEmpty() ? 0 : painter->fontMetrics().horizontalAdvance(marks) + m.gap;
    ChromePaint::text(*painter, text, Qt::AlignRight | Qt::AlignVCenter, marks, selected ? c.text : c.dim);
    painter->setFont(row.font);
    text.setRight(text.right() - marksWidth);
    ChromePaint::text(*painter, text, Qt::AlignLeft | Qt::AlignVCenter, row.text,
                      shown || selected ? c.text : c.dim);
    painter->restore();
}

QSize LayerRowDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {0, rowHeight()};
}

bool LayerRowDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                   const QStyleOptionViewItem& option, const QModelIndex& index) {
    const bool pressed =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    const bool onEye = (pressed || event->type() == QEvent::MouseButtonRelease) &&
                       eyeRect(option.rect).contains(static_cast<QMouseEvent*>(event)->position().toPoint());
    const bool byKey =
        event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space;
    if ((onEye && pressed) || byKey)
        model->setData(index, isShown(index) ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    return onEye || byKey; // a press on the eye does not choose the row
}

} // namespace qirn
