#pragma once
#include <QString>

namespace qirn {

/// A text with the keys and the system named as the tables have them ("New canvas (⌘N)", "macOS"), in the words of
/// the machine it runs on ("New canvas (Ctrl+N)", "this system").
QString hostWords(const QString& text);

} // namespace qirn
