#include "shell/help/AboutLines.h"

#include <QCoreApplication>

namespace qirn {

namespace {

// As docs/dependencies.md has them, which says what each is for.
constexpr Ingredient kIngredients[] = {
    {"Qt 6", "LGPL-3.0"},
    {"liblzfse", "BSD-3-Clause"},
    {"nlohmann-json", "MIT"},
    {"oneTBB", "Apache-2.0"},
    {"libheif", "LGPL-3.0"},
    {"libexif", "LGPL-2.1"},
    {"libpng", "libpng-2.0"},
    {"libjpeg-turbo", "IJG, BSD-3-Clause"},
    {"libtiff", "libtiff (BSD-like)"},
    {"giflib", "MIT"},
    {"libwebp, with libwebpdemux and libwebpmux", "BSD-3-Clause"},
    {"libzip", "BSD-3-Clause"},
    {"libxcb", "MIT"},
    {"Little CMS", "MIT"},
    {"zlib", "Zlib"},
    {"Highway", "Apache-2.0"},
    {"Inter (fonts-inter)", "OFL-1.1"},
    {"Tabler Icons", "MIT"},
};

} // namespace

std::span<const Ingredient> ingredients() {
    return kIngredients;
}

QString aboutLines() {
    QString lines = QStringLiteral("## ") + QCoreApplication::translate("AboutLines", "Built on");
    for (const Ingredient& part : kIngredients)
        lines += QStringLiteral("\n• %1: %2").arg(QLatin1String(part.name), QLatin1String(part.licence));
    return lines;
}

} // namespace qirn
