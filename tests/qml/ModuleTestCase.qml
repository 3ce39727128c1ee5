import QtTest 1.15
import Zelkor.Testing 1.0

// What every test file's case is: a warning of Qt, QML or the library that it does not take fails the test function.
TestCase {
    when: windowShown

    function initTestCase() {
        Complaints.watch()
    }

    function cleanup() {
        compare(Complaints.take(), "")
    }
}
