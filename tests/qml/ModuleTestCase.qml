import QtTest 1.15
import Zelkor.Testing 1.0

// Base of all test cases. A test function fails if a warning of Qt, QML or the library remains in Warnings.
TestCase {
    when: windowShown

    function initTestCase() {
        Warnings.collect()
    }

    function cleanup() {
        compare(Warnings.take(), "")
    }
}
