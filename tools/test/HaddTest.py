"""What ROOT's own program for joining files does with station files."""

import os
import subprocess
import unittest

from programs import BIN, ProgramTest

HADD = os.environ["STN_HADD"]
LIBRARIES = os.path.join(os.path.dirname(BIN), "lib")


@unittest.skipUnless(os.path.exists(HADD), "this ROOT has no hadd")
class HaddTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.simulate("run.root", "-n", "20")
        for name, args in (("one.root", ("--count", "7")), ("two.root", ("--first", "7"))):
            self.assertEqual(self.run_program("stn-split", "run.root", name, *args)[0], 0)

    def hadd(self, *args):
        env = {**os.environ, "LD_LIBRARY_PATH": LIBRARIES}
        return subprocess.run([HADD, *args], cwd=self.folder, capture_output=True, text=True, env=env).returncode

    def checksum(self, name):
        return self.run_program("stn-verify", name)[1].partition(": ")[2]

    def test_keeps_every_event_whole(self):
        self.assertEqual(self.hadd("sum.root", "one.root", "two.root"), 0)
        self.assertEqual(self.checksum("sum.root"), self.checksum("run.root"))

    def test_leaves_the_header_and_trailer_of_the_last_file(self):
        self.hadd("sum.root", "two.root", "one.root")
        for what in ("--header", "--trailer"):
            self.assertEqual(
                self.run_program("stn-show", "sum.root", what), self.run_program("stn-show", "one.root", what)
            )
        self.assertEqual(
            self.run_program("stn-check", "sum.root")[1].splitlines()[-2],
            "sum.root: events by the run trailer: expected 7, found 20",
        )

    def test_joins_different_runs_without_a_word(self):
        self.simulate("other.root", "-n", "2", "--run", "9")
        self.assertEqual(self.hadd("sum.root", "one.root", "other.root"), 0)
        self.assertIn("run number: expected 9, found 1", self.run_program("stn-check", "sum.root")[1])

    def test_loses_a_damaged_file_and_succeeds(self):
        content = bytearray(self.read("two.root"))
        place = content.index(b"fFADCData\x0cStnEventTree") + 3000
        content[place : place + 6] = b"damage"
        self.write("two.root", content)
        self.assertEqual(self.hadd("sum.root", "one.root", "two.root"), 0)
        self.assertEqual(self.checksum("sum.root"), self.checksum("one.root"))


if __name__ == "__main__":
    unittest.main()
