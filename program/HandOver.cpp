#include "program/HandOver.h"

#include <algorithm>
#include <iterator>

#include <QtEndian>

namespace qirn {

namespace {

struct SheetName {
    const char* name;
    std::optional<PaintSheet::Kind> sheet;
};
const SheetName kSheetNames[] = {
    {"", {}}, {"new-canvas", PaintSheet::Kind::newDocument}, {"recover", PaintSheet::Kind::recovery}};

bool isAbsolute(const QByteArray& path) {
    return path.startsWith('/');
}

} // namespace

std::optional<QByteArray> HandOver::encoded() const {
    const auto* const named = std::ranges::find(kSheetNames, sheet, &SheetName::sheet);
    if (named == std::end(kSheetNames)) return std::nullopt;
    QByteArray message(kLengthBytes, '\0');
    for (const QByteArray& field : QByteArrayList{version, token, named->name} + paths) {
        if (field.contains('\0')) return std::nullopt;
        message += field;
        message += '\0';
    }
    const auto size = static_cast<std::size_t>(message.size());
    if (size > kMostBytes || !std::ranges::all_of(paths, isAbsolute)) return std::nullopt;
    qToBigEndian(static_cast<quint32>(size - kLengthBytes), message.data());
    return message;
}

std::optional<std::size_t> HandOver::lengthOf(const QByteArray& start) {
    if (static_cast<std::size_t>(start.size()) < kLengthBytes) return std::nullopt;
    return kLengthBytes + qFromBigEndian<quint32>(start.constData());
}

std::optional<HandOver> HandOver::decoded(const QByteArray& message) {
    const auto size = static_cast<std::size_t>(message.size());
    if (lengthOf(message) != size || size > kMostBytes || !message.endsWith('\0')) return std::nullopt;
    QByteArrayList fields = message.sliced(kLengthBytes).split('\0');
    fields.removeLast(); // behind the last zero
    if (fields.size() < 3) return std::nullopt;
    const auto* const named = std::ranges::find(kSheetNames, fields[2], &SheetName::name);
    if (named == std::end(kSheetNames)) return std::nullopt;
    const HandOver read{fields[0], fields[1], fields.mid(3), named->sheet};
    return std::ranges::all_of(read.paths, isAbsolute) ? std::optional(read) : std::nullopt;
}

} // namespace qirn
