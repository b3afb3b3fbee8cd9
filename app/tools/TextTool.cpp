// Text: a press asks for the words that go there.
#include "app/model/PaintModel.h"
#include "app/tools/ToolTable.h"

namespace qirn {

std::unique_ptr<CanvasTool> pressText(const ToolPress& press) {
    press.model.showSheet({PaintSheet::Kind::text, press.point});
    return nullptr;
}

} // namespace qirn
