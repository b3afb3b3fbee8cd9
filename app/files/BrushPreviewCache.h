#pragma once
#include "brush/BrushSettings.h"

#include <map>
#include <memory>
#include <set>

#include <QByteArray>
#include <QImage>
#include <QObject>

namespace qirn {

/// Sample strokes of brushes, painted in the background as views ask for them. Equal settings share an image, any other
/// value makes another one.
class BrushPreviewCache : public QObject {
    Q_OBJECT
public:
    static constexpr int kWidth = 180, kHeight = 40; ///< Logical pixels, at interface zoom 1.
    static constexpr std::size_t kMostKept = 400;    ///< With more than these it starts from nothing.

    explicit BrushPreviewCache(QObject* parent = nullptr);
    ~BrushPreviewCache() override; ///< Waits for nothing; what is being painted is dropped.

    /// Where a preview that is not there yet stands among those that are asked for: behind them, or before them and in the
    /// place of the last one of this kind, for a brush whose settings go on changing.
    enum class Turn { inOrder, next };
    /// Premultiplied, of 180 x 40 times `scale` pixels. Null where it has to be painted first; `ready` follows.
    QImage image(const BrushSettings& brush, double scale, Turn turn = Turn::inOrder);
    std::size_t kept() const { return images_.size(); }

Q_SIGNALS:
    void ready(); ///< One more.

private:
    struct Orders;
    void take(const QByteArray& key, const QImage& image);

    std::map<QByteArray, QImage> images_;
    std::set<QByteArray> asked_;     // and not here yet
    std::shared_ptr<Orders> orders_; // with the background thread
};

/// The preview of one brush in a view that shows it all the time: the last that there was, until the right one is there.
class BrushPicture {
public:
    using Turn = BrushPreviewCache::Turn;
    const QImage& of(const BrushSettings& brush, BrushPreviewCache& previews, double scale,
                     Turn turn = Turn::inOrder) {
        if (QImage now = previews.image(brush, scale, turn); !now.isNull()) image_ = std::move(now);
        return image_;
    }

private:
    QImage image_;
};

} // namespace qirn
