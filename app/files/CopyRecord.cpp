#include "app/files/CopyRecord.h"

#include "platform/Bytes.h"
#include "platform/Json.h"
#include "platform/files/FilePath.h"
#include "platform/files/ReadFile.h"

namespace qirn {

namespace {

/// A path as text of a file of UTF-8: one of other bytes as an address.
QString textOf(const QString& path) {
    return QString::fromUtf8(path.toUtf8()) == path ? path : addressOfPath(path);
}
QString pathIn(const QString& text) {
    return pathOfAddress(QUrl(text)).value_or(text);
}

} // namespace

bool Recovery::Info::isSavedSince() const {
    if (!originalPath || !originalStamp) return false;
    const auto now = FileStamp::at(*originalPath);
    return now && now != originalStamp;
}

QByteArray Recovery::recordOf(const Info& info) {
    OrderedJson json;
    json["name"] = info.name.toStdString();
    if (info.originalPath) json["originalPath"] = textOf(*info.originalPath).toStdString();
    if (const auto& stamp = info.originalStamp)
        json["originalStamp"] = {stamp->size, stamp->seconds, stamp->nanoseconds};
    json["date"] = info.date.toUTC().toString(Qt::ISODate).toStdString();
    json["width"] = info.width;
    json["height"] = info.height;
    json["layers"] = info.layers;
    return QByteArray::fromStdString(jsonBytes(json));
}

std::optional<Recovery::Info> Recovery::readRecord(const QString& path) {
    try {
        const std::optional<Json> json = parseJson(bytesOf(readFile(path)));
        if (!json) return std::nullopt;
        Info info;
        info.name = jsonText(jsonMember(*json, "name"));
        if (const Json* file = jsonOptionalMember(*json, "originalPath"))
            info.originalPath = pathIn(jsonText(*file));
        if (const Json* stamp = jsonOptionalMember(*json, "originalStamp")) {
            if (!stamp->is_array() || stamp->size() != 3) return std::nullopt;
            info.originalStamp = {jsonWhole((*stamp)[0]), jsonWhole((*stamp)[1]), jsonWhole((*stamp)[2])};
        }
        info.date = QDateTime::fromString(jsonText(jsonMember(*json, "date")), Qt::ISODate);
        info.width = jsonWhole(jsonMember(*json, "width"));
        info.height = jsonWhole(jsonMember(*json, "height"));
        info.layers = jsonWhole(jsonMember(*json, "layers"));
        if (!info.date.isValid()) return std::nullopt;
        return info;
    } catch (const ReadError&) {
        return std::nullopt;
    } catch (const JsonTypeError&) {
        return std::nullopt;
    }
}

} // namespace qirn
