#pragma once
#include "core/PaintDocument.h"

#include <memory>

#include <QString>

namespace qirn {

/// The demonstration picture: a fixed script of engine calls that drives gradients, shapes, brushes, spray, text,
/// clipping and blend modes, the same on every run. It needs an application object, for the text.
namespace PaintSample {

std::unique_ptr<PaintDocument> make();

/// Writes the document at `path` and a PNG beside it; throws a DescribedError.
void write(const QString& path);

} // namespace PaintSample

} // namespace qirn
