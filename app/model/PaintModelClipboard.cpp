// Pictures that go out and come in beside whole documents: the clipboard, drags and imported layers.
#include "app/model/PaintModel.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/FileTypes.h"
#include "app/model/Clipboard.h"
#include "app/model/Guarded.h"
#include "formats/ImageImport.h"
#include "operations/Floating.h"
#include "operations/LayerOperations.h"
#include "operations/Stamp.h"
#include "platform/Bytes.h"
#include "platform/ReadFile.h"

#include <algorithm>

#include <QFileInfo>

namespace qirn {

namespace {

bool hasAlpha(const RGBABuffer& buffer) {
    const std::span<const uint8_t> bytes = buffer.bytes();
    for (std::size_t i = 3; i < bytes.size(); i += 4) {
        if (bytes[i] != 0) return true;
    }
    return false;
}

} // namespace

// --- Out

void PaintModel::copy(Merged merged) {
    if (Clipboard::doneInTextField(Clipboard::TextAction::copy)) return;
    canvas_->endGesture();
    copyPicture(merged);
}

bool PaintModel::copyPicture(Merged merged) {
    const DocSession* session = current();
    if (!session) return false;
    const std::optional<PlacedPixels> pixels = copyPixels(session->doc(), merged);
    if (!pixels || !hasAlpha(*pixels->buffer)) {
        flash(tr("Nothing to copy"));
        return false;
    }
    desktop_.setClipboard(Clipboard::copied(pixels->buffer, session->doc().dpi));
    lastCopyOrigin_ = pixels->rect;
    flash(merged == Merged::yes ? tr("Copied the merged picture") : tr("Copied"));
    return true;
}

void PaintModel::cut() {
    if (Clipboard::doneInTextField(Clipboard::TextAction::cut)) return;
    DocSession* session = current();
    if (!session) return;
    finishGesture(); // floating pixels would be in neither the copy nor the layer
    const bool copied = copyPicture(Merged::no);
    PaintDocument& doc = session->doc();
    if (doc.activeLayer().isLocked) return flash(tr("The layer is locked"));
    if (!copied) return;
    qirn::clearLayer(doc, doc.activeLayer());
    doc.commit(tr("Cut"));
    afterChange(*session);
}

// --- In

void PaintModel::paste() {
    if (Clipboard::doneInTextField(Clipboard::TextAction::paste)) return;
    const Clipboard::Taken taken = Clipboard::pictureOrFile(desktop_.clipboard());
    if (taken.isLate) return flash(tr("The other program did not answer in time"));
    if (!taken.pixels) return flash(tr("There's no picture on the clipboard"));
    pasteBuffer(*taken.pixels, tr("Pasted Layer"), placeOfCopy(*taken.pixels));
}

std::optional<QPoint> PaintModel::placeOfCopy(const RGBABuffer& buffer) const {
    if (!lastCopyOrigin_ || !current()) return std::nullopt;
    const IRect& place = *lastCopyOrigin_;
    const bool same = place.w == buffer.width() && place.h == buffer.height();
    // On another, smaller picture the place can lie outside, where nothing would show.
    const bool inside = !place.intersection(current()->doc().grid().bounds()).isEmpty();
    if (!same || !inside) return std::nullopt;
    return QPoint(static_cast<int>(place.x), static_cast<int>(place.y));
}

void PaintModel::pasteBuffer(const RGBABuffer& buffer, const QString& name, std::optional<QPoint> at) {
    DocSession* session = current();
    if (!session) return;
    finishGesture();
    PaintDocument& doc = session->doc();
    const TileGrid& grid = doc.grid();
    const int64_t x = at ? at->x() : (grid.width - buffer.width()) / 2;
    const int64_t y = at ? at->y() : (grid.height - buffer.height()) / 2;
    qirn::addLayer(doc, name);
    stamp(doc, buffer, x, y, doc.activeLayer(), 1, UseSelection::no);
    doc.commit(tr("Paste"));
    afterChange(*session);
    flash(tr("Pasted as a new layer — use Move (V) to position it"));
}

void PaintModel::importImageAsLayer() {
    finishGesture();
    for (const QString& path : desktop_.openFiles(FileTypes::import(), Desktop::Several::no))
        importImage(path);
}

void PaintModel::importImage(const QString& path) {
    std::optional<DecodedPicture> picture;
    try {
        picture = ImageImport::decode(bytesOf(readFile(path)));
    } catch (const DescribedError&) {
        // Told below, as whatever else is no picture.
    }
    if (!picture) return alert(tr("Couldn't import"), tr("This picture could not be read."));
    pasteBuffer(*picture->layer->toBuffer(), QFileInfo(path).completeBaseName(), std::nullopt);
}

bool PaintModel::drop(const QMimeData& offer) {
    if (const auto path = Clipboard::firstFile(offer)) {
        // Later: the program that the drag came from waits for this call, and a box may come up.
        const auto take = FileTypes::isNative(*path) ? &PaintModel::open : &PaintModel::importImage;
        QMetaObject::invokeMethod(this, guarding(*this, [this, take, path = *path] { (this->*take)(path); }),
                                  Qt::QueuedConnection);
        return true;
    }
    const Clipboard::Taken taken = Clipboard::picture(offer);
    if (taken.isLate) flash(tr("The other program did not answer in time"));
    if (!taken.pixels) return false;
    pasteBuffer(*taken.pixels, tr("Dropped Picture"), std::nullopt);
    return true;
}

} // namespace qirn
