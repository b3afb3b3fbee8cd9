#pragma once
#include <QStringList>
#include <QWidget>

namespace qirn {

/// The visible parts of a window whose words have less room than they take, or that reach out of what holds them: a line
/// each. What gives way on purpose, and then tells its words in a tip, is left out.
QStringList clippedIn(const QWidget& window);

} // namespace qirn
