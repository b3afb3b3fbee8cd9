#pragma once
#include <QByteArray>
#include <QStringList>

namespace qirn {

/// The program's arguments before the window system's library has taken its own out of them.
struct DisplayArguments {
    explicit DisplayArguments(const QStringList& arguments);

    QStringList taken;  ///< What the library takes, in order.
    QStringList others; ///< With the program's name.
    /// Tells the display on which a window would open, by arguments and environment, from all others.
    QByteArray display;
};

} // namespace qirn
