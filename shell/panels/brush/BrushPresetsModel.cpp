#include "shell/panels/brush/BrushPresetsModel.h"

#include "app/desktop/HostWords.h"
#include "platform/CheckedMath.h"

namespace qirn {

BrushPresetsModel::BrushPresetsModel(BrushPreviewCache& previews, QObject* parent)
    : QAbstractListModel(parent),
      previews_(previews) {}

void BrushPresetsModel::show(const std::vector<BrushSettings>& brushes) {
    if (brushes == shown_) return;
    QStringList categories;
    for (const BrushSettings& brush : brushes)
        if (!categories.contains(brush.category)) categories << brush.category;
    beginResetModel();
    shown_ = brushes;
    rows_.clear();
    for (const QString& category : categories) {
        rows_.push_back({category, {}, {}});
        for (const BrushSettings& brush : brushes)
            if (brush.category == category) rows_.push_back({brush.name, brush, {}});
    }
    endResetModel();
}

const BrushSettings* BrushPresetsModel::brushOf(const QModelIndex& index) const {
    if (!index.isValid()) return nullptr;
    const auto& brush = rows_[checkedSize(index.row())].brush;
    return brush ? &*brush : nullptr;
}

QModelIndex BrushPresetsModel::indexOf(const QUuid& brush) const {
    for (std::size_t row = 0; row < rows_.size(); ++row)
        if (rows_[row].brush && rows_[row].brush->id == brush) return index(static_cast<int>(row));
    return {};
}

const QImage& BrushPresetsModel::previewOf(const QModelIndex& index, double scale) const {
    const Row& row = rows_[checkedSize(index.row())];
    return row.picture.of(*row.brush, previews_, scale);
}

void BrushPresetsModel::askForAll(double scale) const {
    for (const Row& row : rows_)
        if (row.brush) row.picture.of(*row.brush, previews_, scale);
}

int BrushPresetsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant BrushPresetsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Row& row = rows_[checkedSize(index.row())];
    if (role == Qt::DisplayRole) return row.title;
    if (role == Qt::ToolTipRole) return plainTip(row.title);
    return {};
}

Qt::ItemFlags BrushPresetsModel::flags(const QModelIndex& index) const {
    return brushOf(index) ? QAbstractListModel::flags(index) | Qt::ItemNeverHasChildren
                          : Qt::ItemNeverHasChildren;
}

} // namespace qirn
