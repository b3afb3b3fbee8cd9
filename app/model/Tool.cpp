#include "app/model/Tool.h"

#include <QCoreApplication>

namespace qirn {

QString toolTitle(Tool tool) {
    return QCoreApplication::translate("Tool", rowOf(tool).title);
}

std::optional<Tool> toolWithId(const QString& id) {
    for (const ToolRow& row : kTools) {
        if (id == QLatin1String(row.id)) return row.tool;
    }
    return std::nullopt;
}

std::optional<Tool> toolWithKey(QChar letter) {
    for (const ToolRow& row : kTools) {
        if (letter.toUpper() == QLatin1Char(row.key)) return row.tool;
    }
    return std::nullopt;
}

} // namespace qirn
