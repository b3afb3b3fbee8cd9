#pragma once

namespace qirn {

/// From here on the calling thread works behind the user's back: every other thread of the machine goes before it, and
/// `concurrentPerform` stays on it, so that a pen in motion keeps all processors but what it leaves.
void becomeBackgroundThread();

/// While one lives, somebody waits for background threads: they use all processors, also in loops that they are in the
/// middle of.
class BackgroundHurry {
public:
    BackgroundHurry();
    ~BackgroundHurry();
    BackgroundHurry(const BackgroundHurry&) = delete;
    BackgroundHurry& operator=(const BackgroundHurry&) = delete;
};

bool keepsToItself(); ///< The calling thread is a background thread, and nobody waits for it.

} // namespace qirn
