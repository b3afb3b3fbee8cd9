#pragma once
#include <vector>

#include "app/model/choices/KeyChoices.h"
#include "kit/help/QirnHelp.h"

namespace qirn {
class PaintModel;
}

/// The manual of the studio.
namespace qirn::PaintHelp {

/// All its pages, in the user's language, with the keys of this machine.
std::vector<QirnHelpTopic> topics(const KeyChoices& choices = {});
/// Installs them anew whenever other keys are chosen, while the model lives.
void followKeys(PaintModel& model);

/// The same for the key of a command or tool, by its name: "Ctrl+N", "B"; words for none where it has no key, empty where
/// there is no such name.
QString keyWords(const QString& name, const KeyChoices& choices = {});

} // namespace qirn::PaintHelp
