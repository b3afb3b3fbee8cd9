#pragma once
#include <vector>

#include <QString>

namespace qirn {

/// Something in which a picture that was opened is not what its file was made to be, in words for the user.
struct ImportRemark {
    enum class Kind { without, asOneLayer };

    Kind kind = Kind::without;
    QString what; ///< "masks", "16-bit color": what is missing, or why there is one layer only.

    bool operator==(const ImportRemark&) const = default;
};
using ImportRemarks = std::vector<ImportRemark>;

/// "Opened without: masks, layer effects." and "Opened as one layer: 16-bit color."; empty where there is nothing to say.
QString wordsOf(const ImportRemarks& remarks);

} // namespace qirn
