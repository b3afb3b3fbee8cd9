#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kAutosave{"autosave", QIRN_HELP("Autosave and crash recovery"),
                          QIRN_HELP("autosave, recover, crash, recovery, lost work, power, backup, safety"),
                          QIRN_HELP(R"body(
While you paint, changed pictures are copied to safety in the background: every minute at first, or as often as
Preferences say («prefs»). You need not do anything, and it never interrupts a stroke: a copy that is due in one is
taken right after it. The end of the status bar tells when a copy last reached the disk, or "Not autosaved" when the
last one did not, as on a full disk; it is tried again every few seconds. The tip on a tab's dot tells whether the
picture is in its copy as you see it.

A safety copy does not take the place of saving: your document file is written only when you save.

## After a crash or a power cut
At the next start the sheet Recover Your Work comes up and lists what was not saved, each with a preview, its
name, the time and the size.
• Recover opens the copy as it was, all layers included, with "(recovered)" behind its name. It counts as
  unsaved: save it.
• Recover All opens every one of them.
• "Saved since" behind the time says that the picture's file was written after the copy was taken.
• Save on a recovered picture starts in the folder where its file was.
• Move to Trash puts one away. You can still take it back out of the Trash.
• Later keeps them all. File → Recover Autosaved Work… brings the sheet back at any time; when there is nothing,
  it says "Nothing to recover."

The same happens when the desktop session ends while the program is open. On disks without file locks, as some network
folders are, the program asks first whether another window has the picture open.

## When copies go away
• After a successful save, and when you close a picture without changes.
• When you answer Don't Save: the copy is brought up to date first and goes to the Trash, so even that can be
  taken back.

## Off
Preferences can turn autosave off, which is not recommended. An interval of 30 seconds costs hardly anything:
only what has changed since the last copy is worked on again.
)body")};

} // namespace qirn::PaintHelp
