#pragma once
#include "shell/sheets/Sheet.h"

#include <QUuid>

class QLineEdit;

namespace qirn {

/// Asks for the name of a layer.
class RenameLayerSheet : public Sheet {
    Q_OBJECT
public:
    RenameLayerSheet(PaintModel& model, const QUuid& layer, QWidget* parent);

private:
    void rename();

    QUuid layer_;
    QLineEdit* name_;
};

} // namespace qirn
