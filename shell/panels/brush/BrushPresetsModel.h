#pragma once
#include "app/files/BrushPreviewCache.h"

#include <vector>

#include <QAbstractListModel>

namespace qirn {

/// Presets as rows, each category under a row with its name. A category's row can be neither chosen nor made current.
class BrushPresetsModel : public QAbstractListModel {
    Q_OBJECT
public:
    BrushPresetsModel(BrushPreviewCache& previews, QObject* parent); ///< Borrows the previews.

    void show(const std::vector<BrushSettings>& brushes); ///< Their order stays, category by category.
    const BrushSettings* brushOf(const QModelIndex& index) const; ///< Null for a category.
    QModelIndex indexOf(const QUuid& brush) const;                ///< Of the first with this id.
    /// The latest that there is, null at first; where it is not the right one, that is asked for.
    const QImage& previewOf(const QModelIndex& index, double scale) const;
    void askForAll(double scale) const; ///< What does not have its preview yet.

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    struct Row {
        QString title; ///< The brush's name, or the category's.
        std::optional<BrushSettings> brush;
        mutable BrushPicture picture;
    };

    BrushPreviewCache& previews_;
    std::vector<BrushSettings> shown_;
    std::vector<Row> rows_;
};

} // namespace qirn
