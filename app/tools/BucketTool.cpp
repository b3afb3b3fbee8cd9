// Bucket: a press fills.
#include "app/model/Colors.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "app/tools/ToolTable.h"
#include "core/PaintDocument.h"
#include "operations/Fill.h"

#include <cmath>

#include <QCoreApplication>

namespace qirn {

std::unique_ptr<CanvasTool> pressBucket(const ToolPress& press) {
    if (press.refusesLockedLayer()) return nullptr;
    PaintModel& model = press.model;
    const IRect filled = bucketFill(press.doc(), static_cast<int64_t>(std::floor(press.point.x())),
                                    static_cast<int64_t>(std::floor(press.point.y())),
                                    model.colors().primary(), model.options().fill, 1.0);
    if (filled.isEmpty()) {
        model.messages().flash(
            QCoreApplication::translate("qirn::BucketTool", "Click inside the picture to fill"));
        return nullptr;
    }
    model.colors().pushRecent(model.colors().primary());
    press.commit();
    return nullptr;
}

} // namespace qirn
