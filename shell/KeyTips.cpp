#include "shell/KeyTips.h"

#include "app/commands/CommandRow.h"
#include "app/model/PaintModel.h"
#include "kit/controls/IconButton.h"

namespace qirn {

void tipWithKey(PaintModel& model, IconButton& button, const QString& words, const CommandRow& command) {
    const auto show = [&model, &button, words, &command] {
        button.setTip(withKey(words, shownKeyOf(command, model.keys())));
    };
    QObject::connect(&model, &PaintModel::changed, &button, show);
    show();
}

} // namespace qirn
