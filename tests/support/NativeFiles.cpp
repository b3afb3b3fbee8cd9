#include "support/NativeFiles.h"

#include "formats/native/PaintFile.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"
#include "support/Pictures.h"

#include <QtEndian>

namespace qirn::test {

namespace {
constexpr qsizetype kMagicBytes = 8;
}

NativeFile NativeFile::takenApart(const QByteArray& file) {
    const auto length = qFromLittleEndian<uint32_t>(file.data() + kMagicBytes);
    const QByteArray text = file.mid(kMagicBytes + 4, length);
    return {file.left(kMagicBytes), OrderedJson::parse(text.begin(), text.end()),
            file.mid(kMagicBytes + 4 + length)};
}

QByteArray NativeFile::joinedWith(const QByteArray& manifestText) const {
    QByteArray file = head;
    const auto length = static_cast<uint32_t>(manifestText.size());
    for (int i = 0; i < 4; ++i) file.append(static_cast<char>(length >> (8 * i) & 255));
    return file + manifestText + blob;
}

QByteArray withManifest(const QByteArray& file, const std::function<void(OrderedJson&)>& change) {
    NativeFile parts = NativeFile::takenApart(file);
    change(parts.manifest);
    return parts.joined();
}

QString refusalOf(const QByteArray& file) {
    try {
        PaintFile::decode(bytesOf(file));
        return {};
    } catch (const PaintFileError& error) {
        return error.description();
    }
}

QString damaged(const QString& detail) {
    return QStringLiteral("The Qirn Paint document is damaged (%1). Try File → Recover Autosaved Work.")
        .arg(detail);
}

std::unique_ptr<PaintDocument> richDocument() {
    auto doc = std::make_unique<PaintDocument>(300, 200, 299.5, PaintColor(0.9, 0.8, 0.7));
    Layer& top = doc->activeLayer();
    top.name = QString::fromUtf8("Ébauche ✏️ shading 🦊");
    top.opacity = 0.1 + 0.2; // no short decimal
    top.blendMode = BlendMode::luminosity;
    top.isVisible = true;
    top.isLocked = true;
    top.alphaLocked = true;
    top.isClipping = true;
    paintRect(*doc, top, {200, 50, 90, 100}, {40, 60, 20, 120});
    addLayer(*doc, QStringLiteral("\"quoted\" \\ / \u0007"));
    doc->activeLayer().isVisible = false;
    doc->setActiveIndex(1);
    doc->onion = {.enabled = true,
                  .before = 3,
                  .after = 2,
                  .opacity = 0.3,
                  .tint = false,
                  .beforeColor = {0.1, 0.2, 0.3, 0.4},
                  .afterColor = {0.5, 0.6, 0.7, 0.8}};
    doc->commit(QStringLiteral("Paint"));
    return doc;
}

} // namespace qirn::test
