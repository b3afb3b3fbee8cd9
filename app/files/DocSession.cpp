#include "app/files/DocSession.h"

namespace qirn {

DocSession::DocSession(std::unique_ptr<PaintDocument> document, QString sessionName, QUrl url,
                       QUuid sessionId, Dirty dirty)
    : id(sessionId),
      fileURL(std::move(url)),
      name(std::move(sessionName)),
      savedChange(dirty == Dirty::yes ? -1 : document->changeCount()),
      autosavedChange(savedChange),
      document_(std::move(document)) {}

void DocSession::announceChange() {
    ++revision_;
    Q_EMIT changed();
}

} // namespace qirn
