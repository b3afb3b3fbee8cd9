#pragma once
#include "core/Layer.h"
#include "shell/panels/layers/LayerMarks.h"

#include <cstdint>
#include <vector>

#include <QAbstractTableModel>

namespace qirn {

class LayerThumbnails;
class PaintModel;

/// The layers of the current picture as rows, the top one first; its columns are those of `LayerColumn`. A row stands for a
/// layer's id: it stays the same row when the layer moves, so that a view keeps its place. Settings are shown as they are
/// now, thumbnails of the latest commit.
///
/// A name can be set as the text to edit, a mark as the check state; both are steps of the picture.
class LayersModel : public QAbstractTableModel {
    Q_OBJECT
public:
    LayersModel(PaintModel& model, QObject* parent); ///< Borrows the model.

    /// Reads the picture again and tells the views what is different. False where it is the same as the last time.
    bool refresh();
    int64_t layerOfRow(int row) const { return rowCount() - 1 - row; }
    int rowOfLayer(int64_t index) const { return static_cast<int>(rowCount() - 1 - index); }
    const LayerState& layer(int row) const;
    /// The latest that there is, `side` device pixels on its larger side; null at first.
    QImage thumbnail(int row, int side) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    /// Rises with whatever can change a row.
    struct Seen {
        QUuid picture;
        int64_t revision = 0, change = 0;
        bool operator==(const Seen&) const = default;
    };
    void removeGone(const std::vector<LayerState>& wanted);
    void insertNew(const std::vector<LayerState>& wanted);
    void reorder(const std::vector<LayerState>& wanted);
    void rowChanged(int row);

    PaintModel& model_;
    Seen seen_;
    TileGrid grid_;
    std::vector<LayerState> rows_; // the tiles are those of the latest commit
    LayerThumbnails* thumbnails_;
};

} // namespace qirn
