#include "app/desktop/HostWords.h"

#include <QGuiApplication>
#include <QLocale>
#include <QRegularExpression>
#include <QStringList>
#include <QTextDocument>
#include <QTime>

namespace qirn {

#ifdef Q_OS_MACOS
QString hostWords(const QString& text) {
    return text;
}
#else
namespace {

struct KeySign {
    char16_t sign;
    const char* name;
    int order; // as desktops write them: Ctrl, Alt, Shift, Meta
};
constexpr KeySign kKeySigns[] = {{u'⌘', "Ctrl", 0}, {u'⌥', "Alt", 1}, {u'⇧', "Shift", 2}, {u'⌃', "Meta", 3}};

const KeySign* signOf(QChar c) {
    for (const KeySign& key : kKeySigns) {
        if (c.unicode() == key.sign) return &key;
    }
    return nullptr;
}

} // namespace

QString hostWords(const QString& text) {
    QString source = text;
    source.replace(QStringLiteral("macOS"), QStringLiteral("this system"));
    // "⌥ Option" names the key twice; the canvas picks a color with Ctrl here, since Alt moves windows.
    source.replace(QStringLiteral("⌥ Option"), QStringLiteral("Ctrl"));
    QString result;
    for (qsizetype i = 0; i < source.size();) {
        QString held[4];
        qsizetype end = i;
        while (end < source.size()) {
            const KeySign* key = signOf(source[end]);
            if (!key) break;
            held[key->order] = QLatin1String(key->name);
            ++end;
        }
        if (end == i) {
            result += source[i++];
            continue;
        }
        QStringList names;
        for (const QString& name : held) {
            if (!name.isEmpty()) names << name;
        }
        QString keys = names.join(u'+');
        if (end < source.size() && !source[end].isSpace() && source[end] != u',')
            keys += QStringLiteral("+") + source[end++];
        result += leftToRight(keys);
        i = end;
    }
    return result;
}
#endif

QString leftToRight(const QString& keys) {
    const bool isAsRead = keys.isEmpty() || !QGuiApplication::isRightToLeft();
    return isAsRead ? keys : QChar(0x2066) + keys + QChar(0x2069); // an isolate: nothing round it turns it
}

QString plainTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

QString menuText(QString text) {
    return text.replace(u'&', QStringLiteral("&&"));
}

QString shortTime(const QTime& time) {
    static const QRegularExpression seconds(QStringLiteral("[^a-zA-Z]?s+"));
    const QLocale locale;
    return locale.toString(time, locale.timeFormat(QLocale::ShortFormat).remove(seconds));
}

} // namespace qirn
