#pragma once

#include <QtCore/QObject>
#include <QtCore/QRegularExpression>

namespace Zelkor::Testing
{

/// What every test of the tree derives from. A Qt warning that was not announced, an announced one that did not come,
/// and a glog warning or error that no LogCapture was there for fail the test function in which they happen.
///
/// With ZQTUTIL_TEST_SCREENS in the environment the program must find that many screens side by side on an X server.
///
/// QtTest's own slots are taken; a test overrides SetUp() and TearDown() instead.
class TestCase : public QObject
{
    Q_OBJECT

protected:
    /// Announces a Qt warning (or worse) that matches \a pattern, on any thread, before the test function ends.
    static void ExpectQtWarning(QRegularExpression const& pattern);

    /// Before and after each row of each test function.
    virtual void SetUp() {}
    virtual void TearDown() {}

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
};

/// Runs the tests of \a test, made after the environment is pinned: locale C.UTF-8, time zone UTC, and a home and a
/// temporary folder of the program's own, removed at the end.
int RunTests(int argc, char** argv, bool withWidgets, QObject* (*makeTest)());

template <class Test>
int RunTests(int argc, char** argv, bool withWidgets)
{
    return RunTests(argc, argv, withWidgets, []() -> QObject* { return new Test; });
}

} // namespace Zelkor::Testing

/// The main function of a test program without widgets.
#define ZQTUTIL_TEST_MAIN(Test)                                                                                        \
    int main(int argc, char** argv)                                                                                    \
    {                                                                                                                  \
        return Zelkor::Testing::RunTests<Test>(argc, argv, false);                                                     \
    }

/// The main function of a test program with widgets, on the platform plugin that the environment names.
#define ZQTUTIL_WIDGET_TEST_MAIN(Test)                                                                                 \
    int main(int argc, char** argv)                                                                                    \
    {                                                                                                                  \
        return Zelkor::Testing::RunTests<Test>(argc, argv, true);                                                      \
    }
