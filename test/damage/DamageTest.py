"""Damaged files in the hands of the library. STN_DAMAGE_PART, from 0 to 1, is the part of the cases that is tried.

Left out is what no reader of ours can do anything about: the file's header and the descriptions of classes, which ROOT
reads before the library has a say, and records that would not shrink, which are stored without a checksum."""

import os
import random
import tempfile
import unittest

import cases
import shapes
import survey
import surgery
from reader import Reader, judge

BIN = os.environ["STN_BIN"]
PART = float(os.environ.get("STN_DAMAGE_PART", "0.02"))
# Their blocks have checksums.
CHECKED = ("1", "404")
# Divided otherwise than ours, but complete; known to the library; and what is good up to its end.
WHOLE = ("many-branches", "description of the headers' class exchanged", "good", "good and zeros")
BEFORE_US = ("bytes of the file's header flipped", "records of other lengths", "two runs mixed", "no station file")


class DamageTest(unittest.TestCase):
    def try_all(self, compression, kinds, allowed):
        with tempfile.TemporaryDirectory() as folder, Reader(os.path.join(BIN, "read_damaged")) as reader:
            path, good = survey.simulate(BIN, folder, f"run{compression}.root", compression, 1)
            other = survey.simulate(BIN, folder, f"other{compression}.root", compression, 2)[1]
            sound, damaged = reader.read(path), os.path.join(folder, "damaged.root")
            self.assertEqual(judge(sound, sound), "whole")
            records = surgery.records(good)
            unchecked = [(r.start, r.end) for r in records if r.name == "StreamerInfo"]
            unchecked += [(r.contents, r.end) for r in records if not r.is_packed]
            chance = random.Random(compression)
            tried = 0
            for kind in kinds:
                for what, contents in cases.make(kind, good, other, 1):
                    if chance.random() >= PART:
                        continue
                    is_cut = len(contents) != len(good)
                    if not is_cut and any(contents[begin:end] != good[begin:end] for begin, end in unchecked):
                        continue
                    with open(damaged, "wb") as file:
                        file.write(contents)
                    tried += 1
                    outcome = reader.read(damaged)
                    with self.subTest(kind=kind, what=what):
                        self.assertIn(judge(outcome, sound), allowed, f"{outcome.ended} {outcome.messages[-1:]}")
            self.assertGreater(tried, 0)

    def test_good_data_or_a_message_where_data_has_checksums(self):
        for compression in CHECKED:
            with self.subTest(compression=compression):
                kinds = [kind for kind in cases.KINDS if kind not in BEFORE_US]
                self.try_all(compression, kinds, ("whole", "told", "ended"))

    def test_cut_files_and_wrong_keys_at_any_compression(self):
        kinds = [kind for kind in cases.KINDS if kind.startswith(("cut", "keys"))]
        for compression in ("0", "505"):
            with self.subTest(compression=compression):
                self.try_all(compression, kinds, ("whole", "told"))

    def test_odd_and_large_files(self):
        with tempfile.TemporaryDirectory() as folder, Reader(os.path.join(BIN, "read_damaged")) as reader:
            run = survey.simulate(BIN, folder, "run.root", "1", 1)[0]
            sound = reader.read(run)
            for kind, make in shapes.KINDS.items():
                for what, path in make(BIN, folder, run, random.Random(kind), 5):
                    outcome = reader.read(path)
                    expected = ("whole",) if what in WHOLE else ("told",)
                    if " xor " in what:
                        expected = ("whole", "told")
                    with self.subTest(kind=kind, what=what):
                        self.assertIn(judge(outcome, sound), expected, f"{outcome.ended} {outcome.messages[-1:]}")


if __name__ == "__main__":
    unittest.main()
