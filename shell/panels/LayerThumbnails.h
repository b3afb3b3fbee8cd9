#pragma once
#include "core/TileArray.h"
#include "core/TileGrid.h"

#include <atomic>
#include <map>
#include <memory>
#include <set>

#include <QImage>
#include <QObject>
#include <QUuid>

namespace qirn {

/// Small pictures of layers, each made anew in the background when the layer's tiles are others than it was made of.
class LayerThumbnails : public QObject {
    Q_OBJECT
public:
    explicit LayerThumbnails(QObject* parent) : QObject(parent) {}
    ~LayerThumbnails() override; ///< Waits for what is being made.

    /// The latest that there is, null at first; `side` pixels on its larger side. Where it is not of these tiles, a newer
    /// one is begun, and `ready` follows. The tiles are frozen.
    QImage of(const QUuid& layer, const TileGrid& grid, const TileArray& tiles, int side);
    void keepOnly(const std::set<QUuid>& layers); ///< Lets go of all others.

Q_SIGNALS:
    void ready(const QUuid& layer);

private:
    struct Entry {
        TileArray tiles; ///< Held, so that no other array can have its identity meanwhile.
        int side = 0;
        QImage image;
        /// Number of the latest job: an older one has nothing to do. Read on the background thread.
        std::shared_ptr<std::atomic<int>> asked = std::make_shared<std::atomic<int>>(0);
    };
    void take(const QUuid& layer, int number, const QImage& image);

    std::map<QUuid, Entry> entries_;
};

/// Premultiplied RGBA, `side` pixels on its larger side: each pixel is the mean of a grid of at most 16 x 16 of those that
/// it covers.
QImage thumbnailOf(const TileGrid& grid, const TileArray& tiles, int side);

} // namespace qirn
