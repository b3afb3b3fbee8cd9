#include "kit/help/KitTopics.h"

#include <QCoreApplication>

#include "kit/help/HelpText.h"

namespace qirn {

namespace {

QString words(const char* source) {
    return QCoreApplication::translate("QirnHelp", source);
}

#define TEXT(text) QT_TRANSLATE_NOOP("QirnHelp", text)

constexpr char kLook[] = TEXT(
    R"(
The whole interface can change its colors and its size at any moment. Neither touches your picture: themes and
interface zoom are only about the bars, panels, sheets and menus around it.

## Themes
The Theme menu lists all themes; the one in use has a mark. Choose another and every open window follows at
once. The choice is remembered for the next start.
• Cobalt Gunmetal: cool blue-gray metal with a cobalt accent. It is what a first start shows.
• Candy Red Titanium: dark warm metal with a deep red accent.
• Rose Gold: dark rose with a pink accent.
• Lavender Pearl: dark violet with a lavender accent.
• Midnight Black: nearly black, the least light in a dark room.
• Brushed Gray: the lightest of the six, for a bright room.

All six are dark enough that the colors of a picture stand out, and in all of them texts keep a contrast that
can be read.

## Interface zoom
Zoom In, Zoom Out and Actual Size (100%) in the View menu make every text, button and row larger or smaller,
from 85% to 200%. The Zoom Level list goes straight to 85, 100, 115, 130, 150, 175 or 200%. The button at the
right end of the header shows the level and opens the same list.

Where a large interface no longer fits the window, the window scrolls; nothing is cut off. The level is
remembered too.

Interface zoom is not the zoom of the canvas: that one shows the picture larger or smaller and has its own
commands, whose names begin with Canvas.
)");

constexpr char kAbout[] = TEXT(
    R"(
This program is made by Tessaly Works (Qirn).

## How to reach us
The website is https://qirnpaint.example. If something does not work as this help says, or if this help does not
say what you were looking for, we would like to know. Tell us which version you have: the About window, the last
entry of the Help menu, shows it, together with the licenses of the libraries that the program is built on.
)");

#undef TEXT

} // namespace

std::vector<QirnHelpTopic> kitTopics() {
    return {{QStringLiteral("look"), words(QT_TRANSLATE_NOOP("QirnHelp", "Themes and interface zoom")),
             joinedLines(words(kLook)),
             words(QT_TRANSLATE_NOOP("QirnHelp", "theme, colors, dark, appearance, zoom, text size, larger, "
                                                 "smaller, readable, high dpi"))
                 .split(QStringLiteral(", "))},
            {QStringLiteral("about"), words(QT_TRANSLATE_NOOP("QirnHelp", "About the program and its maker")),
             joinedLines(words(kAbout)),
             words(QT_TRANSLATE_NOOP("QirnHelp", "about, version, contact, website, licenses, tessaly, qirn"))
                 .split(QStringLiteral(", "))}};
}

} // namespace qirn
