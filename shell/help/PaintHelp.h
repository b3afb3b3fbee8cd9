#pragma once
#include <vector>

#include "kit/help/QirnHelp.h"

/// The manual of the studio.
namespace qirn::PaintHelp {

/// All its pages, in the user's language, with the keys of this machine as they are chosen now.
std::vector<QirnHelpTopic> topics();

/// The same for the key of a command or tool, by its name: "Ctrl+N", "B"; words for none where it has no key, empty where
/// there is no such name.
QString keyWords(const QString& name);

} // namespace qirn::PaintHelp
