#include "MemoryWatch.h"
#include "OpenedDocument.h"
#include "core/PaintDocument.h"
#include "formats/common/ByteReader.h"
#include "formats/psd/PSDFile.h"
#include "platform/Bytes.h"
#include "platform/DescribedError.h"
#include "platform/Require.h"

#include <cstddef>
#include <cstdint>
#include <memory>

using namespace qirn;

namespace {

std::unique_ptr<PaintDocument> opened(std::span<const uint8_t> file) {
    try {
        return PSDFile::read(file);
    } catch (const DescribedError&) {
        return nullptr;
    } catch (const BEReader::Short&) {
        return nullptr;
    }
}

/// A name's zeros at its ends are not kept by the format, and a layer without a name gets one.
void makeNamesPlain(const PaintDocument& doc) {
    for (const LayerRef& layer : doc.layers()) {
        layer->name.remove(QChar(QChar::Null));
        if (layer->name.isEmpty()) layer->name = QStringLiteral("Unnamed");
    }
}

} // namespace

/// Any bytes are refused or opened; what opened and is written again opens as the same picture.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    std::unique_ptr<PaintDocument> doc;
    {
        fuzz::MemoryWatch memory;
        doc = opened({data, size});
        memory.requireWithin(doc ? fuzz::bytesHeldBy(*doc)
                                 : fuzz::kMostFromOneByte * static_cast<int64_t>(size));
    }
    if (!doc || !fuzz::isSmall(*doc)) return 0;
    makeNamesPlain(*doc);
    const auto again = opened(bytesOf(PSDFile::write(*doc, PSDFile::Layered::yes)));
    require(again && again->fingerprint() == doc->fingerprint());
    return 0;
}
