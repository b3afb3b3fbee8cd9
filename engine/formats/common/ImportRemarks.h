#pragma once
#include <vector>

#include <QString>

namespace qirn {

/// A difference between an opened picture and what its file describes, in words for the user.
struct ImportRemark {
    enum class Kind { without, asOneLayer };

    Kind kind = Kind::without;
    QString what; ///< What is missing ("masks"), or why there is only one layer ("16-bit color").

    bool operator==(const ImportRemark&) const = default;
};
using ImportRemarks = std::vector<ImportRemark>;

/// "Opened without: masks, layer effects." and "Opened as one layer: 16-bit color."; empty where there is nothing to say.
QString wordsOf(const ImportRemarks& remarks);

} // namespace qirn
