#pragma once
#include "core/Layer.h"

#include <cstdint>
#include <vector>

#include <QAbstractListModel>

namespace qirn {

class LayerThumbnails;
class PaintModel;

/// The layers of the current picture as rows, the top one first. A row stands for a layer's id: it stays the same row
/// when the layer moves, so that a view keeps its place. Settings are shown as they are now, thumbnails of the latest
/// commit.
class LayersModel : public QAbstractListModel {
    Q_OBJECT
public:
    LayersModel(PaintModel& model, QObject* parent); ///< Borrows the model.

    static constexpr int kMarksRole = Qt::UserRole + 1; ///< A short text at the end of the row.

    void refresh();                    ///< Reads the picture again and tells the views what is different.
    void setThumbnailSide(int pixels); ///< Of the display.
    int64_t layerOfRow(int row) const { return rowCount() - 1 - row; }
    int rowOfLayer(int64_t index) const { return static_cast<int>(rowCount() - 1 - index); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override; ///< The thumbnail is the decoration.
    /// The check state is the layer's eye.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void rowChanged(int row);

    PaintModel& model_;
    TileGrid grid_;
    std::vector<LayerState> rows_; // the tiles are those of the latest commit
    LayerThumbnails* thumbnails_;
    int side_ = 32;
};

} // namespace qirn
