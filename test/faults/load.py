"""load.py BIN SECONDS [PAIRS]: pairs of processes, one that writes station files and one that reads what its partner has
finished, all at once. Every event read is compared with what was written. Stops by itself after SECONDS; the exit code
tells whether everything was right."""

import os
import queue
import subprocess
import sys
import tempfile
import threading
import time

EVENTS = 20
LONGEST = 300  # seconds that one process may take on a busy machine


def run(program, *args):
    done = subprocess.run([os.path.join(sys.argv[1], program), *args], capture_output=True, text=True, timeout=LONGEST)
    return done.returncode == 0 or f"{program} {' '.join(args)}: {done.returncode} {done.stderr}"


class Pair:
    def __init__(self, number, folder, end):
        self.number, self.folder, self.end = number, folder, end
        self.finished = queue.Queue(maxsize=2)
        self.written = self.read = 0
        self.errors = []
        self.threads = [threading.Thread(target=self.attempt, args=(work,)) for work in (self.write_all, self.read_all)]

    def attempt(self, work):
        try:
            work()
        except Exception as error:
            self.errors.append(repr(error))

    def write_all(self):
        try:
            while time.monotonic() < self.end or not self.written:
                path = os.path.join(self.folder, f"{self.number}-{self.written}.root")
                seed = str(1000 * self.number + self.written)
                self.note(run("stn-simulate", path, "-n", str(EVENTS), "--seed", seed, "--checksums", path + ".json"))
                self.written += 1
                self.finished.put(path, timeout=LONGEST)
        finally:
            self.finished.put(None, timeout=LONGEST)

    def read_all(self):
        while path := self.finished.get(timeout=LONGEST):
            self.note(run("stn-verify", path, "--checksums", path + ".json"))
            self.read += 1
            os.remove(path)
            os.remove(path + ".json")

    def note(self, result):
        if result is not True:
            self.errors.append(result)


def main():
    seconds, n_pairs = float(sys.argv[2]), int(sys.argv[3]) if len(sys.argv) > 3 else 8
    with tempfile.TemporaryDirectory() as folder:
        begin = time.monotonic()
        pairs = [Pair(number, folder, begin + seconds) for number in range(n_pairs)]
        threads = [thread for pair in pairs for thread in pair.threads]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        left = os.listdir(folder)
    errors = [error for pair in pairs for error in pair.errors] + [f"{name} was left behind" for name in left]
    written, read = sum(pair.written for pair in pairs), sum(pair.read for pair in pairs)
    print(f"{n_pairs} writers and {n_pairs} readers, {time.monotonic() - begin:.0f} s: {written} files of {EVENTS} events "
          f"written, {read} read and compared, {len(errors)} errors")  # fmt: skip
    print(*errors, sep="\n")
    return 1 if errors or written != read else 0


sys.exit(main())
