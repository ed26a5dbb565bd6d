"""Programs on files and disks that fail them: refused writes, no room, no right, files that go away."""

import errno
import os
import resource
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "test"))
from programs import BIN, ProgramTest

SHIM = os.environ["STN_SHIM"]
# Which of the calls fail; WriteFaultsTest goes through all of them, without the programs around.
NUMBERS = range(1, 100) if "STN_LONG" in os.environ else (1, 4, 12)
NOBODY = 65534


class ToolFaultsTest(ProgramTest):
    def run_with_fault(self, program, *args, **fault):
        shim = {f"IO_SHIM_{name.upper()}": str(value) for name, value in fault.items()}
        return self.run_program(program, *args, env={**os.environ, "LD_PRELOAD": SHIM, **shim})

    def writers(self):
        """Programs that write, with what they are told."""
        self.simulate("good.root", "-n", "3")
        self.write("cut.root", self.read("good.root")[:-300])
        return {
            "stn-simulate": ("out.root", "-n", "3"),
            "stn-recover": ("cut.root", "out.root"),
            "stn-merge": ("good.root", "-o", "out.root"),
        }

    def test_report_no_file_that_is_not_whole(self):
        for program, args in self.writers().items():
            for call, error in (("write", errno.ENOSPC), ("write", 0), ("fsync", errno.EIO), ("rename", errno.EACCES)):
                for number in NUMBERS:
                    with self.subTest(program=program, call=call, error=error, number=number):
                        code, output, text = self.run_with_fault(
                            program, *args, file="out.root", call=call, nth=number, lasting=number % 2, error=error
                        )
                        left = sorted(set(os.listdir(self.folder)) - {"good.root", "cut.root"})
                        if code == 0:
                            self.assertEqual(left, ["out.root"])
                            self.assertEqual(self.run_program("stn-check", "out.root")[0], 0)
                            os.remove(self.path("out.root"))
                            break
                        self.assertEqual((code, output, left), (4, "", []))
                        self.assertRegex(text, rf"{program}: out\.root could not be written \(.+\) and was not kept")

    @unittest.skipUnless(os.geteuid() == 0, "only root may mount a small disk")
    def test_keep_nothing_on_a_full_disk(self):
        disk = self.path("disk")
        os.mkdir(disk)
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=28k", "none", disk], capture_output=True).returncode:
            self.skipTest("mounting is not allowed here")
        self.addCleanup(subprocess.run, ["umount", disk], check=True)
        for program, args in self.writers().items():
            with self.subTest(program):
                args = [arg.replace("out.root", "disk/out.root") for arg in args]
                code, output, text = self.run_program(program, *args)
                self.assertEqual((code, output, os.listdir(disk)), (4, "", []))
                self.assertIn("make room and try again", text)

    @unittest.skipUnless(os.geteuid() == 0, "only root can become nobody")
    def test_say_that_a_folder_may_not_be_written(self):
        writers = self.writers()
        os.chmod(self.folder, 0o755)
        before = sorted(os.listdir(self.folder))
        for program, args in writers.items():
            with self.subTest(program):
                code, output, text = self.run_program(program, *args, user=NOBODY, group=NOBODY, extra_groups=[])
                self.assertEqual((code, output), (4, ""))
                self.assertIn("Permission denied", text)
                self.assertEqual(sorted(os.listdir(self.folder)), before)

    @unittest.skipUnless(os.geteuid() == 0, "only root can become nobody")
    def test_say_that_a_file_may_not_be_read(self):
        self.simulate("good.root", "-n", "1")
        os.chmod(self.folder, 0o755)
        os.chmod(self.path("good.root"), 0o600)
        for program in ("stn-show", "stn-headers", "stn-verify", "stn-check"):
            with self.subTest(program):
                code, output, text = self.run_program(program, "good.root", user=NOBODY, group=NOBODY, extra_groups=[])
                self.assertEqual(code, 3)
                self.assertIn("Permission denied", output + text)

    def test_stop_at_a_size_limit_without_a_signal(self):
        limit = 20000
        for program, args in self.writers().items():
            with self.subTest(program):
                code, output, text = self.run_program(
                    program, *args, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)),
                    env={**os.environ, "GCOV_ERROR_FILE": os.devnull},
                )  # fmt: skip
                self.assertEqual((code, output), (4, ""))
                self.assertIn("out.root could not be written", text)


if __name__ == "__main__":
    unittest.main()
