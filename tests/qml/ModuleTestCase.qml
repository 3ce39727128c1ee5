import QtTest 1.15
import Zelkor.Testing 1.0

// Base type of all QML test cases. A test function fails if Qt, QML or the library logs a warning while it runs.
// A test that expects a warning removes it with Warnings.take().
TestCase {
    when: windowShown

    function initTestCase() {
        Warnings.collect()
    }

    function cleanup() {
        compare(Warnings.take(), "")
    }
}
