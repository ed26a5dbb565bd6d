"""survey.py BIN [PART]: damages files in every way there is and prints how often each end was met.

PART, from 0 to 1, is the part of the cases that is tried."""

import collections
import os
import random
import subprocess
import sys
import tempfile

import cases
from reader import Reader, judge

SEED = 1
COMPRESSIONS = ("1", "0", "404", "505")


def simulate(folder, name, compression, seed):
    path = os.path.join(folder, name)
    subprocess.run(
        [os.path.join(sys.argv[1], "stn-simulate"), path, "-n", "12", "--compression", compression, "--seed", str(seed)],
        check=True, stdout=subprocess.DEVNULL,
    )
    with open(path, "rb") as file:
        return path, file.read()


def survey(folder, compression, part, count, bad):
    path, good = simulate(folder, f"run{compression}.root", compression, 1)
    other = simulate(folder, f"other{compression}.root", compression, 2)[1]
    damaged = os.path.join(folder, "damaged.root")
    chance = random.Random(SEED)
    with Reader(os.path.join(sys.argv[1], "read_damaged")) as reader:
        sound = reader.read(path)
        for kind in cases.KINDS:
            for what, contents in cases.make(kind, good, other, SEED):
                if chance.random() >= part:
                    continue
                with open(damaged, "wb") as file:
                    file.write(contents)
                outcome = reader.read(damaged)
                verdict = judge(outcome, sound)
                count[kind, compression][verdict] += 1
                if verdict not in ("whole", "told"):
                    bad.append((verdict, compression, kind, what, outcome))


def main():
    part = float(sys.argv[2]) if len(sys.argv) > 2 else 1
    count, bad = collections.defaultdict(collections.Counter), []
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder:
        for compression in COMPRESSIONS:
            survey(folder, compression, part, count, bad)
    for (kind, compression), verdicts in count.items():
        print(f"{kind:60} {compression:>4} {sum(verdicts.values()):6}  " + ", ".join(f"{v} {n}" for v, n in sorted(verdicts.items())))
    for verdict, compression, kind, what, outcome in bad:
        print(verdict, compression, kind, "|", what, "|", outcome.ended, outcome.seconds, outcome.kilobytes, outcome.messages[-1:])


main()
