"""Tests of the pages that the command makes, as a browser shows them.

Makes all pages and shows them to the tests in one session of headless Chromium. With --screenshots
FOLDER, pictures of them for people to look at instead. Names of tests behind the options choose
which ones run: "layout", "layout.TestPrint".
"""

import argparse
import pathlib
import sys
import tempfile
import unittest

import screenshots
import session

MODULES = ["loading", "hostile", "policy", "tools", "layout", "accessibility", "comparison"]


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    for tool in ("tresk", "maker", "chromium", "chromedriver", "pdftotext"):
        parser.add_argument("--" + tool, required=True, metavar="PROGRAM")
    parser.add_argument("--samples", required=True, metavar="FOLDER", type=pathlib.Path)
    parser.add_argument("--screenshots", metavar="FOLDER", type=pathlib.Path)
    parser.add_argument("tests", nargs="*", metavar="TEST")
    return parser.parse_args()


def run_tests(names):
    names = ["test_" + name for name in names or MODULES]
    tests = unittest.defaultTestLoader.loadTestsFromNames(names)
    return unittest.TextTestRunner(verbosity=2).run(tests).wasSuccessful()


def main():
    options = arguments()
    with tempfile.TemporaryDirectory(prefix="tresk-pages-") as folder:
        try:
            session.start(options, pathlib.Path(folder))
            if options.screenshots:
                screenshots.take(options.screenshots)
                return 0
            return 0 if run_tests(options.tests) else 1
        finally:
            session.end()


if __name__ == "__main__":
    sys.exit(main())
