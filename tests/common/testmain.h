#pragma once
// Registration of test classes: each test executable runs every class registered in it.
#include <QObject>

namespace fenwork::test {
using TestFactory = QObject *(*)();
int registerTest(const char *name, TestFactory factory);
} // namespace fenwork::test

#define FENWORK_TEST(Class)                                                                         \
    static const int fenworkTestRegistration_##Class =                                             \
        fenwork::test::registerTest(#Class, []() -> QObject * { return new Class; });
