#include "platform/files/FilePath.h"

#include "platform/files/FileCalls.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include <QFile>
#include <QStringDecoder>
#include <unistd.h>

namespace qirn {

namespace {

constexpr char16_t kEscape = 0xDC00;       // plus the byte, which is 0x80 or more
constexpr qsizetype kLongestCharacter = 4; // bytes

/// Nothing where not all of it is UTF-8.
std::optional<QString> decoded(QByteArrayView bytes) {
    using Flag = QStringDecoder::Flag;
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

} // namespace

QString pathFromBytes(const QByteArray& bytes) {
    if (auto path = decoded(bytes)) return *std::move(path);
    QString path;
    for (qsizetype at = 0; at < bytes.size();) {
        const QByteArrayView rest = QByteArrayView(bytes).sliced(at);
        std::optional<QString> character;
        qsizetype length = 0;
        while (!character && length < std::min(kLongestCharacter, rest.size()))
            character = decoded(rest.first(++length));
        if (!character) length = 1;
        path += character.value_or(QChar(static_cast<char16_t>(kEscape + static_cast<uint8_t>(rest[0]))));
        at += length;
    }
    return path;
}

QByteArray bytesOfPath(const QString& path) {
    QByteArray bytes;
    qsizetype plain = 0; // where the text begins that is not encoded yet
    for (qsizetype i = 0; i < path.size(); ++i) {
        const char16_t unit = path[i].unicode();
        const bool escape = unit >= kEscape + 0x80 && unit <= kEscape + 0xFF;
        if (!escape || (i > 0 && path[i - 1].isHighSurrogate())) continue;
        bytes += QFile::encodeName(path.mid(plain, i - plain));
        bytes += static_cast<char>(unit - kEscape);
        plain = i + 1;
    }
    return bytes + QFile::encodeName(path.mid(plain));
}

QString addressOfPath(const QString& path) {
    return QString::fromLatin1("file://" + bytesOfPath(path).toPercentEncoding("!$&'()*+,;=:@/"));
}

std::optional<QString> pathOfAddress(const QUrl& address) {
    const bool isHere = address.host().isEmpty() || address.host() == QLatin1String("localhost");
    if (address.scheme() != QLatin1String("file") || !isHere) return std::nullopt;
    return pathFromBytes(QByteArray::fromPercentEncoding(address.path(QUrl::FullyEncoded).toLatin1()));
}

bool isThere(const QString& path) {
    return FileCalls::inUse().access(bytesOfPath(path).constData(), F_OK) == 0;
}

QString absolutePath(const QString& path) {
    if (path.startsWith(u'/')) return path;
    std::error_code none;
    const std::string folder = std::filesystem::current_path(none).string();
    return folder.empty() ? path : pathFromBytes(QByteArray::fromStdString(folder)) + u'/' + path;
}

} // namespace qirn
