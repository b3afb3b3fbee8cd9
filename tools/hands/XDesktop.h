#pragma once
#include <QObject>

namespace qirn::hands {

/// What a desktop hears on an X server when another start has its click bring the studio forward.
class XDesktop : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aClickInAnotherWindowPutsTheStudioInFront();
};

} // namespace qirn::hands
