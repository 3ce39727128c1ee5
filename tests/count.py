"""Prints how many tests a CTest log tells of: the rows of the QtTest programs, and the tests that are other programs."""

import re
import sys

# QtTest counts the set-up and the tear-down of a test class as passed tests.
OWN_ROW = r"^PASS   : .*::(?:initTestCase|cleanupTestCase)\(\)$"


def count(log):
    programs = log.count("\nTest Passed.")
    rows = [int(number) for number in re.findall(r"^Totals: (\d+) passed", log, re.MULTILINE)]
    own_rows = re.findall(OWN_ROW, log, re.MULTILINE)
    return programs - len(rows) + sum(rows) - len(own_rows)


with open(sys.argv[1], encoding="utf-8", errors="replace") as file:
    print(count(file.read()))
