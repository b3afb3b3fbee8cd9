#include "app/files/BrushPreviewCache.h"

#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"
#include "brush/BrushPreview.h"
#include "platform/Json.h"

#include <algorithm>
#include <deque>
#include <mutex>

namespace qirn {

namespace {

const PaintColor kColor(0.95, 0.95, 0.97);
constexpr double kMostScale = 4; // a sharper one would not be seen, and its cost grows with the square

QByteArray keyOf(const BrushSettings& brush, double scale) {
    return QByteArray::fromStdString(brush.toJson().dump()) + QByteArray::number(scale);
}

QImage painted(const BrushSettings& brush, double scale) {
    QImage image;
    contained([&] {
        image =
            BrushPreview::render(brush, BrushPreviewCache::kWidth, BrushPreviewCache::kHeight, kColor, scale)
                .convertToFormat(QImage::Format_ARGB32_Premultiplied); // which draws fastest
    });
    return image;
}

} // namespace

/// What is to be painted, the first one first. It outlives the cache while a job of the queue runs.
struct BrushPreviewCache::Orders {
    struct Order {
        QByteArray key;
        BrushSettings brush;
        double scale;
        Turn turn;
    };
    std::mutex mutex;
    std::deque<Order> waiting;
    BrushPreviewCache* customer; // null once it is gone

    void paintFirst() {
        std::unique_lock lock(mutex);
        if (waiting.empty()) return; // another has taken its place
        const Order order = std::move(waiting.front());
        waiting.pop_front();
        lock.unlock();
        const QImage image = painted(order.brush, order.scale);
        lock.lock();
        if (!customer) return;
        QMetaObject::invokeMethod(
            customer, [to = customer, key = order.key, image] { to->take(key, image); },
            Qt::QueuedConnection);
    }
};

BrushPreviewCache::BrushPreviewCache(QObject* parent) : QObject(parent), orders_(std::make_shared<Orders>()) {
    orders_->customer = this;
}

BrushPreviewCache::~BrushPreviewCache() {
    const std::lock_guard lock(orders_->mutex);
    orders_->customer = nullptr;
    orders_->waiting.clear();
}

QImage BrushPreviewCache::image(const BrushSettings& brush, double scale, Turn turn) {
    scale = std::min(scale, kMostScale);
    const QByteArray key = keyOf(brush, scale);
    if (const auto found = images_.find(key); found != images_.end()) return found->second;
    const bool isAsked = asked_.contains(key);
    if (isAsked && turn == Turn::inOrder) return {};
    {
        const std::lock_guard lock(orders_->mutex);
        auto& waiting = orders_->waiting;
        if (turn == Turn::next) {
            std::erase_if(waiting, [&](const Orders::Order& order) {
                const bool goes = order.turn == Turn::next || order.key == key;
                if (goes) asked_.erase(order.key);
                return goes;
            });
            if (asked_.contains(key)) return {}; // it is being painted
        }
        waiting.insert(turn == Turn::next ? waiting.begin() : waiting.end(), {key, brush, scale, turn});
    }
    asked_.insert(key);
    BackgroundQueue::previews().run([orders = orders_] { orders->paintFirst(); });
    return {};
}

void BrushPreviewCache::take(const QByteArray& key, const QImage& image) {
    asked_.erase(key);
    if (image.isNull()) return;
    if (images_.size() > kMostKept) images_.clear();
    images_.emplace(key, image);
    Q_EMIT ready();
}

} // namespace qirn
