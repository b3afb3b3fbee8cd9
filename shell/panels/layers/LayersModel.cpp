#include "shell/panels/layers/LayersModel.h"

#include "app/desktop/HostWords.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "platform/CheckedMath.h"
#include "shell/panels/layers/LayerThumbnails.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <utility>

namespace qirn {

namespace {

using Rows = std::vector<LayerState>;

/// Of the latest commit; none for a layer that is in none.
TileArray committedTiles(const Rows& committed, int64_t index, const QUuid& id) {
    const auto isIt = [&](const LayerState& layer) { return layer.id == id; };
    if (index < std::ssize(committed) && isIt(committed[checkedSize(index)]))
        return committed[checkedSize(index)].tiles;
    const auto found = std::find_if(committed.begin(), committed.end(), isIt);
    return found == committed.end() ? TileArray() : found->tiles;
}

/// From the top, as they are now with the tiles of the latest commit.
Rows rowsOf(const PaintDocument& doc) {
    const Rows& committed = doc.history()[checkedSize(doc.undoDepth())].state.layers;
    Rows rows;
    rows.reserve(checkedSize(doc.layerCount()));
    for (int64_t i = doc.layerCount(); i-- > 0;) {
        const Layer& layer = doc.layer(i);
        rows.push_back({layer.settings(), layer.id, committedTiles(committed, i, layer.id)});
    }
    return rows;
}

std::set<QUuid> idsOf(const Rows& rows) {
    std::set<QUuid> ids;
    for (const LayerState& row : rows) ids.insert(row.id);
    return ids;
}

bool isSameStack(const Rows& a, const Rows& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const LayerState& x, const LayerState& y) { return x.id == y.id; });
}

/// A layer in words: "Sky, hidden, locked, opacity 50%".
QString spoken(const LayerState& layer) {
    QStringList words{layer.name};
    for (const LayerMark& mark : kLayerMarks)
        if (const char* word = layer.*mark.flag ? mark.word : mark.wordOff) words << LayerMark::text(word);
    words << LayersModel::tr("opacity %L1%").arg(std::lround(layer.opacity * 100));
    return words.join(QStringLiteral(", "));
}

} // namespace

LayersModel::LayersModel(PaintModel& model, QObject* parent)
    : QAbstractTableModel(parent),
      model_(model),
      thumbnails_(new LayerThumbnails(this)) {
    connect(thumbnails_, &LayerThumbnails::ready, this, [this](const QUuid& layer) {
        for (int row = 0; row < rowCount(); ++row)
            if (rows_[checkedSize(row)].id == layer) rowChanged(row);
    });
}

bool LayersModel::refresh() {
    const DocSession* session = model_.current();
    const Seen now = session ? Seen{session->id, session->revision(), session->doc().changeCount()} : Seen();
    if (now == seen_) return false;
    Rows wanted = session ? rowsOf(session->doc()) : Rows();
    const bool isOtherGrid = session && session->doc().grid() != grid_;
    if (session) grid_ = session->doc().grid();
    if (now.picture != seen_.picture) {
        beginResetModel();
        thumbnails_->forgetAll();
        rows_ = std::move(wanted);
        endResetModel();
    } else {
        if (!isSameStack(rows_, wanted)) {
            removeGone(wanted);
            insertNew(wanted);
            reorder(wanted);
        }
        for (int row = 0; row < rowCount(); ++row) {
            LayerState& shown = rows_[checkedSize(row)];
            LayerState& layer = wanted[checkedSize(row)];
            const bool hasOtherPixels = isOtherGrid || shown.tiles.identity() != layer.tiles.identity();
            if (!hasOtherPixels && shown == static_cast<const LayerSettings&>(layer)) continue;
            if (hasOtherPixels) thumbnails_->outdate(layer.id);
            shown = std::move(layer);
            rowChanged(row);
        }
    }
    seen_ = now;
    return true;
}

// What follows goes by runs of rows: views lay themselves out after each.

void LayersModel::removeGone(const Rows& wanted) {
    const std::set<QUuid> ids = idsOf(wanted);
    const auto isGone = [&](int row) { return !ids.contains(rows_[checkedSize(row)].id); };
    for (int last = rowCount() - 1; last >= 0; --last) {
        if (!isGone(last)) continue;
        int first = last;
        while (first > 0 && isGone(first - 1)) --first;
        beginRemoveRows({}, first, last);
        for (int row = first; row <= last; ++row) thumbnails_->forget(rows_[checkedSize(row)].id);
        rows_.erase(rows_.begin() + first, rows_.begin() + last + 1);
        endRemoveRows();
        last = first;
    }
}

void LayersModel::insertNew(const Rows& wanted) {
    const std::set<QUuid> ids = idsOf(rows_);
    const auto isNew = [&](int row) { return !ids.contains(wanted[checkedSize(row)].id); };
    const int count = static_cast<int>(wanted.size());
    for (int first = 0; first < count; ++first) {
        if (!isNew(first)) continue;
        int end = first + 1;
        while (end < count && isNew(end)) ++end;
        beginInsertRows({}, first, end - 1);
        rows_.insert(rows_.begin() + first, wanted.begin() + first, wanted.begin() + end);
        endInsertRows();
        first = end - 1;
    }
}

void LayersModel::reorder(const Rows& wanted) {
    const auto placeIn = [](const Rows& rows, int from, const QUuid& id) {
        const auto found = std::find_if(rows.begin() + from, rows.end(),
                                        [&](const LayerState& layer) { return layer.id == id; });
        return static_cast<int>(found - rows.begin());
    };
    for (int row = 0; row < rowCount();) {
        const auto at = rows_.begin() + row;
        const QUuid& id = wanted[checkedSize(row)].id;
        if (at->id == id) {
            ++row;
            continue;
        }
        const int old = placeIn(rows_, row, id);
        if (old == row + 1) { // the layer shown here has moved down
            const int place = placeIn(wanted, row, at->id);
            beginMoveRows({}, row, row, {}, place + 1);
            std::rotate(at, at + 1, rows_.begin() + place + 1);
        } else {
            beginMoveRows({}, old, old, {}, row);
            std::rotate(at, rows_.begin() + old, rows_.begin() + old + 1);
        }
        endMoveRows();
    }
}

void LayersModel::rowChanged(int row) {
    Q_EMIT dataChanged(index(row, 0), index(row, kLayerColumns - 1));
}

const LayerState& LayersModel::layer(int row) const {
    return rows_[checkedSize(row)];
}

QImage LayersModel::thumbnail(int row, int side) const {
    return thumbnails_->of(layer(row).id, grid_, layer(row).tiles, side);
}

int LayersModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int LayersModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kLayerColumns;
}

QVariant LayersModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const LayerState& shown = layer(index.row());
    if (const LayerMark* mark = markOfColumn(index.column())) {
        const bool on = shown.*mark->flag;
        if (role == Qt::CheckStateRole) return on ? Qt::Checked : Qt::Unchecked;
        if (role == Qt::ToolTipRole) return LayerMark::text(on ? mark->tip : mark->tipOff);
        if (role == Qt::AccessibleTextRole)
            return QStringLiteral("%1, %2").arg(LayerMark::text(mark->name), shown.name);
        return {};
    }
    if (role == Qt::DisplayRole || role == Qt::EditRole) return shown.name;
    if (role == Qt::ToolTipRole) return plainTip(shown.name);
    if (role == Qt::AccessibleTextRole) return spoken(shown);
    return {};
}

bool LayersModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || index.row() >= rowCount()) return false;
    const LayerMark* mark = markOfColumn(index.column());
    if (role != (mark ? Qt::CheckStateRole : Qt::EditRole)) return false;
    return guarded(model_, [&] {
        if (mark)
            LayerEdits::setMark(model_, layerOfRow(index.row()), mark->flag, value.toInt() == Qt::Checked);
        else
            LayerEdits::renameLayer(model_, QUuid(layer(index.row()).id), value.toString());
    });
}

Qt::ItemFlags LayersModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    const Qt::ItemFlags all = QAbstractTableModel::flags(index);
    return markOfColumn(index.column()) ? all | Qt::ItemIsUserCheckable : all | Qt::ItemIsEditable;
}

} // namespace qirn
