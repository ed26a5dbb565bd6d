"""What the tests of the programs share: a folder of their own, and running a program in it."""

import os
import subprocess
import tempfile
import unittest

BIN = os.environ["STN_BIN"]


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def run_program(self, program, *args, **kwargs):
        """Exit code, standard output and standard error of a program run in the test's folder."""
        done = subprocess.run(
            [os.path.join(BIN, program), *args], cwd=self.folder, capture_output=True, text=True, timeout=300, **kwargs
        )
        return done.returncode, done.stdout, done.stderr

    def simulate(self, name, *args):
        code, _, error = self.run_program("stn-simulate", name, *args)
        self.assertEqual((code, error), (0, ""))

    def make(self, kind, name, *args):
        self.assertEqual(self.run_program("ToolTestFiles", kind, name, *args)[0], 0)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)


class InputRefusals:
    """What every program that reads must refuse, and how; `PROGRAM` names it."""

    def assert_refused(self, name, code, text):
        self.assertEqual(self.run_program(self.PROGRAM, name), (code, "", f"{self.PROGRAM}: {name} {text}\n"))

    def test_refuses_a_missing_file(self):
        self.assert_refused("none.root", 3, "does not exist; check the name")

    def test_refuses_a_directory(self):
        os.mkdir(self.path("folder"))
        self.assert_refused("folder", 3, "is a directory; name a station file in it")

    def test_refuses_an_empty_file(self):
        self.write("empty.root", b"")
        self.assert_refused("empty.root", 3, "is empty; write or copy it again")

    def test_refuses_a_text_file(self):
        self.write("notes.txt", b"not what you are looking for\n")
        self.assert_refused("notes.txt", 3, "is not a ROOT file; name a station file")

    def test_refuses_a_foreign_root_file(self):
        self.make("foreign", "foreign.root")
        self.assert_refused(
            "foreign.root",
            3,
            "is a ROOT file but no station file: it has neither events (StnEventTree) nor a run header or trailer; "
            "name a station file",
        )

    def test_refuses_objects_of_other_classes_under_known_names(self):
        self.make("disguised", "disguised.root")
        self.assert_refused(
            "disguised.root",
            3,
            "is a ROOT file but no station file: it has neither events (StnEventTree) nor a run header or trailer; "
            "name a station file",
        )

    def test_refuses_a_file_cut_in_the_middle(self):
        self.simulate("whole.root", "-n", "3")
        size = len(self.read("whole.root"))
        self.write("cut.root", self.read("whole.root")[: size // 2])
        self.assert_refused(
            "cut.root",
            1,
            f"is cut short, with {size // 2} of its {size} bytes: nothing can be read from it; copy or write it again",
        )

    def test_refuses_a_file_cut_in_its_first_bytes(self):
        self.write("stub.root", b"root\0\0\0\0")
        self.assert_refused("stub.root", 1, "is cut short; copy or write it again")

    def test_refuses_a_file_with_a_destroyed_beginning(self):
        self.simulate("whole.root", "-n", "3")
        content = bytearray(self.read("whole.root"))
        content[100:300] = b"\xff" * 200
        self.write("damaged.root", content)
        code, output, error = self.run_program(self.PROGRAM, "damaged.root")
        self.assertEqual((code, output), (1, ""))
        self.assertRegex(error, rf"^{self.PROGRAM}: damaged.root .*\n\Z")

    def test_explains_itself(self):
        code, output, error = self.run_program(self.PROGRAM, "--help")
        self.assertEqual((code, error), (0, ""))
        self.assertIn(f"Usage: {self.PROGRAM} [OPTIONS] FILE\n", output)
        self.assertIn("\nExit codes: 0 fine; 1 ", output)

    def test_tells_its_version(self):
        self.assertEqual(self.run_program(self.PROGRAM, "--version"), (0, f"{self.PROGRAM} (StnEvent 2.1.100)\n", ""))

    def test_wants_a_file(self):
        code, output, error = self.run_program(self.PROGRAM)
        self.assertEqual((code, output), (2, ""))
        self.assertEqual(error, "FILE is required\nRun with --help for more information.\n")

    def test_refuses_an_unknown_option(self):
        code, _, error = self.run_program(self.PROGRAM, "x.root", "--wrong")
        self.assertEqual(code, 2)
        self.assertIn("--wrong", error)

    def test_says_when_its_output_is_lost(self):
        self.simulate("run.root", "-n", "1")
        with open("/dev/full", "w") as full:
            done = subprocess.run([os.path.join(BIN, self.PROGRAM), self.path("run.root")], stdout=full,
                                  stderr=subprocess.PIPE, text=True)
        self.assertEqual((done.returncode, done.stderr), (4, f"{self.PROGRAM}: the output could not be written\n"))
