#pragma once
#include <optional>

#include <QImage>
#include <QString>

namespace qirn {

/// The preview that a document's file holds, of which only header, manifest and preview are read: what it costs does not
/// grow with the picture. Nothing for what is no document, is damaged or has none, and for a preview or manifest that is
/// larger than any of ours. Throws ReadError. On any thread.
std::optional<QImage> storedPreview(const QString& path);

} // namespace qirn
