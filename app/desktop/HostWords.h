#pragma once
#include <QString>

class QTime;

namespace qirn {

/// A text with the keys and the system named as the tables have them ("New canvas (⌘N)", "macOS"), in the words of
/// the machine it runs on ("New canvas (Ctrl+N)", "this system"). For the program's own texts, before names of pictures
/// and layers are put into them, which stay as they are.
QString hostWords(const QString& text);

/// Names of keys for a text: they read from left to right in every language, so that "Ctrl++" does not become "++Ctrl".
QString leftToRight(const QString& keys);

/// A text that may hold names, for a tip: none of its signs is markup.
QString plainTip(const QString& text);

/// A text that may hold names, for a menu: none of its signs marks a key.
QString menuText(QString text);

/// A time of day as the desktop writes it, to the minute.
QString shortTime(const QTime& time);

} // namespace qirn
