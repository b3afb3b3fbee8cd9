#include "app/edits/CanvasEdits.h"

#include "app/files/DocSession.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "app/sizes/CanvasLimits.h"
#include "app/text/TextRenderer.h"
#include "operations/Fill.h"
#include "operations/LayerOperations.h"
#include "operations/Reshape.h"
#include "operations/SelectionOperations.h"
#include "operations/Stamp.h"

#include <algorithm>

#include <QCoreApplication>
#include <QTextBoundaryFinder>

namespace qirn::CanvasEdits {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("qirn::CanvasEdits", text);
}

/// As a person counts them: a letter with its accents, or an emoji of several signs, is one.
QString firstCharacters(const QString& text, int count) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (int i = 0; i < count && finder.position() < text.size(); ++i) finder.toNextBoundary();
    return text.left(finder.position());
}

/// Once floating pixels are put down, which may end the selection.
bool hasSelection(PaintModel& model) {
    const DocSession* session = model.current();
    if (!session || !session->doc().selection) return false;
    model.finishGesture();
    return session->doc().selection != nullptr;
}

void refuseSize(PaintModel& model) {
    model.messages().flash(tr("Size must be 1 to 30,000 pixels"));
}

} // namespace

// --- Selection

void selectAll(PaintModel& model) {
    model.edit(tr("Select All"), [](PaintDocument& doc) { qirn::selectAll(doc); });
}

void deselect(PaintModel& model) {
    if (!hasSelection(model)) return;
    model.edit(tr("Deselect"), [](PaintDocument& doc) { qirn::deselect(doc); });
}

void invertSelection(PaintModel& model) {
    if (!hasSelection(model)) return;
    model.edit(tr("Invert Selection"), [](PaintDocument& doc) { qirn::invertSelection(doc); });
}

// --- The canvas

void fillSelection(PaintModel& model, const PaintColor& color) {
    model.edit(
        tr("Fill"), [&](PaintDocument& doc) { qirn::fillSelection(doc, color, 1); },
        PaintModel::NeedsUnlockedLayer::yes);
}

void cropToSelection(PaintModel& model) {
    if (!model.current()) return;
    if (!hasSelection(model)) return model.messages().flash(tr("Make a selection first"));
    model.editLong(tr("Crop"), [](PaintDocument& doc, const Progress& progress) {
        cropTo(doc, doc.selection->bounds(), progress);
    });
}

void resizeImage(PaintModel& model, int64_t width, int64_t height, double dpi) {
    const DocSession* session = model.current();
    if (!session) return;
    if (!CanvasLimits::allow(width, height)) return refuseSize(model);
    const PaintDocument& old = session->doc();
    const bool scales = width != old.grid().width || height != old.grid().height;
    dpi = std::max(dpi, 1.0);
    if (!scales && dpi == old.dpi) return;
    model.editLong(tr("Image Size"), [=](PaintDocument& doc, const Progress& progress) {
        if (scales) qirn::resizeImage(doc, width, height, progress);
        doc.dpi = dpi;
    });
}

void resizeCanvas(PaintModel& model, int64_t width, int64_t height, double anchorX, double anchorY) {
    const DocSession* session = model.current();
    if (!session) return;
    if (!CanvasLimits::allow(width, height)) return refuseSize(model);
    const TileGrid& old = session->doc().grid();
    if (width == old.width && height == old.height) return;
    model.editLong(tr("Canvas Size"), [=](PaintDocument& doc, const Progress& progress) {
        qirn::resizeCanvas(doc, width, height, anchorX, anchorY, progress);
    });
}

void rotateCanvas(PaintModel& model, int quarterTurns) {
    const QString name = quarterTurns == 1   ? tr("Rotate 90° Clockwise")
                         : quarterTurns == 2 ? tr("Rotate 180°")
                                             : tr("Rotate 90° Counter-clockwise");
    model.editLong(
        name, [=](PaintDocument& doc, const Progress& progress) { rotate(doc, quarterTurns, progress); });
}

void flipCanvasHorizontal(PaintModel& model) {
    model.editLong(tr("Flip Canvas Horizontal"), [](PaintDocument& doc, const Progress& progress) {
        flipCanvas(doc, FlipAxis::horizontal, progress);
    });
}

void flipCanvasVertical(PaintModel& model) {
    model.editLong(tr("Flip Canvas Vertical"), [](PaintDocument& doc, const Progress& progress) {
        flipCanvas(doc, FlipAxis::vertical, progress);
    });
}

void placeText(PaintModel& model, const TextSpec& spec, QPointF topLeft) {
    if (!model.current()) return;
    const auto rendered = TextRenderer::render(spec);
    if (!rendered) return model.messages().flash(tr("Type some text first"));
    model.edit(tr("Text"), [&](PaintDocument& doc) {
        QString words = firstCharacters(spec.text, 24);
        words.replace(u'\n', u' ');
        qirn::addLayer(doc, tr("Text: %1").arg(words));
        stamp(doc, *rendered->buffer, static_cast<int64_t>(topLeft.x()) + rendered->x,
              static_cast<int64_t>(topLeft.y()) + rendered->y, doc.activeLayer(), 1, UseSelection::no);
    });
}

} // namespace qirn::CanvasEdits
