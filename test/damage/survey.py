"""survey.py BIN [PART]: damages files in every way there is, reads them with the library, and prints how often each end
was met. PART, from 0 to 1, is the part of the cases that is tried.

whole    everything came back as it was written
told     something is missing or wrong, and a message came first
ended    the library ended the process, as it does when a pixel list contradicts itself
wrong    something is wrong or missing without a message
crash    ROOT crashed
hang     ROOT took all its time or gave no end of messages
"""

import collections
import os
import random
import subprocess
import sys
import tempfile

import cases
import shapes
from reader import Reader, judge

SEED = 1
N_FAR_PLACES = 100  # behind 2 GB
COMPRESSIONS = ("1", "404", "505", "0")
VERDICTS = ("whole", "told", "ended", "wrong", "crash", "hang")


def simulate(programs, folder, name, compression, seed):
    path = os.path.join(folder, name)
    subprocess.run(
        [os.path.join(programs, "stn-simulate"), path, "-n", "12", "--compression", compression, "--seed", str(seed)],
        check=True, stdout=subprocess.DEVNULL,
    )  # fmt: skip
    with open(path, "rb") as file:
        return path, file.read()


def survey(programs, folder, compression, part):
    """Each case that was tried: kind, what was done, verdict, outcome."""
    path, good = simulate(programs, folder, f"run{compression}.root", compression, 1)
    other = simulate(programs, folder, f"other{compression}.root", compression, 2)[1]
    damaged, chance = os.path.join(folder, "damaged.root"), random.Random(SEED)
    with Reader(os.path.join(programs, "read_damaged")) as reader:
        sound = reader.read(path)
        for kind in cases.KINDS:
            for what, contents in cases.make(kind, good, other, SEED):
                if chance.random() < part:
                    with open(damaged, "wb") as file:
                        file.write(contents)
                    outcome = reader.read(damaged)
                    yield kind, what, judge(outcome, sound), outcome
        for kind, make in shapes.KINDS.items():
            for what, odd in make(programs, folder, path, chance, N_FAR_PLACES):
                if chance.random() < part:
                    outcome = reader.read(odd)
                    yield kind, what, judge(outcome, sound), outcome


def main():
    programs, part = sys.argv[1], float(sys.argv[2]) if len(sys.argv) > 2 else 1
    with tempfile.TemporaryDirectory() as folder:
        for compression in COMPRESSIONS:
            count, bad = collections.defaultdict(collections.Counter), []
            for kind, what, verdict, outcome in survey(programs, folder, compression, part):
                count[kind][verdict] += 1
                if verdict not in ("whole", "told", "ended"):
                    bad.append(f"{verdict}: {kind}, {what}: {outcome.ended}, {outcome.seconds} s, {outcome.kilobytes} kB, "
                               f"{outcome.messages[-1:]}")  # fmt: skip
            print(f"\n## Compression {compression}\n\n| damage | tried | {' | '.join(VERDICTS)} |\n|---|{'---|' * 7}")
            for kind, verdicts in count.items():
                print(f"| {kind} | {sum(verdicts.values())} | " + " | ".join(str(verdicts[v]) for v in VERDICTS) + " |")
            print("", *bad, sep="\n", flush=True)


if __name__ == "__main__":
    main()
