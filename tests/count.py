"""Prints the number of passed tests in a CTest log.

Each passed data row of a QtTest program counts as one test. Each passed program that does not use QtTest counts as one
test.
"""

import re
import sys

# QtTest counts initTestCase() and cleanupTestCase() of each test class as passed tests. count() subtracts them.
SETUP_ROW = r"^PASS   : .*::(?:initTestCase|cleanupTestCase)\(\)$"


def count(log):
    programs = log.count("\nTest Passed.")
    rows = [int(number) for number in re.findall(r"^Totals: (\d+) passed", log, re.MULTILINE)]
    setup_rows = re.findall(SETUP_ROW, log, re.MULTILINE)
    return programs - len(rows) + sum(rows) - len(setup_rows)


with open(sys.argv[1], encoding="utf-8", errors="replace") as file:
    print(count(file.read()))
