#pragma once

#include <QtCore/QObject>
#include <QtCore/QRegularExpression>

namespace Zelkor::Testing
{

/// Base class of all test classes. A test function fails in each of these cases:
/// - Qt logs a warning that ExpectQtWarning() did not announce.
/// - Qt does not log a warning that ExpectQtWarning() announced.
/// - glog logs a warning or an error while no LogCapture exists.
///
/// If the environment variable ZQTUTIL_TEST_SCREENS is set, initTestCase() checks that the program runs on an X server
/// with that number of screens, and that the screens form one desktop and do not overlap.
///
/// This class implements QtTest's slots initTestCase(), init(), cleanup() and cleanupTestCase(). Derived classes
/// override SetUp() and TearDown() instead.
class TestCase : public QObject
{
    Q_OBJECT

protected:
    /// Announces one Qt message of type QtWarningMsg or QtCriticalMsg whose text matches \a pattern. The message can be
    /// logged on any thread, and at any time until TearDown() returns. This function can be called from any thread.
    static void ExpectQtWarning(QRegularExpression const& pattern);

    /// Called before each data row of each test function.
    virtual void SetUp() {}

    /// Called after each data row of each test function, even if the test function failed.
    virtual void TearDown() {}

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
};

/// Runs the tests of one test class and returns the number of failures.
///
/// Before the test object is created, RunTests() sets a fixed environment: locale C.UTF-8, time zone UTC, and one new
/// folder that is the home folder, the temporary folder and the runtime folder at the same time. The new folder is
/// removed before RunTests() returns.
///
/// \param argc, argv   The arguments of main(). QtTest evaluates them.
/// \param withWidgets  True to create a QApplication, false to create a QCoreApplication.
/// \param makeTest     Creates the test object. RunTests() takes ownership of the object.
int RunTests(int argc, char** argv, bool withWidgets, QObject* (*makeTest)());

/// Overload that creates the test object with the default constructor of class \a Test.
template <class Test>
int RunTests(int argc, char** argv, bool withWidgets)
{
    return RunTests(argc, argv, withWidgets, []() -> QObject* { return new Test; });
}

} // namespace Zelkor::Testing

/// Defines main() of a test program without widgets.
#define ZQTUTIL_TEST_MAIN(Test)                                                                                        \
    int main(int argc, char** argv)                                                                                    \
    {                                                                                                                  \
        return Zelkor::Testing::RunTests<Test>(argc, argv, false);                                                     \
    }

/// Defines main() of a test program with widgets. QT_QPA_PLATFORM selects the platform plugin.
#define ZQTUTIL_WIDGET_TEST_MAIN(Test)                                                                                 \
    int main(int argc, char** argv)                                                                                    \
    {                                                                                                                  \
        return Zelkor::Testing::RunTests<Test>(argc, argv, true);                                                      \
    }
