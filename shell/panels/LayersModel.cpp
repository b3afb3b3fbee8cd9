#include "shell/panels/LayersModel.h"

#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "formats/native/PaintFile.h"
#include "platform/CheckedMath.h"
#include "shell/panels/LayerThumbnails.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

namespace qirn {

namespace {

QString marksOf(const LayerSettings& layer) {
    QStringList marks;
    if (layer.isClipping) marks << LayersModel::tr("Clip");
    if (layer.isLocked) marks << LayersModel::tr("Lock");
    if (layer.alphaLocked) marks << LayersModel::tr("α");
    if (layer.opacity < 1) marks << LayersModel::tr("%1%").arg(std::lround(layer.opacity * 100));
    return marks.join(QStringLiteral(" · "));
}

/// The layers from the top, as they are now with the tiles of the latest commit; a layer that is in none has no tiles.
std::vector<LayerState> rowsOf(const PaintDocument& doc) {
    std::map<QUuid, TileArray> committed;
    for (LayerState& layer : snapshotOfLastCommit(doc).layers)
        committed.emplace(layer.id, std::move(layer.tiles));
    std::vector<LayerState> rows;
    for (int64_t i = doc.layerCount(); i-- > 0;) {
        const Layer& layer = doc.layer(i);
        rows.push_back({layer.settings(), layer.id, committed[layer.id]});
    }
    return rows;
}

bool isSame(const LayerState& a, const LayerState& b) {
    return static_cast<const LayerSettings&>(a) == b && a.tiles.identity() == b.tiles.identity();
}

} // namespace

LayersModel::LayersModel(PaintModel& model, QObject* parent)
    : QAbstractListModel(parent),
      model_(model),
      thumbnails_(new LayerThumbnails(this)) {
    connect(thumbnails_, &LayerThumbnails::ready, this, [this](const QUuid& layer) {
        for (int row = 0; row < rowCount(); ++row)
            if (rows_[checkedSize(row)].id == layer) rowChanged(row);
    });
}

void LayersModel::refresh() {
    const DocSession* session = model_.current();
    std::vector<LayerState> wanted = session ? rowsOf(session->doc()) : std::vector<LayerState>();
    if (session) grid_ = session->doc().grid();
    std::set<QUuid> ids;
    for (const LayerState& row : wanted) ids.insert(row.id);
    for (int row = rowCount(); row-- > 0;) {
        if (ids.contains(rows_[checkedSize(row)].id)) continue;
        beginRemoveRows({}, row, row);
        rows_.erase(rows_.begin() + row);
        endRemoveRows();
    }
    thumbnails_->keepOnly(ids);
    for (int row = 0; row < static_cast<int>(wanted.size()); ++row) {
        LayerState& layer = wanted[checkedSize(row)];
        const auto from = rows_.begin() + row;
        const auto found =
            std::find_if(from, rows_.end(), [&](const LayerState& old) { return old.id == layer.id; });
        if (found == rows_.end()) {
            beginInsertRows({}, row, row);
            rows_.insert(from, std::move(layer));
            endInsertRows();
            continue;
        }
        if (found != from) {
            const int old = static_cast<int>(found - rows_.begin());
            beginMoveRows({}, old, old, {}, row);
            std::rotate(from, found, found + 1);
            endMoveRows();
        }
        LayerState& shown = rows_[checkedSize(row)];
        if (isSame(shown, layer)) continue;
        shown = std::move(layer);
        rowChanged(row);
    }
}

void LayersModel::rowChanged(int row) {
    Q_EMIT dataChanged(index(row), index(row));
}

void LayersModel::setThumbnailSide(int pixels) {
    side_ = pixels;
    if (!rows_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

int LayersModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant LayersModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const LayerState& layer = rows_[checkedSize(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return layer.name;
    case Qt::CheckStateRole:
        return layer.isVisible ? Qt::Checked : Qt::Unchecked;
    case Qt::DecorationRole:
        return thumbnails_->of(layer.id, grid_, layer.tiles, side_);
    case kMarksRole:
        return marksOf(layer);
    default:
        return {};
    }
}

bool LayersModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::CheckStateRole) return false;
    const bool isVisible = value.toInt() == Qt::Checked;
    return guarded(model_, [&] {
        LayerEdits::setLayer(model_, layerOfRow(index.row()), tr("Visibility"),
                             [isVisible](Layer& layer) { layer.isVisible = isVisible; });
    });
}

Qt::ItemFlags LayersModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    return QAbstractListModel::flags(index) | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren;
}

} // namespace qirn
