#include "app/desktop/FilePreview.h"

#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"
#include "app/desktop/FileTypes.h"
#include "formats/ImageImport.h"
#include "formats/native/PaintFile.h"
#include "formats/native/PaintPreview.h"
#include "formats/native/StoredPreview.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "platform/Bytes.h"
#include "platform/Progress.h"
#include "platform/files/ReadFile.h"

#include <QCoreApplication>
#include <QPainter>

namespace qirn {

namespace {

constexpr int64_t kMostBytes = 16 * 1024 * 1024; // of a picture that is decoded for its preview

/// Stops what is not wanted any more.
class Wanted : public ProgressWatcher {
public:
    explicit Wanted(const std::atomic<bool>& wanted) : wanted_(wanted) {}
    bool goesOn(double) override { return wanted_; }

private:
    const std::atomic<bool>& wanted_;
};

QImage previewIn(const QString& path, const Progress& progress) {
    if (FileTypes::isNative(path)) {
        const auto preview = storedPreview(path);
        return preview ? preview->makeImage() : QImage();
    }
    const QByteArray bytes = readFile(path, kMostBytes);
    const auto document = ImageImport::imported(bytesOf(bytes), progress).document;
    return previewOf(snapshot(*document), PaintFile::kPreviewSide, progress);
}

} // namespace

FilePreview::FilePreview(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setAccessibleName(tr("Preview"));
}

FilePreview::~FilePreview() {
    if (wanted_) *wanted_ = false;
}

void FilePreview::setFile(const QString& path) {
    if (wanted_) *wanted_ = false;
    wanted_.reset();
    image_ = {};
    update();
    if (path.isEmpty()) return;
    wanted_ = std::make_shared<std::atomic<bool>>(true);
    BackgroundQueue::previews().run([this, path, wanted = wanted_] {
        if (!*wanted) return; // another has been chosen, or the panel is gone
        QImage read;
        Wanted watcher(*wanted);
        contained([&] { read = previewIn(path, Progress(watcher)); });
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [this, read, wanted] {
                if (!*wanted) return; // as it would be where this is gone
                image_ = read;
                update();
            },
            Qt::QueuedConnection);
    });
}

QSize FilePreview::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {m.px(180), m.px(180)};
}

void FilePreview::paintEvent(QPaintEvent*) {
    if (image_.isNull()) return;
    QPainter painter(this);
    QRectF place({}, QSizeF(image_.size()).scaled(size(), Qt::KeepAspectRatio));
    place.moveCenter(QRectF(rect()).center());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(ChromePaint::snapped(painter, place), image_);
}

} // namespace qirn
