"""Kills an event builder in every way, and compares what stn-recover brings back with what was on disk.

STN_CRASH_RUNS: number of kills at random moments, of kills in a write, and of cuts at random places (default: 6); runs of
more than 30 MB are killed one for each 30 of them.
STN_CRASH_SEED: decides the moments (default: 1).
STN_CRASH_FIGURES: folder that gets a file with the figures of each kind of test.
"""

import hashlib
import json
import os
import random
import signal
import stat
import subprocess
import time
import unittest

from programs import BIN, ProgramTest
from records import events_on_disk

RUNS = int(os.environ.get("STN_CRASH_RUNS", "6"))
SEED = int(os.environ.get("STN_CRASH_SEED", "1"))
N_LONG_RUNS = RUNS // 30
N_EVENTS = 400

# How an event builder may have its tree put on disk.
BUILDERS = {
    "as the library does it": (),
    "uncompressed": ("--compression", "0"),
    "flushed every 10 events": ("--flush", "10"),
    "saved every 20 events": ("--save", "20", "--save-option", "SaveSelf"),
    "flushed and saved every 20 events": ("--save", "20", "--save-option", "FlushBaskets SaveSelf"),
}


CHECKSUMS = {}  # of the events, for each kind of run


def combine(events):
    """One checksum over those of some events, as stn-verify shows it."""
    value = 0xCBF29CE484222325
    for event in events:
        for part in event:
            value = (value ^ int(part, 16)) * 0x100000001B3 % 2**64
            value ^= value >> 32
    return f"{value:016x}"


class CrashTest(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.totals = [0, 0, 0, 0]  # cases, those in which the promise held, events on disk, events recovered

    def keep_figures(self):
        if "STN_CRASH_FIGURES" not in os.environ:
            return
        with open(os.path.join(os.environ["STN_CRASH_FIGURES"], type(self).__name__), "w") as figures:
            cases, held, on_disk, recovered = self.totals
            figures.write(f"{cases} cases, promise held in {held}, {on_disk} events on disk, {recovered} recovered\n")

    n_events = N_EVENTS
    n_pixels = 12

    @classmethod
    def settings(cls):
        return "--events", str(cls.n_events), "--pixels", str(cls.n_pixels)

    def truth(self):
        """The checksums of the events, taken before any writing."""
        settings = self.settings()
        if settings not in CHECKSUMS:
            self.run_program("CrashWriter", "none", *settings, "--checksums", "truth.json")
            CHECKSUMS[settings] = json.loads(self.read("truth.json"))["events"]
        return CHECKSUMS[settings]

    def write_run(self, *args):
        """Exit code of a builder that ends itself."""
        return self.run_program("CrashWriter", "run.root", *self.settings(), *args)[0]

    def recover(self, name="run.root"):
        """Recovers a file and requires just what is on disk: no event more, none less, and each as it was."""
        on_disk = events_on_disk(self.read(name))
        os.chmod(self.path(name), stat.S_IRUSR)
        before = hashlib.sha256(self.read(name)).digest(), os.stat(self.path(name)).st_mtime_ns
        self.totals[0] += 1
        self.totals[2] += on_disk
        code, output, error = self.run_program("stn-recover", "--force", name, "new.root")
        self.assertEqual((hashlib.sha256(self.read(name)).digest(), os.stat(self.path(name)).st_mtime_ns), before)
        recovered = self.recovered_events(code, output, error)
        self.totals[3] += recovered
        self.totals[1] += recovered == on_disk
        self.keep_figures()
        self.assertEqual(recovered, on_disk, error)
        return recovered

    def recovered_events(self, code, output, error):
        if "nothing can be recovered" in error or "holds nothing of a station file" in error or "is cut short" in error:
            self.assertEqual(output, "")
            return 0
        self.assertIn(code, (0, 1), error)
        n_events = int(output.split()[1])
        code, output, error = self.run_program("stn-verify", "new.root")
        self.assertEqual((code, error), (0, ""))
        self.assertEqual(output, f"new.root: {n_events} events can be read, checksum {combine(self.truth()[:n_events])}\n")
        return n_events


class KilledAtRandom(CrashTest):
    def kill(self, chance, builder, first=1):
        """Starts a builder and kills it after some event and some time, perhaps when it is closing the file. Answers with
        the number of events that it had written."""
        writer = subprocess.Popen(
            [os.path.join(BIN, "CrashWriter"), self.path("run.root"), *self.settings(), *BUILDERS[builder]],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
        )  # fmt: skip
        wanted, n_written = chance.randint(first, self.n_events), 0
        for line in writer.stdout:
            n_written = int(line)
            if n_written >= wanted:
                break
        time.sleep(chance.uniform(0, 0.02))
        writer.kill()
        n_written += writer.stdout.read().count(b"\n")
        writer.stdout.close()
        writer.wait()
        return n_written

    def test_recovers_what_was_on_disk(self):
        for run in range(RUNS):
            chance = random.Random(f"{SEED} {run}")
            builder = list(BUILDERS)[run % len(BUILDERS)]
            with self.subTest(run=run, builder=builder):
                self.kill(chance, builder)
                self.recover()
                os.remove(self.path("run.root"))


@unittest.skipUnless(N_LONG_RUNS, "with STN_CRASH_RUNS=30 and more")
class KilledInALongRun(KilledAtRandom):
    """At 30 MB of baskets ROOT writes them all, and from then on only each time that as many events again have come."""

    n_events = 1600
    n_pixels = 100
    n_bytes = 30_000_000

    def keep_losses(self, n_written, n_recovered):
        if "STN_CRASH_FIGURES" in os.environ:
            with open(os.path.join(os.environ["STN_CRASH_FIGURES"], "losses in long runs"), "a") as figures:
                figures.write(f"{n_written} events written, {n_written - n_recovered} lost\n")

    def test_recovers_what_was_on_disk(self):
        builder = "as the library does it"
        for run in range(N_LONG_RUNS):
            chance = random.Random(f"{SEED} long {run}")
            with self.subTest(run=run):
                n_written = self.kill(chance, builder, self.n_events * 2 // 5)
                self.assertGreater(os.path.getsize(self.path("run.root")), self.n_bytes)
                n_recovered = self.recover()
                self.assertLessEqual(n_recovered, n_written)
                self.keep_losses(n_written, n_recovered)
                os.remove(self.path("run.root"))


class KilledInAWrite(CrashTest):
    def test_recovers_what_was_on_disk(self):
        chance = random.Random(f"{SEED} writes")
        for run in range(RUNS):
            builder = list(BUILDERS)[run % len(BUILDERS)]
            end = chance.choice(("kill-before-write", "kill-halfway", "kill-after-write"))
            at = chance.randint(1, 200)
            with self.subTest(end=end, at=at, builder=builder):
                self.assertEqual(self.write_run("--end", end, "--at", str(at), *BUILDERS[builder]), -signal.SIGKILL)
                self.recover()
                os.remove(self.path("run.root"))


class Cut(CrashTest):
    def test_recovers_what_is_left(self):
        self.assertEqual(self.write_run(), 0)
        whole = self.read("run.root")
        chance = random.Random(f"{SEED} cuts")
        for size in [chance.randrange(1, len(whole)) for _ in range(RUNS)]:
            with self.subTest(size=size):
                self.write("cut.root", whole[:size])
                self.recover("cut.root")
                os.remove(self.path("cut.root"))


class Ended(CrashTest):
    """Other ends than a kill."""

    def test_is_recovered_after_a_signal_between_events(self):
        for end, number in (("interrupt", signal.SIGINT), ("terminate", signal.SIGTERM), ("abort", signal.SIGABRT)):
            for at in (1, 150, N_EVENTS):
                with self.subTest(end=end, at=at):
                    self.assertEqual(self.write_run("--end", end, "--at", str(at)), -number)
                    self.recover()
                    os.remove(self.path("run.root"))

    def test_goes_on_after_an_interrupt_while_an_event_is_written(self):
        for at in (1, 50, 150):
            with self.subTest(at=at):
                self.assertEqual(self.write_run("--end", "interrupt-in-fill", "--at", str(at)), 0)
                self.assertEqual(self.run_program("stn-check", "run.root")[0], 0)
                self.assertEqual(self.recover(), N_EVENTS)
                os.remove(self.path("run.root"))

    def test_closes_the_file_when_the_process_exits(self):
        for end, code in (("exit", 4), ("exit-in-constructor", 5)):
            for at in (1, 150):
                with self.subTest(end=end, at=at):
                    self.assertEqual(self.write_run("--end", end, "--at", str(at)), code)
                    self.assertEqual(self.run_program("stn-check", "run.root")[0], 0)
                    self.assertEqual(self.recover(), at)
                    os.remove(self.path("run.root"))


if __name__ == "__main__":
    unittest.main()
