#pragma once
#include <vector>

#include "kit/help/QirnHelp.h"

namespace qirn {

/// The kit's own pages: what it does for every application, in the user's language.
std::vector<QirnHelpTopic> kitTopics();

} // namespace qirn
