#pragma once
#include <cstdint>
#include <optional>
#include <vector>

#include <QByteArray>

namespace qirn::test {

/// A layer's channel: its compression code and data, and the length that the record states, if that is a lie.
struct PSDChannel {
    int16_t identifier;
    QByteArray data;
    std::optional<uint32_t> statedLength{};
};

/// A layer's record in a Photoshop file, as a test wants it.
struct PSDRecord {
    int32_t top = 0, left = 0, bottom = 0, right = 0;
    std::vector<PSDChannel> channels{};
    QByteArray signature = "8BIM";
    QByteArray key = "norm";
    uint8_t opacity = 255, clipping = 0, flags = 0;
    QByteArray mask{}, ranges{};
    QByteArray name{};        ///< With its length and padding made for it.
    QByteArray blocks{};      ///< Behind the name.
    QByteArray namePadding{}; ///< In place of zeros.
};

/// A Photoshop file put together by hand.
struct PSDParts {
    uint32_t width = 4, height = 3;
    uint16_t version = 1, channels = 3, depth = 8, mode = 3;
    QByteArray modeData{};
    QByteArray resources{};
    std::vector<PSDRecord> records{};
    std::optional<int16_t> count{}; ///< Of layers; minus the number of records if not given.
    QByteArray behindLayers{};      ///< In the layer section, or all of it where there are no records.
    QByteArray picture{};           ///< Compression code and data.

    QByteArray joined() const;
};

QByteArray big16(uint32_t value);
QByteArray big32(uint32_t value);
/// "8BIM", key, length, data.
QByteArray psdBlock(const QByteArray& key, const QByteArray& data);
/// A `luni` block's data.
QByteArray psdUnicode(const std::vector<uint16_t>& units);
QByteArray psdResource(uint16_t identifier, const QByteArray& name, const QByteArray& data);
/// Rows as they are, all of one byte.
QByteArray rawChannel(int w, int h, uint8_t value);
/// Packed rows as given, their counts before them.
QByteArray packedChannel(const std::vector<QByteArray>& rows);

} // namespace qirn::test
