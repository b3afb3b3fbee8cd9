#pragma once
#include "DocSession.h"

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include <QDateTime>
#include <QImage>
#include <QString>
#include <QUuid>

namespace qirn {

/// Safety copies of changed pictures: for each a native document and a small record beside it, named after the
/// session's id, in one folder. Copies are encoded and written on one background thread in the order in which they
/// were asked for; everything else runs on the main thread.
namespace Recovery {

struct Info {
    QString name;
    std::optional<QString> originalPath; ///< Absent for a picture never saved.
    QDateTime date;
    int64_t width = 0; ///< Canvas pixels; 0 where the record was lost.
    int64_t height = 0;
    int64_t layers = 0;
};

struct Item {
    QUuid id;
    Info info;
    QString file;

    QImage thumbnail() const; ///< The copy's preview; null when it cannot be read.
};

QString fileURL(const QUuid& id);
QString infoURL(const QUuid& id);

enum class Synchronously { no, yes };
/// Freezes the picture as it is now and writes its copy. A failure is logged and never shown; it is tried again
/// after the next change.
void write(DocSession& session, Synchronously synchronously);

enum class MoveToTrash { no, yes };
/// Removes a copy, after any write of it that is still waiting.
void discard(const QUuid& id, MoveToTrash moveToTrash);

/// The copies that no open session owns, newest first.
std::vector<Item> pending(const std::set<QUuid>& excluding);

/// The picture as an unsaved session that keeps the copy's id, so that later copies go on replacing it. Throws a
/// DescribedError.
SessionRef restore(const Item& item);

} // namespace Recovery

} // namespace qirn
