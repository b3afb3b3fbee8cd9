#include "app/model/Clipboard.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/FileTypes.h"
#include "app/desktop/keys/Typing.h"
#include "app/files/DocSession.h"
#include "app/files/LongTask.h"
#include "app/files/PictureExchange.h"
#include "app/model/CanvasPort.h"
#include "app/model/Guarded.h"
#include "app/model/Messages.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/PictureFiles.h"
#include "formats/ImageImport.h"
#include "operations/Floating.h"
#include "operations/LayerOperations.h"
#include "operations/Stamp.h"
#include "platform/Bytes.h"
#include "platform/files/ReadFile.h"

#include <algorithm>

#include <QFileInfo>

namespace qirn {

namespace {

constexpr double kFileRead = 0.1; // of the work of an import, about

bool hasAlpha(const RGBABuffer& buffer) {
    const std::span<const uint8_t> bytes = buffer.bytes();
    for (std::size_t i = 3; i < bytes.size(); i += 4) {
        if (bytes[i] != 0) return true;
    }
    return false;
}

} // namespace

// --- Out

void Clipboard::copy(Merged merged) {
    if (Typing::act(Typing::TextAction::copy)) return;
    model_.canvas().endGesture();
    copyPicture(merged);
}

bool Clipboard::copyPicture(Merged merged) {
    const DocSession* session = model_.current();
    if (!session) return false;
    const std::optional<PlacedPixels> pixels = copyPixels(session->doc(), merged);
    if (!pixels || !hasAlpha(*pixels->buffer)) {
        model_.messages().flash(tr("Nothing to copy"));
        return false;
    }
    model_.desktop().setClipboard(PictureExchange::copied(pixels->buffer, session->doc().dpi));
    lastCopyOrigin_ = pixels->rect;
    model_.messages().flash(merged == Merged::yes ? tr("Copied the merged picture") : tr("Copied"));
    return true;
}

void Clipboard::cut() {
    if (Typing::act(Typing::TextAction::cut)) return;
    DocSession* session = model_.current();
    if (!session) return;
    const bool hadSelection = session->doc().selection != nullptr;
    model_.finishGesture(); // floating pixels would be in neither the copy nor the layer
    // A scale or a turn ends the selection; all of the layer is not what was to be cut.
    if (hadSelection && !session->doc().selection)
        return model_.messages().flash(tr("Make a selection first"));
    const bool copied = copyPicture(Merged::no);
    PaintDocument& doc = session->doc();
    if (doc.activeLayer().isLocked) return model_.messages().flash(tr("The layer is locked"));
    if (!copied) return;
    qirn::clearLayer(doc, doc.activeLayer());
    doc.commit(tr("Cut"));
    model_.afterChange(*session);
}

// --- In

void Clipboard::paste() {
    if (Typing::act(Typing::TextAction::paste)) return;
    const PictureExchange::Taken taken = PictureExchange::pictureOrFile(model_.desktop().clipboard());
    if (taken.isLate) return model_.messages().flash(tr("The other program did not answer in time"));
    if (!taken.pixels) return model_.messages().flash(tr("There's no picture on the clipboard"));
    pasteBuffer(*taken.pixels, tr("Pasted Layer"), placeOfCopy(*taken.pixels));
}

std::optional<QPoint> Clipboard::placeOfCopy(const RGBABuffer& buffer) const {
    if (!lastCopyOrigin_ || !model_.current()) return std::nullopt;
    const IRect& place = *lastCopyOrigin_;
    const bool same = place.w == buffer.width() && place.h == buffer.height();
    // On a smaller picture the old place can lie outside the canvas, where nothing would show.
    const bool inside = !place.intersection(model_.current()->doc().grid().bounds()).isEmpty();
    if (!same || !inside) return std::nullopt;
    return QPoint(static_cast<int>(place.x), static_cast<int>(place.y));
}

void Clipboard::pasteBuffer(const RGBABuffer& buffer, const QString& name, std::optional<QPoint> topLeft) {
    DocSession* session = model_.current();
    if (!session) return;
    model_.finishGesture();
    PaintDocument& doc = session->doc();
    const TileGrid& grid = doc.grid();
    const int64_t x = topLeft ? topLeft->x() : (grid.width - buffer.width()) / 2;
    const int64_t y = topLeft ? topLeft->y() : (grid.height - buffer.height()) / 2;
    qirn::addLayer(doc, name);
    stamp(doc, buffer, x, y, doc.activeLayer(), 1, UseSelection::no);
    doc.commit(tr("Paste"));
    model_.afterChange(*session);
    model_.messages().flash(tr("Pasted as a new layer — use Move (V) to position it"));
}

void Clipboard::importImageAsLayer() {
    for (const QString& path :
         model_.desktop().openFiles(tr("Import"), FileTypes::import(), Desktop::Several::no))
        importImage(path);
}

void Clipboard::importImage(const QString& path) {
    std::optional<DecodedPicture> picture;
    try {
        const auto read = [&](const Progress& progress) {
            const QByteArray bytes = readFile(path, kAnyLength, progress.part(0, kFileRead));
            picture = ImageImport::decode(bytesOf(bytes), progress.part(kFileRead, 1));
        };
        if (!model_.longTask().run(tr("Importing %1…").arg(QFileInfo(path).fileName()), read)) return;
    } catch (const DescribedError&) {
        // Falls through to the message below.
    }
    if (!picture)
        return model_.messages().alert(tr("Couldn't import"), tr("This picture could not be read."));
    model_.desktop().noteUsedFile(path);
    pasteBuffer(*picture->layer->toBuffer(), QFileInfo(path).completeBaseName(), std::nullopt);
}

bool Clipboard::drop(const QMimeData& offer) {
    if (const QStringList paths = PictureExchange::files(offer); !paths.isEmpty()) {
        // Queued: the program that the drag came from waits for this call, and an alert may come up.
        soon(model_, [this, paths] { takeFiles(paths); });
        return true;
    }
    const PictureExchange::Taken taken = PictureExchange::picture(offer);
    if (taken.isLate) model_.messages().flash(tr("The other program did not answer in time"));
    if (!taken.pixels) {
        if (!taken.isLate) model_.messages().flash(tr("Only files can be dropped here."));
        return false;
    }
    pasteBuffer(*taken.pixels, tr("Dropped Picture"), std::nullopt);
    return true;
}

bool Clipboard::dropAsPictures(const QMimeData& offer) {
    const QStringList paths = PictureExchange::files(offer);
    if (paths.isEmpty()) {
        model_.messages().flash(tr("Only files can be dropped here."));
        return false;
    }
    soon(model_, [this, paths] { model_.files().open(paths); });
    return true;
}

void Clipboard::takeFiles(const QStringList& paths) {
    QStringList documents;
    for (const QString& path : paths) {
        if (FileTypes::isNative(path))
            documents << path;
        else
            importImage(path);
    }
    if (documents.isEmpty()) return;
    model_.files().open(documents);
    if (DocSession* first = model_.pictures().sessionOf(documents.front())) model_.pictures().select(*first);
}

} // namespace qirn
