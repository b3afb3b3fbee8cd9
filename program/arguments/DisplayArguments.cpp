#include "program/arguments/DisplayArguments.h"

#include <algorithm>

namespace qirn {

namespace {

/// The library's options that a word belongs to. It takes them with two dashes as well.
constexpr const char* kWithWord[] = {"-display",
                                     "-geometry",
                                     "-icon",
                                     "-name",
                                     "-platform",
                                     "-plugin",
                                     "-platformpluginpath",
                                     "-platformtheme",
                                     "-qwindowgeometry",
                                     "-qwindowicon",
                                     "-qwindowtitle",
                                     "-session",
                                     "-style",
                                     "-stylesheet",
                                     "-title"};

/// The first screen of an X display is what its name means without one.
QByteArray withoutFirstScreen(QByteArray display) {
    if (display.endsWith(".0")) display.chop(2);
    return display;
}

} // namespace

DisplayArguments::DisplayArguments(const QStringList& arguments) {
    QByteArray platform = qgetenv("QT_QPA_PLATFORM"), xDisplay = qgetenv("DISPLAY");
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString option =
            arguments[i].startsWith(QLatin1String("--")) ? arguments[i].mid(1) : arguments[i];
        const bool hasWord =
            i > 0 && i + 1 < arguments.size() &&
            std::ranges::any_of(kWithWord, [&](auto* name) { return option == QLatin1String(name); });
        (hasWord ? taken : others) << arguments[i];
        if (!hasWord) continue;
        taken << arguments[++i];
        if (option == QLatin1String("-platform")) platform = arguments[i].toUtf8();
        if (option == QLatin1String("-display")) xDisplay = arguments[i].toUtf8();
    }
    display = platform + '\0' + qgetenv("WAYLAND_DISPLAY") + '\0' + withoutFirstScreen(xDisplay);
}

} // namespace qirn
