import json
import os
import unittest

from programs import ProgramTest


class CheckTest(ProgramTest):
    def check(self, *args):
        return self.run_program("stn-check", *args)

    def test_finds_nothing_wrong_with_a_sound_file(self):
        self.simulate("run.root", "-n", "20")
        self.assertEqual(self.check("run.root"), (0, "run.root: sound, 20 events can be read\n", ""))


if __name__ == "__main__":
    unittest.main()
