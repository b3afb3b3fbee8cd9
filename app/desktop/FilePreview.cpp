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
#include "platform/files/ReadFile.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPointer>

namespace qirn {

namespace {

constexpr int64_t kMostBytes = 32 * 1024 * 1024; // of a picture that is decoded for its preview

QImage previewIn(const QString& path) {
    if (FileTypes::isNative(path)) return storedPreview(path).value_or(QImage());
    const QByteArray bytes = readFile(path, kMostBytes);
    const auto document = ImageImport::document(bytesOf(bytes), {});
    return previewOf(snapshot(*document), PaintFile::kPreviewSide);
}

} // namespace

FilePreview::FilePreview(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setAccessibleName(tr("Preview"));
}

void FilePreview::setFile(const QString& path) {
    path_ = path;
    image_ = {};
    update();
    if (path.isEmpty()) return;
    // The panel may be gone or show another file when the picture is read: only the main thread looks.
    BackgroundQueue::previews().run([self = QPointer(this), path] {
        QImage read;
        contained([&] { read = previewIn(path); });
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, path, read] {
                if (!self || self->path_ != path) return;
                self->image_ = read;
                self->update();
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
