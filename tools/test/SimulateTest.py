import hashlib
import os
import pty
import resource
import signal
import subprocess
import tempfile
import time
import unittest

from programs import BIN, ProgramTest


class SimulateTest(ProgramTest):
    def digest(self, name):
        return hashlib.sha256(self.read(name)).hexdigest()

    def headers(self, name):
        return self.run_program("stn-headers", name)[1]

    def test_says_what_it_wrote(self):
        self.assertEqual(
            self.run_program("stn-simulate", "run.root", "-n", "3", "--station", "4", "--run", "8", "--seed", "6"),
            (0, "run.root: 3 events of station 4, run 8, seed 6\n", ""),
        )

    def test_leaves_nothing_else_behind(self):
        self.simulate("run.root", "-n", "3")
        self.assertEqual(os.listdir(self.folder), ["run.root"])

    def test_writes_the_same_bytes_for_the_same_seed(self):
        os.mkdir(self.path("other"))
        self.simulate("run.root", "-n", "10", "--seed", "3")
        self.simulate("other/run.root", "-n", "10", "--seed", "3")
        self.assertEqual(self.digest("run.root"), self.digest("other/run.root"))

    def test_writes_the_same_events_for_the_same_seed_under_another_compression(self):
        sums = []
        for compression in ("0", "505"):
            self.simulate("run.root", "-n", "10", "--force", "--compression", compression)
            sums.append(self.run_program("stn-verify", "run.root")[1])
        self.assertEqual(sums[0], sums[1])

    def test_writes_other_events_for_another_seed(self):
        self.simulate("one.root", "-n", "10", "--seed", "1")
        self.simulate("two.root", "-n", "10", "--seed", "2")
        self.assertNotEqual(self.headers("one.root"), self.headers("two.root"))

    def test_begins_a_longer_run_with_the_events_of_a_shorter_one(self):
        self.simulate("short.root", "-n", "5")
        self.simulate("long.root", "-n", "10")
        self.assertTrue(self.headers("long.root").startswith(self.headers("short.root")))

    def test_knows_three_mirrors_in_station_5(self):
        self.simulate("run.root", "-n", "40", "--station", "5")
        mirrors = {cell for line in self.headers("run.root").splitlines()[2:] for cell in line.split() if "-" in cell}
        self.assertIn(" Mirrors present : 1 2 3 \n", self.run_program("stn-show", "run.root", "--header")[1])
        self.assertFalse([cell for cell in mirrors if set(cell) & set("456") and set(cell) <= set("-123456")])

    def test_starts_the_run_when_told(self):
        self.simulate("run.root", "-n", "1", "--start", "1000000000")
        self.assertIn(
            " RUN started at  : 2011-09-14 01:46:25.000000000 UTC\n",
            self.run_program("stn-show", "run.root", "--header")[1],
        )

    def test_writes_no_t3_if_none_is_wanted(self):
        self.simulate("run.root", "-n", "20", "--t3-fraction", "0")
        self.assertNotIn("Number of T3", self.run_program("stn-show", "run.root", "--trailer")[1])

    def test_keeps_a_file_that_exists(self):
        self.write("run.root", b"precious")
        self.assertEqual(
            self.run_program("stn-simulate", "run.root"),
            (4, "", "stn-simulate: run.root exists already; choose another name, or --force to replace it\n"),
        )
        self.assertEqual(self.read("run.root"), b"precious")

    def test_replaces_a_file_if_forced(self):
        self.write("run.root", b"precious")
        self.simulate("run.root", "-n", "1", "--force")
        self.assertEqual(self.read("run.root")[:4], b"root")

    def test_refuses_to_write_over_what_is_no_file(self):
        os.mkdir(self.path("folder"))
        self.assertEqual(
            self.run_program("stn-simulate", "folder", "--force"),
            (4, "", "stn-simulate: folder exists and is no plain file; choose another name\n"),
        )

    def test_refuses_a_name_that_root_would_take_apart(self):
        self.assertEqual(
            self.run_program("stn-simulate", "a?b.root"),
            (
                2,
                "",
                "stn-simulate: a?b.root.part cannot be used: ROOT reads more than a name from ? # $ :/ and from "
                "a blank at the end; choose another name\n",
            ),
        )
        self.assertEqual(os.listdir(self.folder), [])

    def test_says_that_there_is_no_such_folder(self):
        self.assertEqual(
            self.run_program("stn-simulate", "none/run.root"),
            (
                4,
                "",
                f"stn-simulate: none/run.root could not be written (file {os.path.realpath(self.folder)}/none/"
                "run.root.part can not be opened No such file or directory) and was not kept; choose another place\n",
            ),
        )

    def test_refuses_what_does_not_exist(self):
        cases = {
            ("--station", "6"): "--station: Value 6 not in range 1 to 5\nRun with --help for more information.\n",
            ("--mirrors", "1,7"): "stn-simulate: station 1 has mirrors 1 to 6\n",
            ("--station", "5", "--mirrors", "4"): "stn-simulate: station 5 has mirrors 1 to 3\n",
            ("--mirrors", "2,1"): "stn-simulate: mirrors are named once each, in ascending order\n",
            ("--t3-fraction", "1.5"): "--t3-fraction: Value 1.5 not in range 0.000000 to 1.000000\nRun with --help for more information.\n",
            ("--compression", "600"): "--compression: Value 600 not in range 0 to 509\nRun with --help for more information.\n",
        }
        for args, text in cases.items():
            with self.subTest(args):
                self.assertEqual(self.run_program("stn-simulate", "run.root", *args), (2, "", text))

    def test_fails_if_the_checksums_cannot_be_written(self):
        self.assertEqual(
            self.run_program("stn-simulate", "run.root", "-n", "1", "--checksums", "none/run.json"),
            (4, "", "stn-simulate: none/run.json could not be written: No such file or directory\n"),
        )

    def test_explains_itself(self):
        code, output, error = self.run_program("stn-simulate", "--help")
        self.assertEqual((code, error), (0, ""))
        self.assertIn("Usage: stn-simulate [OPTIONS] OUT\n", output)
        self.assertIn("\nExit codes: 0 fine; 1 ", output)

    def test_shows_its_progress_on_a_terminal_only(self):
        master, slave = pty.openpty()
        done = subprocess.run(
            [os.path.join(BIN, "stn-simulate"), "run.root", "-n", "3"], cwd=self.folder, stdout=subprocess.PIPE, stderr=slave
        )
        os.close(slave)
        shown = os.read(master, 10000)
        os.close(master)
        self.assertEqual(done.returncode, 0)
        self.assertIn(b"] 100 %", shown)
        self.assertTrue(shown.endswith(b"\r" + b" " * 38 + b"\r"))


class InterruptTest(ProgramTest):
    def test_takes_its_unfinished_file_along(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number):
                program = subprocess.Popen([os.path.join(BIN, "stn-simulate"), "run.root", "-n", "1000000"], cwd=self.folder)
                # The first basket of headers is on disk after a few events.
                while not os.path.exists(self.path("run.root.part")) or os.path.getsize(self.path("run.root.part")) < 2000:
                    time.sleep(0.05)
                # While an event is written an interrupt is dropped.
                while program.poll() is None:
                    program.send_signal(number)
                    time.sleep(0.05)
                self.assertEqual(program.returncode, -number)
                self.assertEqual(os.listdir(self.folder), [])


class FullDiskTest(ProgramTest):
    """A file that is not whole is never reported, and never left, as one."""

    # The last two meet the writes of closing the file.
    def limits(self):
        self.simulate("run.root", "-n", "30")
        size = len(self.read("run.root"))
        os.remove(self.path("run.root"))
        return {"at the first bytes": 100, "among the events": size // 2, "at the end": size - 300, "by one byte": size - 1}

    def elsewhere(self):
        """Lets a program built for coverage keep its counts where the limit, which holds for them too, does no harm."""
        counts = tempfile.TemporaryDirectory()
        self.addCleanup(counts.cleanup)
        return {**os.environ, "GCOV_PREFIX": counts.name, "GCOV_ERROR_FILE": os.devnull}

    def test_fails_where_files_may_not_grow(self):
        for name, limit in self.limits().items():
            with self.subTest(name):
                code, output, error = self.run_program(
                    "stn-simulate",
                    "run.root",
                    "-n",
                    "30",
                    preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)),
                    env=self.elsewhere(),
                )
                self.assertEqual((code, output), (4, ""))
                self.assertRegex(
                    error,
                    r"^stn-simulate: run\.root could not be written \(.+\) and was not kept; make room and try again\n\Z",
                )
                self.assertEqual(os.listdir(self.folder), [])

    @unittest.skipUnless(os.geteuid() == 0, "only root may mount a small disk")
    def test_fails_on_a_full_disk(self):
        disk = self.path("disk")
        os.mkdir(disk)
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=200k", "none", disk], capture_output=True).returncode:
            self.skipTest("mounting is not allowed here")
        self.addCleanup(subprocess.run, ["umount", disk], check=True)
        code, output, error = self.run_program("stn-simulate", "disk/run.root", "-n", "30")
        self.assertEqual((code, output), (4, ""))
        self.assertRegex(
            error,
            r"^stn-simulate: disk/run\.root could not be written \(.+\) and was not kept; make room and try again\n\Z",
        )
        self.assertEqual(os.listdir(disk), [])


if __name__ == "__main__":
    unittest.main()
