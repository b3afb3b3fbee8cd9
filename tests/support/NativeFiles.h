#pragma once
#include "core/PaintDocument.h"
#include "platform/Json.h"

#include <functional>

#include <QByteArray>
#include <QString>

namespace qirn::test {

/// A native document's file taken apart, so that a test can put another one together.
struct NativeFile {
    QByteArray head;      ///< Magic.
    OrderedJson manifest; ///< Key order kept.
    QByteArray blob;      ///< Tiles and preview.

    static NativeFile takenApart(const QByteArray& file);
    QByteArray joined() const { return joinedWith(QByteArray::fromStdString(jsonBytes(manifest))); }
    QByteArray joinedWith(const QByteArray& manifestText) const;
};

/// The file with its manifest changed.
QByteArray withManifest(const QByteArray& file, const std::function<void(OrderedJson&)>& change);

/// How opening ends: the error's words for the user, or empty when it opens.
QString refusalOf(const QByteArray& file);
QString damaged(const QString& detail); ///< The words for damage.

/// Two small tiles in two layers, with every setting away from its default.
std::unique_ptr<PaintDocument> richDocument();

} // namespace qirn::test
