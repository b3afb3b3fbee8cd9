#pragma once
#include <QString>

namespace qirn {

class IconButton;
class PaintModel;
struct CommandRow;

/// Gives a button the words for its tip and name, with the key that its command has at the moment: "Save (Ctrl+S)".
void tipWithKey(PaintModel& model, IconButton& button, const QString& words, const CommandRow& command);

} // namespace qirn
