#pragma once
#include <memory>

#include <QObject>
#include <QtTest>

namespace qirn::test {

using MakeTest = std::unique_ptr<QObject> (*)();
/// Adds a test class to this program; returns true so that it can stand in an initialiser.
bool registerTest(const char* name, MakeTest make);

} // namespace qirn::test

/// Stands once behind each test class, before its .moc file is included.
#define QIRN_TEST(Class)                                                                                     \
    [[maybe_unused]] static const bool registered##Class = qirn::test::registerTest(                         \
        #Class, []() -> std::unique_ptr<QObject> { return std::make_unique<Class>(); });
