#include "kit/KitStore.h"

#include <map>
#include <memory>
#include <string>

namespace qirn {

KitStore KitStore::forThisRun() {
    const auto texts = std::make_shared<std::map<std::string, QString>>();
    const auto numbers = std::make_shared<std::map<std::string, double>>();
    return {[texts](const char* key) { return (*texts)[key]; },
            [texts](const char* key, const QString& value) { (*texts)[key] = value; },
            [numbers](const char* key) { return (*numbers)[key]; },
            [numbers](const char* key, double value) { (*numbers)[key] = value; }};
}

} // namespace qirn
