"""Names that shells, ROOT or the file system would read for more than names."""

import os
import unittest

from programs import ProgramTest

# Strange characters are tested without processes in FileNameTest.
COMMAND = "$(touch broken)`touch broken`;touch broken|touch broken&.root"
READERS = ("stn-show", "stn-headers", "stn-verify")


class NamesTest(ProgramTest):
    def test_runs_no_shell(self):
        self.simulate("good.root", "-n", "1")
        name = COMMAND.replace("$", "")
        os.rename(self.path("good.root"), self.path(name))
        for program in READERS:
            self.assertEqual(self.run_program(program, name)[0], 0)
        os.remove(self.path(name))
        self.simulate(name, "-n", "1")
        self.assertEqual(self.run_program("stn-simulate", COMMAND)[0], 2)
        self.assertEqual(os.listdir(self.folder), [name])

    def test_writes_a_file_whose_name_begins_with_a_dash(self):
        self.assertEqual(self.run_program("stn-simulate", "-n", "1", "--", "-run.root")[0], 0)
        self.assertEqual(os.listdir(self.folder), ["-run.root"])

    def test_follows_no_link_to_write(self):
        os.mkdir(self.path("elsewhere"))
        for name in ("run.root", "run.root.part"):
            for target in ("nothing", "file"):
                with self.subTest(name=name, target=target):
                    self.write("elsewhere/file", b"precious")
                    os.symlink(f"elsewhere/{target}", self.path(name))
                    self.assertEqual(
                        self.run_program("stn-simulate", "run.root", "-n", "1", "--force"),
                        (4, "", f"stn-simulate: {name} exists and is no plain file; choose another name\n"),
                    )
                    self.assertEqual(os.listdir(self.path("elsewhere")), ["file"])
                    self.assertEqual(self.read("elsewhere/file"), b"precious")
                    os.remove(self.path(name))

    def test_writes_to_no_pipe(self):
        for name in ("run.root", "run.root.part"):
            with self.subTest(name):
                os.mkfifo(self.path(name))
                self.assertEqual(self.run_program("stn-simulate", "run.root", "-n", "1", "--force")[0], 4)
                os.remove(self.path(name))

    def test_leaves_the_other_names_of_a_file_alone(self):
        for name in ("run.root", "run.root.part"):
            with self.subTest(name):
                self.write("other", b"precious")
                os.link(self.path("other"), self.path(name))
                self.simulate("run.root", "-n", "1", "--force")
                self.assertEqual(self.read("other"), b"precious")
                os.remove(self.path("run.root"))

    def test_keeps_an_unfinished_file(self):
        self.write("run.root.part", b"events")
        code, output, error = self.run_program("stn-simulate", "run.root", "-n", "1")
        self.assertEqual((code, output), (4, ""))
        self.assertIn("run.root.part exists already", error)
        self.assertEqual(self.read("run.root.part"), b"events")

    def test_keeps_checksums_that_exist(self):
        self.write("run.json", b"precious")
        self.assertEqual(
            self.run_program("stn-simulate", "run.root", "-n", "1", "--checksums", "run.json"),
            (4, "", "stn-simulate: run.json exists already; choose another name, or --force to replace it\n"),
        )
        self.assertEqual(self.read("run.json"), b"precious")
        self.assertEqual(os.listdir(self.folder), ["run.json"])

    def test_writes_checksums_and_events_to_two_files(self):
        self.assertEqual(
            self.run_program("stn-simulate", "run.root", "-n", "1", "--checksums", "run.root"),
            (2, "", "stn-simulate: OUT and the checksums are two files\n"),
        )


if __name__ == "__main__":
    unittest.main()
