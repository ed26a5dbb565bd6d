"""A run that is still being written, read by another process."""

import os
import subprocess
import unittest

from programs import BIN, ProgramTest


class GrowingTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.writer = subprocess.Popen(
            [os.path.join(BIN, "ToolTestFiles"), "growing", "run.root"],
            cwd=self.folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
        )
        self.addCleanup(self.end)

    def end(self):
        self.writer.stdin.close()
        self.writer.stdout.close()
        self.assertEqual(self.writer.wait(60), 0)

    def step(self, *steps):
        for step in steps:
            self.writer.stdin.write(step + "\n")
            self.writer.stdin.flush()
            self.assertEqual(self.writer.stdout.readline(), "done\n")

    def look(self):
        """Exit code, number of events, and warning of a program that reads all."""
        code, output, error = self.run_program("stn-verify", "run.root")
        self.assertRegex(output, r"^run\.root: \d+ events can be read, checksum ")
        return code, int(output.split()[1]), error

    def recovered(self, count):
        return 1, count, (
            "stn-verify: warning: run.root was not closed by its writer; going on with what could be recovered, "
            f"{count} events\n"
        )

    def test_has_no_events_before_the_first_save(self):
        self.step("e", "e")
        self.assertEqual(self.look(), self.recovered(0))

    def test_is_read_up_to_its_last_save_with_a_warning(self):
        self.step("e", "e", "e", "", "e", "e")
        self.assertEqual(self.look(), self.recovered(3))
        self.step("")
        self.assertEqual(self.look(), self.recovered(5))

    def test_is_read_as_a_closed_file_where_the_save_has_written_its_place(self):
        self.step("e", "e", "e", "SaveSelf", "e", "e")
        self.assertEqual(self.look(), (0, 3, ""))
        self.step("FlushBaskets SaveSelf")
        self.assertEqual(self.look(), (0, 5, ""))

    def test_has_its_run_header(self):
        self.step("e", "SaveSelf")
        code, output, error = self.run_program("stn-show", "run.root", "--header")
        self.assertEqual((code, error), (0, ""))
        self.assertIn(" RUN id          : 1\n", output)

    def test_can_be_copied_up_to_its_last_save(self):
        self.step("e", "e", "e", "SaveSelf", "e")
        self.assertEqual(
            self.run_program("stn-merge", "run.root", "-o", "new.root"),
            (0, "new.root: 3 of 3 events, with run header, without run trailer\n", ""),
        )

    def test_is_not_disturbed_by_readers(self):
        self.step("e", "e", "", "e")
        self.look()
        self.step("e", "SaveSelf")
        self.look()
        self.writer.stdin.close()
        self.writer.wait(60)
        self.assertEqual(self.look(), (0, 4, ""))


if __name__ == "__main__":
    unittest.main()
