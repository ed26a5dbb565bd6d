import hashlib
import os
import shutil
import stat
import unittest

from programs import InputRefusals, ProgramTest


class RecoverTest(ProgramTest):
    def recover(self, *args):
        return self.run_program("stn-recover", *args)

    def checksum(self, name):
        """The line of stn-verify without the file's name."""
        return self.run_program("stn-verify", name)[1].partition(": ")[2]

    def cut(self, name, size):
        self.write(name, self.read("run.root")[:size])

    def test_makes_the_same_events_out_of_a_sound_file(self):
        self.simulate("run.root", "-n", "20")
        self.assertEqual(
            self.recover("run.root", "new.root"), (0, "new.root: 20 events, with run header, with run trailer\n", "")
        )
        self.assertEqual(self.checksum("new.root"), self.checksum("run.root"))

    def test_brings_events_back_that_were_saved_with_the_tree(self):
        self.make("unclosed", "unclosed.root")
        self.assertEqual(
            self.recover("unclosed.root", "new.root"),
            (
                1,
                "new.root: 3 events, without run header, without run trailer\n",
                "stn-recover: warning: unclosed.root: event 3 not whole, missing: event identity, traces, pixel list, "
                "pixel data, trigger record, T3 record, geometry record\n",
            ),
        )
        self.make("bare", "bare.root")
        self.assertEqual(self.checksum("new.root"), self.checksum("bare.root"))


if __name__ == "__main__":
    unittest.main()
