#!/usr/bin/env python3
"""mutants_test.py SOURCE: what scripts/mutants takes for a test that has noticed an error, from the
outputs of test programs that failed, crashed, passed, or never ran."""

import importlib.machinery
import importlib.util
import sys

sys.dont_write_bytecode = True
loader = importlib.machinery.SourceFileLoader("mutants", sys.argv[1] + "/scripts/mutants")
mutants = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutants", loader))
sys.modules["mutants"] = mutants
loader.exec_module(mutants)

passed = "[ RUN      ] A.One\n[       OK ] A.One (0 ms)\n"
begun = "[ RUN      ] A.Two\n"
qt = "********* Start testing of WindowTest *********\nPASS   : WindowTest::initTestCase()\n"

expected = [
    ((passed, 0), None),
    ((passed + begun + "[  FAILED  ] A.Two (0 ms)\n", 1), "A.Two"),
    ((passed + begun, -11), "A.Two (crash)"),
    ((passed, 1), "odd"),  # by a leak or the like: no test has noticed
    (("", 127), "odd"),
    (("Xvfb does not start\n", 1), "odd"),
    ((qt, 0), None),
    ((qt + "FAIL!  : WindowTest::opens() Compared values are not the same\n", 1),
     "WindowTest::opens"),
    ((qt + "Received signal 11 (SIGSEGV)\n", -11), "WindowTest (crash)"),
    ((qt, 1), "odd"),
]
for arguments, wanted in expected:
    try:
        got = mutants.first_failure(*arguments)
    except mutants.OddEnd:
        got = "odd"
    if got != wanted:
        sys.exit(f"{arguments} is taken for {got!r}, not {wanted!r}")
