#include "support/TestMain.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLocale>

namespace qirn::test {

namespace {
struct Entry {
    const char* name;
    MakeTest make;
};
std::vector<Entry>& entries() {
    static std::vector<Entry> list;
    return list;
}
std::map<std::string, Helper>& helpers() {
    static std::map<std::string, Helper> list;
    return list;
}
} // namespace

bool registerTest(const char* name, MakeTest make) {
    entries().push_back({name, make});
    return true;
}

bool registerHelper(const char* name, Helper helper) {
    return helpers().emplace(name, helper).second;
}

} // namespace qirn::test

/// Programs with widgets define this to make their own application object.
extern std::unique_ptr<QCoreApplication> makeTestApplication(int& argc, char** argv);
[[gnu::weak]] std::unique_ptr<QCoreApplication> makeTestApplication(int& argc, char** argv) {
    return std::make_unique<QGuiApplication>(argc, argv);
}

/// The first argument may name one class; the rest goes to Qt Test, but for what stands behind "--", which the class
/// reads itself. Without a name every class runs.
int main(int argc, char** argv) {
    const auto app = makeTestApplication(argc, argv);
    QLocale::setDefault(QLocale::c()); // numbers as on no desktop in particular
    if (argc > 2 && std::strcmp(argv[1], "--helper") == 0)
        return qirn::test::helpers().at(argv[2])(QCoreApplication::arguments().mid(3));
    const char* wanted = argc > 1 && std::strncmp(argv[1], "tst_", 4) == 0 ? argv[1] : nullptr;
    std::vector<char*> rest{argv[0]};
    for (int i = wanted ? 2 : 1; i < argc && std::strcmp(argv[i], "--") != 0; ++i) rest.push_back(argv[i]);
    int failures = 0;
    bool found = false;
    for (const auto& entry : qirn::test::entries()) {
        if (wanted && std::strcmp(wanted, entry.name) != 0) continue;
        found = true;
        const auto object = entry.make();
        failures += QTest::qExec(object.get(), static_cast<int>(rest.size()), rest.data());
    }
    if (!found) std::fprintf(stderr, "No test class of that name.\n");
    return found && failures == 0 ? 0 : 1;
}
