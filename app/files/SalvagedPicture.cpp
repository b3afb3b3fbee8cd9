#include "app/files/SalvagedPicture.h"

#include "core/PaintDocument.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/files/ReadFile.h"

#include <QCoreApplication>

namespace qirn {

namespace {

QString wordsOf(const PaintFile::Salvaged& salvaged) {
    QStringList layers;
    for (std::size_t i = 0; i < salvaged.lostTiles.size(); ++i) {
        if (salvaged.lostTiles[i] == 0) continue;
        layers << QCoreApplication::translate("SalvagedPicture", "%1 (%L2)")
                      .arg(salvaged.document->layer(static_cast<int64_t>(i)).name)
                      .arg(salvaged.lostTiles[i]);
    }
    return QCoreApplication::translate("SalvagedPicture", "Tiles that could not be read, by layer: %1")
        .arg(layers.join(QStringLiteral(", ")));
}

} // namespace

SessionRef salvagedPicture(const QString& path, const QString& name, const QUuid& id,
                           const Progress& progress) {
    PaintFile::Salvaged salvaged = PaintFile::salvage(bytesOf(readFile(path)), progress);
    const QString remark = wordsOf(salvaged);
    auto session =
        std::make_shared<DocSession>(std::move(salvaged.document), name, QUrl(), id, DocSession::Dirty::yes);
    session->remark = remark;
    return session;
}

bool canBeSalvaged(const std::exception& error) {
    const auto* refusal = dynamic_cast<const PaintFileError*>(&error);
    return refusal && refusal->hasSoundParts();
}

} // namespace qirn
