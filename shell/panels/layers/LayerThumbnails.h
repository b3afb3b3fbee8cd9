#pragma once
#include "core/TileArray.h"
#include "core/TileGrid.h"

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include <QImage>
#include <QObject>
#include <QUuid>

namespace qirn {

/// Small pictures of layers. One is made when it is asked for, in the background and never while a stroke is painted.
class LayerThumbnails : public QObject {
    Q_OBJECT
public:
    explicit LayerThumbnails(QObject* parent) : QObject(parent) {}
    ~LayerThumbnails() override; ///< Waits for what is being made.

    /// The latest that there is, null at first; `side` pixels on its larger side. Where it is outdated or of another size,
    /// a newer one of these tiles is begun, and `ready` follows. The tiles are frozen.
    QImage of(const QUuid& layer, const TileGrid& grid, const TileArray& tiles, int side);
    void outdate(const QUuid& layer); ///< It has other tiles now.
    void forget(const QUuid& layer) { entries_.erase(layer); }
    void forgetAll() { entries_.clear(); }

Q_SIGNALS:
    void ready(const QUuid& layer);

private:
    using Wanted = std::shared_ptr<std::atomic<bool>>; ///< Of one job; read on the background thread.
    struct Entry {
        QImage image;
        int side = 0; ///< That was last asked for; 0 when outdated.
        Wanted wanted;

        Entry() = default;
        ~Entry() { abandon(); }
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;
        void abandon() {
            if (wanted) *wanted = false;
        }
    };
    /// `image` is null for want of memory, and absent where a stroke came in between.
    void take(const QUuid& layer, const Wanted& wanted, const std::optional<QImage>& image);

    std::map<QUuid, Entry> entries_;
};

/// Premultiplied RGBA, `side` pixels on its larger side: each pixel is the mean of a grid of at most 16 x 16 of those that
/// it covers. Nothing once `goesOn`, asked before each row, says no.
std::optional<QImage> thumbnailOf(const TileGrid& grid, const TileArray& tiles, int side,
                                  const std::function<bool()>& goesOn = {});

} // namespace qirn
