#pragma once
#include <QIcon>

namespace qirn {

/// The program's own icon, at the sizes in which windows and their lists show one.
QIcon programIcon();

} // namespace qirn
