#include "shell/panels/layers/LayerRowDelegate.h"

#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "kit/style/ChromeStyle.h"
#include "shell/panels/layers/LayersList.h"
#include "shell/panels/layers/LayersModel.h"

#include <algorithm>
#include <cmath>

#include <QLineEdit>

namespace qirn {

namespace {

// Of the grid at zoom 1.
constexpr double kRow = 40, kThumbnail = 32, kEye = 28, kMark = 22, kChip = 20, kClipIndent = 8;

int thumbnailSide() {
    return QirnKitHost::metrics().px(kThumbnail);
}

/// A clipped layer stands behind the one that it is clipped to.
QRect thumbnailRoom(const QRect& cell, bool isClipping) {
    const Metrics& m = QirnKitHost::metrics();
    const int left = cell.left() + (isClipping ? m.px(kClipIndent) : 0);
    return {left, cell.top() + (cell.height() - thumbnailSide()) / 2, thumbnailSide(), thumbnailSide()};
}

/// "100%", or "50% · Multiply".
QString detailOf(const LayerState& layer) {
    const QString opacity = LayerRowDelegate::tr("%L1%").arg(std::lround(layer.opacity * 100));
    if (layer.blendMode == BlendMode::normal) return opacity;
    const char* mode = kBlendModes[static_cast<std::size_t>(layer.blendMode)].displayName;
    return QStringLiteral("%1 · %2").arg(opacity, QCoreApplication::translate("BlendMode", mode));
}

} // namespace

LayerRowDelegate::LayerRowDelegate(const LayersModel& rows, LayersList& list)
    : QStyledItemDelegate(&list),
      rows_(rows),
      list_(list) {}

int LayerRowDelegate::rowHeight() {
    return QirnKitHost::metrics().px(kRow);
}

int LayerRowDelegate::markWidth(LayerColumn mark) {
    const Metrics& m = QirnKitHost::metrics();
    const int margin = mark == LayerColumn::clip ? m.tightGap : 0; // the last one
    return m.px(mark == LayerColumn::eye ? kEye : kMark) + margin;
}

void LayerRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const int row = index.row();
    const QModelIndex current = list_.currentIndex();
    const bool nameHasKeys = list_.hasFocus() && current.row() == row && !markOfColumn(current.column());
    painter->save();
    painter->setClipRect(cell.rect, Qt::IntersectClip);

    QStyleOptionViewItem whole = cell; // each cell draws its part of what lies under the row
    whole.rect = list_.rowRect(row);
    whole.state.setFlag(QStyle::State_MouseOver, row == list_.hoveredRow());
    whole.state.setFlag(QStyle::State_HasFocus, nameHasKeys);
    list_.style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &whole, painter, &list_);

    const LayerMark* mark = markOfColumn(index.column());
    if (mark && isShown(*mark, row))
        paintMark(*painter, cell.rect, *mark, row);
    else
        paintName(*painter, cell, row); // a long name goes on where no mark is
    if (mark && showsFocus(cell) && current == index)
        ChromePaint::focusRing(*painter, cell.rect, QirnKitHost::metrics().smallRadius);
    painter->restore();
}

bool LayerRowDelegate::isShown(const LayerMark& mark, int row) const {
    return rows_.layer(row).*mark.flag || mark.column == LayerColumn::eye || list_.showsAllMarks(row);
}

QRect LayerRowDelegate::nameRoom(int row) const {
    const Metrics& m = QirnKitHost::metrics();
    const QRect whole = list_.rowRect(row);
    const QRect cell = cellRoom(row, LayerColumn::name);
    int right = whole.right() - m.gap;
    for (const LayerMark& mark : kLayerMarks) {
        const int left = cellRoom(row, mark.column).left();
        if (left > cell.left() && isShown(mark, row)) right = std::min(right, left - m.inset);
    }
    QRect room = cell;
    room.setLeft(thumbnailRoom(cell, rows_.layer(row).isClipping).right() + 1 + m.gap);
    room.setRight(right);
    return ChromePaint::visual(whole, room);
}

QRect LayerRowDelegate::cellRoom(int row, LayerColumn column) const {
    return ChromePaint::visual(list_.rowRect(row),
                               list_.visualRect(rows_.index(row, static_cast<int>(column))));
}

void LayerRowDelegate::paintMark(QPainter& painter, const QRect& cell, const LayerMark& mark, int row) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const bool on = rows_.layer(row).*mark.flag;
    const bool isEye = mark.column == LayerColumn::eye;
    QRectF chip(0, 0, m.px(kChip), m.px(kChip));
    chip.moveCenter(QRectF(cell).center());
    const bool isHovered = list_.hovered() == rows_.index(row, static_cast<int>(mark.column));
    // What is on stands on a chip, but for the eye, which is another picture when it is off.
    if (isHovered || (on && !isEye))
        ChromePaint::box(painter, chip, m.smallRadius, isHovered ? c.hover : c.raised, c.edge);
    ChromePaint::icon(painter, chip, on ? mark.icon : mark.iconOff, m.smallIcon, on ? c.text : c.dim);
}

void LayerRowDelegate::paintName(QPainter& painter, const QStyleOptionViewItem& option, int row) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const LayerState& layer = rows_.layer(row);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const QRect cell = list_.visualRect(rows_.index(row, static_cast<int>(LayerColumn::name)));
    if (option.rect == cell)
        paintThumbnail(painter,
                       ChromePaint::visual(list_.rowRect(row),
                                           thumbnailRoom(cellRoom(row, LayerColumn::name), layer.isClipping)),
                       row);
    const QFont caption = ChromeFont::caption();
    const int top = QFontMetrics(option.font).height(), bottom = QFontMetrics(caption).height();
    QRect text = nameRoom(row);
    text.setTop(text.top() + (text.height() - top - bottom - m.inset) / 2);
    painter.setFont(option.font);
    text.setHeight(top);
    ChromePaint::text(painter, text, Qt::AlignLeft | Qt::AlignVCenter, layer.name,
                      layer.isVisible || isSelected ? c.text : c.dim);
    painter.setFont(caption);
    text = {text.left(), text.bottom() + 1 + m.inset, text.width(), bottom};
    ChromePaint::text(painter, text, Qt::AlignLeft | Qt::AlignVCenter, detailOf(layer),
                      isSelected ? c.text : c.dim);
}

/// On a checkerboard, at the display's own pixels.
void LayerRowDelegate::paintThumbnail(QPainter& painter, const QRectF& room, int row) const {
    const Metrics& m = QirnKitHost::metrics();
    const double ratio = ChromePaint::deviceRatio(painter);
    const QImage image = rows_.thumbnail(row, static_cast<int>(std::lround(thumbnailSide() * ratio)));
    if (image.isNull()) return;
    QRectF rect({}, QSizeF(image.size()).scaled(room.size(), Qt::KeepAspectRatio));
    rect.moveCenter(room.center());
    rect = ChromePaint::snapped(painter, rect);
    painter.fillRect(rect, QColor(255, 255, 255));
    const double square = m.px(4);
    for (int y = 0; y * square < rect.height(); ++y) {
        for (int x = y % 2; x * square < rect.width(); x += 2) {
            const QRectF dark(rect.left() + x * square, rect.top() + y * square, square, square);
            painter.fillRect(dark.intersected(rect), QColor(204, 204, 204));
        }
    }
    painter.drawImage(rect, image);
}

QWidget* LayerRowDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                        const QModelIndex&) const {
    auto* field = new QLineEdit(parent);
    field->setObjectName(QStringLiteral("layerName"));
    field->setAccessibleName(tr("Layer name"));
    return field;
}

void LayerRowDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem&,
                                            const QModelIndex& index) const {
    const Metrics& m = QirnKitHost::metrics();
    const QRect whole = list_.rowRect(index.row());
    QRect room = ChromePaint::visual(whole, nameRoom(index.row()));
    room.setLeft(room.left() - m.gap); // its text begins where the name does
    room.setRight(whole.right() - m.inset);
    editor->setGeometry(ChromePaint::visual(whole, room.adjusted(0, m.inset, 0, -m.inset)));
}

} // namespace qirn
