#include "testmain.h"

#include <QApplication>
#include <QTest>
#include <vector>

namespace fenwork::test {
namespace {
struct Entry
{
    const char *name;
    TestFactory factory;
};
std::vector<Entry> &registry()
{
    static std::vector<Entry> entries;
    return entries;
}
} // namespace

int registerTest(const char *name, TestFactory factory)
{
    registry().push_back({name, factory});
    return int(registry().size());
}
} // namespace fenwork::test

// FENWORK_TEST_CLASS=Name runs one class; other arguments go to QTest (test function names, -v2 ...).
int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QByteArray only = qgetenv("FENWORK_TEST_CLASS");
    int failures = 0;
    for (const auto &entry : fenwork::test::registry()) {
        if (!only.isEmpty() && only != entry.name)
            continue;
        QObject *object = entry.factory();
        failures += QTest::qExec(object, argc, argv);
        delete object;
    }
    return failures == 0 ? 0 : 1;
}
