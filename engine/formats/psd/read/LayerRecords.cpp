#include "formats/psd/read/LayerRecords.h"

#include "formats/common/FormatErrors.h"
#include "formats/psd/PSDHeader.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace qirn {

namespace {

using namespace PSDFile;

QString unicodeName(BEReader& in, int64_t units) {
    QString name;
    for (int64_t i = 0; i < units; ++i) name.append(QChar(in.u16()));
    const auto isEnd = [](QChar c) { return c == QChar::Null; };
    const auto first = std::find_if_not(name.begin(), name.end(), isEnd);
    const auto last = std::find_if_not(name.rbegin(), std::make_reverse_iterator(first), isEnd).base();
    const QString trimmed(first, last - first);
    const auto scalars = trimmed.toUcs4(); // halves of pairs are replaced on the way
    return QString::fromUcs4(reinterpret_cast<const char32_t*>(scalars.constData()), scalars.size());
}

std::span<const uint8_t> dataOf(BEReader& in, int64_t size, int64_t end) {
    return in.slice(std::clamp<int64_t>(std::min(size, end - in.pos()), 0, in.remaining()));
}

bool isKnownMode(std::string_view key) {
    return std::any_of(std::begin(kBlendModes), std::end(kBlendModes),
                       [&](const BlendModeRow& row) { return row.psdKey == key; });
}

/// The losses of a group's own record, not of the one that ends it. The layers inside show as if there were no group.
Losses lossesOfGroup(const Rec& rec, std::span<const uint8_t> data) {
    constexpr uint32_t kOpen = 1, kClosed = 2;
    Losses losses;
    BEReader in(data);
    if (in.remaining() < 4) return losses;
    const uint32_t kind = in.u32();
    if (kind != kOpen && kind != kClosed) return losses;
    if (rec.isHidden()) losses.insert(Loss::hiddenGroups);
    if (rec.opacity < 1) losses.insert(Loss::groupBlending);
    if (in.remaining() >= 8) {
        in.skip(4);
        const auto key = in.text(4);
        if (key != "pass" && key != "norm") losses.insert(Loss::groupBlending);
    }
    return losses;
}

/// The tagged blocks at the end of a record, up to `end`.
void readBlocks(BEReader& in, int64_t end, Rec& rec) {
    for (int64_t at = in.pos(); const auto block = readPSDBlock(in, at, end, false);) {
        const auto& [key, size] = *block;
        at = in.pos() + size;
        if (key == "luni" && size >= 4) {
            const int64_t count = in.u32();
            // Never beyond the record, so that a thousand records cannot have the same bytes for their names.
            const int64_t room = std::min(size - 4, std::max<int64_t>(end - in.pos(), 0));
            rec.name = unicodeName(in, std::min(count, room / 2));
        } else if (key == "lsct" || key == "lsdk") {
            rec.isSection = true;
            rec.losses.merge(lossesOfGroup(rec, dataOf(in, size, end)));
        } else {
            rec.losses.merge(lossesOfBlock(key, dataOf(in, size, end)));
        }
    }
}

} // namespace

Rec PSDFile::readRecord(BEReader& in) {
    Rec rec;
    const int64_t top = in.i32(), left = in.i32(), bottom = in.i32(), right = in.i32();
    rec.rect = {left, top, right - left, bottom - top};
    const int channels = in.u16();
    for (int i = 0; i < channels; ++i) {
        const int16_t identifier = in.i16();
        rec.chans.emplace_back(identifier, in.u32());
    }
    if (in.text(4) != "8BIM") throw PaintFileError::damaged(QStringLiteral("layer record"));
    const auto modeKey = in.text(4);
    rec.mode = blendModeFromPSD(modeKey);
    rec.opacity = in.u8() / 255.0;
    rec.isClipping = in.u8() != 0;
    rec.flags = in.u8();
    in.skip(1);
    const int64_t extra = in.u32();
    const int64_t end = in.pos() + extra;
    rec.losses.merge(lossesOfMask(in.slice(in.u32())));
    rec.losses.merge(lossesOfRanges(in.slice(in.u32())));
    const int64_t nameLength = in.u8();
    const auto name = in.slice(nameLength);
    rec.name = QString::fromUtf8(reinterpret_cast<const char*>(name.data()), nameLength);
    in.skip((4 - (1 + nameLength) % 4) % 4);
    readBlocks(in, end, rec);
    if (!rec.isSection && !isKnownMode(modeKey)) rec.losses.insert(Loss::blendModes);
    in.moveTo(end);
    return rec;
}

} // namespace qirn
