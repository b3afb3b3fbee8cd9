#pragma once
#include "Studio.h"

#include <memory>

#include <QApplication>

namespace qirn::hands {

/// Has the real window under the pen, the fingers and the wheel of a window system: what Qt makes of them is told nowhere
/// else.
class Hands : public QObject {
    Q_OBJECT
public:
    /// With a folder, pictures of the screen are left in it.
    Hands(Devices& devices, QString pictures);

private Q_SLOTS:
    void aPenPaintsExactlyWhatItsPointsSay();
    void noPointIsLostOrDoubledAndEachIsSoonOnTheScreen();
    void aHoveringPenShowsItsRing();
    void theSideButtonOfThePenPicksAColor();
    void aMouseThatIsPushedDuringAStrokePaintsNothing();
    void aLostReleaseEndsTheStrokeWithTheWindow();
    void aPlainWheelZooms();
    void twoFingersHoldThePicture();
    void fingersRestForAHandAtWork();
    void aLiftedGripIsStraightened();
    void aTapPressesButtonsAndPaintsNothing();

private:
    void keepPicture(Studio& studio, const char* name);

    Devices& devices_;
    const QString pictures_;
};

/// What a program needs to run them on Qt's platform of this name.
std::unique_ptr<QApplication> applicationOn(const char* platform, char** argv);

} // namespace qirn::hands
