#include "support/PSDFiles.h"

#include "formats/common/ByteReader.h"

namespace qirn::test {

QByteArray big16(uint32_t value) {
    BEWriter out;
    out.u16(static_cast<uint16_t>(value));
    return out.take();
}

QByteArray big32(uint32_t value) {
    BEWriter out;
    out.u32(value);
    return out.take();
}

namespace {

QByteArray counted(const QByteArray& bytes) {
    return big32(static_cast<uint32_t>(bytes.size())) + bytes;
}

QByteArray padded(QByteArray name, const QByteArray& padding) {
    name.prepend(static_cast<char>(name.size()));
    const qsizetype missing = (4 - name.size() % 4) % 4;
    return name + (padding.isEmpty() ? QByteArray(missing, '\0') : padding.left(missing));
}

QByteArray recordBytes(const PSDRecord& record) {
    QByteArray bytes;
    for (const int32_t edge : {record.top, record.left, record.bottom, record.right})
        bytes += big32(static_cast<uint32_t>(edge));
    bytes += big16(static_cast<uint32_t>(record.channels.size()));
    for (const PSDChannel& channel : record.channels) {
        bytes += big16(static_cast<uint16_t>(channel.identifier));
        bytes += big32(channel.statedLength.value_or(static_cast<uint32_t>(channel.data.size())));
    }
    bytes += record.signature + record.key;
    for (const uint8_t byte : {record.opacity, record.clipping, record.flags, uint8_t{0}})
        bytes.append(static_cast<char>(byte));
    return bytes + counted(counted(record.mask) + counted(record.ranges) +
                           padded(record.name, record.namePadding) + record.blocks);
}

} // namespace

QByteArray PSDParts::joined() const {
    QByteArray file = "8BPS" + big16(version) + QByteArray(6, '\0') + big16(channels) + big32(height) +
                      big32(width) + big16(depth) + big16(mode) + counted(modeData) + counted(resources);
    if (version == 2) file += big32(0); // the upper half of the length
    if (records.empty() && !count) return file + counted(behindLayers) + picture;
    QByteArray layers =
        big16(static_cast<uint16_t>(count.value_or(static_cast<int16_t>(-static_cast<int>(records.size())))));
    for (const PSDRecord& record : records) layers += recordBytes(record);
    for (const PSDRecord& record : records) {
        for (const PSDChannel& channel : record.channels) layers += channel.data;
    }
    return file + counted(counted(layers) + behindLayers) + picture;
}

QByteArray psdBlock(const QByteArray& key, const QByteArray& data) {
    return "8BIM" + key + counted(data);
}

QByteArray psdUnicode(const std::vector<uint16_t>& units) {
    QByteArray data = big32(static_cast<uint32_t>(units.size()));
    for (const uint16_t unit : units) data += big16(unit);
    return data;
}

QByteArray psdResource(uint16_t identifier, const QByteArray& name, const QByteArray& data) {
    QByteArray bytes = "8BIM" + big16(identifier);
    bytes.append(static_cast<char>(name.size()));
    bytes += name;
    if (name.size() % 2 == 0) bytes.append('\0');
    bytes += counted(data);
    return data.size() % 2 ? bytes + '\0' : bytes;
}

QByteArray rawChannel(int w, int h, uint8_t value) {
    return big16(0) + QByteArray(w * h, static_cast<char>(value));
}

QByteArray packedChannel(const std::vector<QByteArray>& rows) {
    QByteArray counts, bytes;
    for (const QByteArray& row : rows) {
        counts += big16(static_cast<uint32_t>(row.size()));
        bytes += row;
    }
    return big16(1) + counts + bytes;
}

} // namespace qirn::test
