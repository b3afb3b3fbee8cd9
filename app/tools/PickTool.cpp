// Eyedropper: a press takes the color under it.
#include "app/model/Colors.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "app/tools/ToolTable.h"
#include "compositing/CompositeInputs.h"
#include "core/PaintDocument.h"

#include <cmath>

#include <QCoreApplication>

namespace qirn {

std::unique_ptr<CanvasTool> pressPick(const ToolPress& press) {
    const PaintDocument& doc = press.doc();
    PaintModel& model = press.model;
    const auto x = static_cast<int64_t>(std::floor(press.point.x())),
               y = static_cast<int64_t>(std::floor(press.point.y()));
    if (!doc.grid().bounds().contains(x, y)) return nullptr;
    const PixelBytes pixel =
        model.prefs().eyedropperAllLayers ? compositePixel(doc, x, y) : doc.activeLayer().pixel(x, y);
    if (pixel[3] == 0) {
        model.messages().flash(
            QCoreApplication::translate("qirn::PickTool", "Nothing to pick there (transparent)"));
        return nullptr;
    }
    const double a = pixel[3];
    model.colors().pick(PaintColor(pixel[0] / a, pixel[1] / a, pixel[2] / a), Colors::AddRecent::yes);
    return nullptr;
}

} // namespace qirn
