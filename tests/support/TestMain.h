#pragma once
#include <memory>

#include <QObject>
#include <QtTest>

namespace qirn::test {

using MakeTest = std::unique_ptr<QObject> (*)();
/// Adds a test class to this program; returns true so that it can stand in an initialiser.
bool registerTest(const char* name, MakeTest make);

/// What the program does as a process of its own, for a test to kill or to starve: `PROGRAM --helper NAME ARGUMENTS...`.
using Helper = int (*)(const QStringList& arguments);
bool registerHelper(const char* name, Helper helper); ///< The same.

} // namespace qirn::test

/// Stands once behind each test class, before its .moc file is included.
#define QIRN_TEST(Class)                                                                                     \
    [[maybe_unused]] static const bool registered##Class = qirn::test::registerTest(                         \
        #Class, []() -> std::unique_ptr<QObject> { return std::make_unique<Class>(); });

/// Stands once behind a function that is run in a process of its own, whose exit code it returns.
#define QIRN_HELPER(function)                                                                                \
    [[maybe_unused]] static const bool registered##function = qirn::test::registerHelper(#function, function);
