#pragma once
#include "app/commands/CommandRow.h"
#include "app/model/PaintModel.h"

#include <span>

#include <QCoreApplication>

/// The rows of the menus, a file for menus that go together, and what the rows are written with.
namespace qirn::MenuRows {

std::span<const CommandRow> file();
std::span<const CommandRow> edit();    ///< "Edit" and "Select".
std::span<const CommandRow> picture(); ///< "Image" and "Layer".
std::span<const CommandRow> view();    ///< "View" and "Theme".
std::span<const CommandRow> help();

inline constexpr int Command = Qt::CTRL, Shift = Qt::SHIFT, Option = Qt::ALT, Control = Qt::META;

template <auto kMethod> void call(PaintModel& model) {
    (model.*kMethod)();
}

template <auto kSubject, auto kMethod> void call(PaintModel& model) {
    ((model.*kSubject)().*kMethod)();
}

template <PaintSheet::Kind kKind> void sheet(PaintModel& model) {
    model.showSheet({kKind});
}

} // namespace qirn::MenuRows

/// The English source of a title.
#define QIRN_TITLE(text) QT_TRANSLATE_NOOP("qirn::PaintCommands", text)
