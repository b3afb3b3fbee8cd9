#pragma once
#include <QByteArray>

class QWidget;

namespace qirn {

/// Has an X server's desktop put a window in front by the token of another start, "..._TIME12345", which holds the time of
/// the click behind it: one that lets no window come forward by itself goes by that time. Tells it also that the start
/// is done, so that its busy cursor ends (freedesktop.org's startup notification protocol 0.1). False without an X server
/// or without a time in the token.
bool comeForwardOnX11(const QWidget& window, const QByteArray& token);

} // namespace qirn
