#pragma once
#include <functional>
#include <initializer_list>
#include <tuple>
#include <type_traits>

#include <QtTest>

namespace qirn::test {

/// Checks each row of a table, up to the first that fails, whose name is told. A test that is skipped or that needs
/// a fresh `init` for each row has a table of Qt's.
template <class... Columns>
void forRows(std::type_identity_t<std::initializer_list<std::tuple<const char*, Columns...>>> rows,
             const std::type_identity_t<std::function<void(const Columns&...)>>& check) {
    for (const auto& row : rows) {
        std::apply([&](const char*, const auto&... columns) { check(columns...); }, row);
        if (!QTest::currentTestFailed()) continue;
        qWarning("in the row \"%s\"", std::get<0>(row));
        return;
    }
}

} // namespace qirn::test
