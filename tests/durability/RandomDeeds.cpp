#include "durability/RandomHand.h"

#include "app/commands/CommandRows.h"
#include "app/model/OpacityPreview.h"
#include "brush/BrushLibrary.h"
#include "operations/ShapePath.h"

#include <QSet>

namespace qirn::test {

namespace {

/// All but those that end the program or show a window of another's.
const std::vector<const CommandRow*>& commands() {
    static const std::vector<const CommandRow*> list = [] {
        const QSet<QString> left{"quit",       "fullScreen", "preferences", "help", "shortcuts",
                                 "quickStart", "about",      "zoomLevel",   "theme"};
        std::vector<const CommandRow*> rows;
        for (const CommandRow& row : commandRows())
            if (row.name && !left.contains(QString::fromLatin1(row.name))) rows.push_back(&row);
        return rows;
    }();
    return list;
}

constexpr int kKeys[] = {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Left,
                         Qt::Key_Right,  Qt::Key_Up,     Qt::Key_Down,   Qt::Key_Space,     Qt::Key_Tab};

} // namespace

const std::vector<RandomHand::Deed> RandomHand::kDeeds = {
    {"gesture", 30, [](RandomHand& hand) { hand.gesture(); }},
    {"command", 30,
     [](RandomHand& hand) {
         const CommandRow& row = *hand.anyOf(commands());
         guarded(hand.model, [&] {
             if (!row.choices) return runCommand(row, hand.model, hand.canvas_);
             const auto choices = row.choices(hand.model);
             const CommandChoice& choice = hand.anyOf(choices);
             if (choice.run) choice.run();
         });
     }},
    {"undo", 8, [](RandomHand& hand) { hand.model.undo(); }},
    {"redo", 6, [](RandomHand& hand) { hand.model.redo(); }},
    {"key", 6,
     [](RandomHand& hand) {
         if (hand.sometimes(2)) return hand.press(hand.anyOf(kKeys), hand.anyOf(RandomHand::kModifiers), {});
         const int sign = '!' + hand.below('~' - '!');
         hand.press(QChar(sign).toUpper().unicode(), Qt::NoModifier, QChar(sign));
     }},
    {"layer", 10,
     [](RandomHand& hand) {
         const int64_t layer = hand.anyLayer();
         constexpr bool LayerSettings::*kMarks[] = {&LayerSettings::isVisible, &LayerSettings::isLocked,
                                                    &LayerSettings::alphaLocked, &LayerSettings::isClipping};
         switch (hand.below(7)) {
         case 0:
             return LayerEdits::setActiveLayer(hand.model, layer);
         case 1:
             return LayerEdits::moveLayer(hand.model, layer, hand.anyLayer());
         case 2:
             return LayerEdits::setMark(hand.model, layer, hand.anyOf(kMarks), hand.sometimes(2));
         case 3:
             return hand.model.opacity().show(layer, hand.random_.unit());
         case 4:
             return hand.model.opacity().commit();
         case 5:
             return hand.model.showSheet({PaintSheet::Kind::renameLayer, {}, hand.doc().layer(layer).id});
         default:
             const BlendMode mode = hand.anyOf(kBlendModes).mode;
             return LayerEdits::setLayer(hand.model, layer, "Blend Mode",
                                         [&](Layer& it) { it.blendMode = mode; });
         }
     }},
    {"transform", 4,
     [](RandomHand& hand) {
         if (!hand.model.transform().isPending()) hand.model.transform().beginTransform();
         if (!hand.model.transform().isPending()) return; // refused
         hand.model.transform().updateTransform([&](TransformState& state) {
             state.center += QPointF(hand.between(-90, 90), hand.between(-90, 90));
             if (hand.sometimes(2)) state.angle = hand.between(-360, 360);
             if (hand.sometimes(2)) state.scaleX = hand.between(kLeastTransformScale, 3);
             if (hand.sometimes(2)) state.scaleY = state.scaleX;
             state.flipH = hand.sometimes(4);
         });
         if (hand.sometimes(2)) hand.model.transform().applyTransform();
         if (hand.sometimes(4)) hand.model.transform().cancelTransform();
     }},
    {"choice", 8,
     [](RandomHand& hand) {
         ToolOptions options = hand.model.options();
         options.fill.tolerance = hand.below(256);
         options.fill.contiguous = hand.sometimes(2);
         options.fill.sampleAllLayers = hand.sometimes(2);
         options.gradientKind = hand.anyOf(kGradientKinds).kind;
         options.gradientToTransparent = hand.sometimes(2);
         options.shapeKind = hand.anyOf(kShapes).kind;
         options.shapeFill = hand.sometimes(2);
         options.shapeOutline = hand.sometimes(2);
         options.selectionMode = static_cast<SelectionOp>(hand.below(4));
         options.selectionAntialias = hand.sometimes(2);
         hand.model.setOptions(options);
         if (hand.sometimes(2)) hand.model.brushes().choose(hand.anyOf(BrushLibrary::builtIn()));
         if (hand.sometimes(2)) hand.set(&BrushSettings::size, hand.between(1, hand.sometimes(5) ? 300 : 30));
         hand.model.colors().pick(hand.color(), Colors::AddRecent::yes);
     }},
    {"view", 4,
     [](RandomHand& hand) {
         hand.canvas_.setZoom(hand.between(0.1, 4));
         if (hand.sometimes(2)) hand.canvas_.rotateView(hand.between(-90, 90));
         if (hand.sometimes(2)) hand.canvas_.setPan({hand.between(-50, 50), hand.between(-50, 50)});
         if (hand.sometimes(4)) hand.canvas_.fit();
     }},
    {"tab", 4,
     [](RandomHand& hand) {
         const auto& open = hand.model.pictures().sessions();
         DocSession& session = *hand.anyOf(open);
         if (open.size() > 4 || hand.sometimes(6)) {
             hand.model.pictures().close(session);
         } else if (hand.sometimes(2)) {
             hand.model.pictures().select(session);
         } else {
             const auto paper = hand.sometimes(2) ? std::nullopt : std::optional(hand.color());
             hand.model.pictures().newDocument(hand.side(), hand.side(), 72, paper, "New");
         }
     }},
    {"file", 4,
     [](RandomHand& hand) {
         PictureFiles& files = hand.model.files();
         QFile other(hand.file()); // what another program does
         switch (hand.below(6)) {
         case 0:
             files.save(nullptr, PictureFiles::SaveAs::no);
             return;
         case 1:
             files.save(nullptr, PictureFiles::SaveAs::yes);
             return;
         case 2:
             return files.exportPicture(hand.anyOf(kExportFormats).format, hand.random_.unit(), hand.color());
         case 3:
             files.open(hand.file());
             return;
         case 4:
             other.remove();
             return;
         default:
             if (other.open(QIODevice::ReadWrite)) other.resize(hand.below(other.size() + 2));
         }
     }},
    {"sheet", 4,
     [](RandomHand& hand) {
         hand.model.showSheet({static_cast<PaintSheet::Kind>(hand.below(6)), hand.point(), {}});
         hand.fillSheet();
     }},
    {"safety", 1, [](RandomHand& hand) { hand.model.safety().keepWork(); }},
    {"crop", 2,
     [](RandomHand& hand) { // pictures stay small
         if (hand.doc().layerCount() > 8) runCommand(commandNamed("flatten"), hand.model, hand.canvas_);
         const TileGrid& grid = hand.doc().grid();
         if (std::max(grid.width, grid.height) <= 600) return;
         runCommand(commandNamed("imageSize"), hand.model, hand.canvas_);
         hand.fillSheet();
     }},
};

} // namespace qirn::test
