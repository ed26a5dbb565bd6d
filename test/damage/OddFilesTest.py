"""Odd and large files in the hands of the programs that look after damage: stn-check and stn-recover."""

import os
import random
import unittest

import shapes
import surgery
from programs import BIN, ProgramTest

N_EVENTS = 12
BRANCHES = "in its tree StnEventTree there is no branch {} of StnEvent; name a station file"


class OddFilesTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.simulate("run.root", "-n", str(N_EVENTS))

    def make_odd(self, kind, *args):
        shapes.make_odd(BIN, kind, self.path("odd.root"), self.path("run.root"), *args)

    def checksum(self, name):
        return self.run_program("stn-verify", name)[1].split()[-1]


class TreesOfAnotherShape(OddFilesTest):
    def test_are_refused_in_one_line_by_the_check(self):
        for kind in ("no-headers", "numbers", "names", "events-for-headers", "one-branch"):
            with self.subTest(kind=kind):
                self.make_odd(kind)
                code, _, error = self.run_program("stn-check", "odd.root")
                self.assertEqual((code, error), (3, f"stn-check: odd.root is no station file: {BRANCHES.format('fEventHeader')}\n"))

    def test_are_sound_if_they_are_only_divided_further(self):
        self.make_odd("many-branches")
        self.assertEqual(self.run_program("stn-check", "odd.root"), (0, "odd.root: sound, 12 events can be read\n", ""))

    def test_yield_no_events_without_headers(self):
        self.make_odd("no-headers")
        self.assertEqual(
            self.run_program("stn-recover", "--partial", "odd.root", "new.root"),
            (
                1,
                "new.root: 0 events, with run header, with run trailer\n",
                "stn-recover: warning: odd.root: events 0 to 11 not whole, missing: header\n",
            ),
        )

    def test_are_recovered_by_todays_description_of_the_classes(self):
        self.simulate("plain.root", "-n", str(N_EVENTS), "--compression", "0")
        exchanged = surgery.exchange_names(self.read("plain.root"), "TStnEventHeader*", "TStnTriggerData*")
        self.write("odd.root", exchanged)
        self.assertEqual(
            self.run_program("stn-recover", "odd.root", "new.root"),
            (0, "new.root: 12 events, with run header, with run trailer\n", ""),
        )
        self.assertEqual(self.checksum("new.root"), self.checksum("run.root"))

    def test_of_any_kind_do_not_end_the_recovery(self):
        for what, path in shapes.trees(BIN, self.folder, self.path("run.root"), random.Random(1), 0):
            with self.subTest(what=what):
                code, _, error = self.run_program("stn-recover", "--force", path, "new.root")
                self.assertIn(code, (0, 1, 3))
                self.assertNotIn("crash", error)


class LargeFiles(OddFilesTest):
    def setUp(self):
        super().setUp()
        self.make_odd("large", str(shapes.STEP))

    def test_are_sound(self):
        self.assertGreater(os.path.getsize(self.path("odd.root")), 2**32)
        self.assertEqual(self.run_program("stn-check", "odd.root"), (0, "odd.root: sound, 12 events can be read\n", ""))

    def test_are_recovered_whole(self):
        self.assertEqual(
            self.run_program("stn-recover", "odd.root", "new.root"),
            (0, "new.root: 12 events, with run header, with run trailer\n", ""),
        )
        self.assertEqual(self.checksum("new.root"), self.checksum("run.root"))
        self.assertLess(os.path.getsize(self.path("new.root")), 2**20)

    def test_are_recovered_up_to_where_they_were_cut(self):
        for quarter in (3, 2, 1):
            with self.subTest(quarter=quarter):
                os.truncate(self.path("odd.root"), quarter * shapes.STEP + 20)
                self.assertEqual(self.run_program("stn-check", "odd.root")[0], 1)
                self.assertEqual(
                    self.run_program("stn-recover", "--force", "odd.root", "new.root")[1],
                    f"new.root: {quarter * N_EVENTS // 4} events, with run header, without run trailer\n",
                )

    def test_with_a_damaged_basket_far_behind_are_damaged(self):
        place = 3 * shapes.STEP
        with open(self.path("odd.root"), "r+b") as file:
            file.seek(place + 200)
            file.write(b"damaged")
        code, output, _ = self.run_program("stn-check", "odd.root")
        self.assertEqual(code, 1)
        self.assertIn(f"TBasket at byte {place}: expected 410 bytes that can be unpacked, found damaged bytes\n", output)

    def test_of_zeros_are_looked_through_at_once(self):
        with open(self.path("odd.root"), "r+b") as file:
            file.truncate(100)
            file.truncate(2**43)
        for program in ("stn-check", "stn-recover"):
            with self.subTest(program=program):
                output = ("new.root",) if program == "stn-recover" else ()
                self.assertEqual(
                    self.run_program(program, "odd.root", *output),
                    (3, "", f"{program}: odd.root holds nothing of a station file, neither events nor run records; name a station file\n"),
                )


if __name__ == "__main__":
    unittest.main()
