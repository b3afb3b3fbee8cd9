#pragma once
#include <QFont>

/// The one font family of the interface in its four sizes, at the zoom last applied.
namespace qirn::ChromeFont {

QFont title(); ///< Semibold.
QFont body();
QFont small();
QFont caption(); ///< Headings of groups: small and medium weight.

} // namespace qirn::ChromeFont
