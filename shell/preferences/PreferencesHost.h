#pragma once
#include <QObject>
#include <QPointer>

namespace qirn {

class KitWindow;
class PaintModel;

/// Shows the preferences in a window of their own, made on first use, whenever the model is asked for them.
class PreferencesHost : public QObject {
    Q_OBJECT
public:
    PreferencesHost(PaintModel& model, QObject* parent);
    ~PreferencesHost() override;

private:
    void show();

    PaintModel& model_;
    QPointer<KitWindow> window_; // which the end of the application may destroy before
};

} // namespace qirn
