import hashlib
import os
import resource
import stat
import unittest

from programs import ProgramTest


class RecoverTest(ProgramTest):
    def recover(self, *args, **kwargs):
        return self.run_program("stn-recover", *args, **kwargs)

    def checksum(self, name):
        """The line of stn-verify without the file's name."""
        code, output, error = self.run_program("stn-verify", name)
        self.assertEqual((code, error), (0, ""))
        return output.partition(": ")[2]

    def cut(self, name, size):
        self.write(name, self.read("run.root")[:size])

    def find(self, name, text, count=0):
        """Where a text begins in a file, behind so many others."""
        place = -1
        for _ in range(count + 1):
            place = self.read(name).index(text, place + 1)
        return place

    def patch(self, name, place, content):
        whole = bytearray(self.read(name))
        whole[place : place + len(content)] = content
        self.write(name, whole)

    def test_makes_the_same_events_out_of_a_sound_file(self):
        self.simulate("run.root", "-n", "20")
        self.assertEqual(
            self.recover("run.root", "new.root"), (0, "new.root: 20 events, with run header, with run trailer\n", "")
        )
        self.assertEqual(self.checksum("new.root"), self.checksum("run.root"))
        for what in ("--header", "--trailer"):
            self.assertEqual(self.run_program("stn-show", "new.root", what), self.run_program("stn-show", "run.root", what))

    def test_writes_with_the_compression_of_the_input(self):
        self.simulate("run.root", "-n", "3", "--compression", "505")
        self.recover("run.root", "new.root")
        self.assertEqual(self.read("new.root")[33:37], b"\0\0\1\xf9")

    def test_brings_events_back_that_were_saved_with_the_tree(self):
        self.make("unclosed", "unclosed.root")
        self.assertEqual(
            self.recover("unclosed.root", "new.root"),
            (
                1,
                "new.root: 3 events, without run header, without run trailer\n",
                "stn-recover: warning: unclosed.root: event 3 not whole, missing: event identity, traces, pixel list, "
                "pixel data, trigger record, T3 record, geometry record\n",
            ),
        )
        self.make("bare", "bare.root")
        self.assertEqual(self.checksum("new.root"), self.checksum("bare.root"))

    def test_brings_back_what_is_left_of_a_cut_file(self):
        self.simulate("run.root", "-n", "20")
        self.cut("cut.root", self.find("run.root", b"\x05TTree\x0cStnEventTree") - 26)
        self.assertEqual(
            self.recover("cut.root", "new.root"), (0, "new.root: 20 events, with run header, with run trailer\n", "")
        )
        self.assertEqual(self.checksum("new.root"), self.checksum("run.root"))

    def test_only_reads_its_input(self):
        self.simulate("run.root", "-n", "20")
        self.cut("cut.root", len(self.read("run.root")) - 4000)
        os.chmod(self.path("cut.root"), stat.S_IRUSR)
        before = hashlib.sha256(self.read("cut.root")).digest(), os.stat(self.path("cut.root")).st_mtime_ns
        self.recover("cut.root", "new.root")
        after = hashlib.sha256(self.read("cut.root")).digest(), os.stat(self.path("cut.root")).st_mtime_ns
        self.assertEqual(after, before)
        self.assertEqual(sorted(os.listdir(self.folder)), ["cut.root", "new.root", "run.root"])

    def lose_triggers(self):
        """A run of 100 events whose first basket of trigger records, of 85 events, is damaged."""
        self.simulate("run.root", "-n", "100")
        self.patch("run.root", self.find("run.root", b"fTriggerData\x0cStnEventTree") + 50, b"damage")

    def test_leaves_out_events_of_a_damaged_basket(self):
        self.lose_triggers()
        self.assertEqual(
            self.recover("run.root", "new.root"),
            (
                1,
                "new.root: 15 events, with run header, with run trailer\n",
                "stn-recover: warning: run.root: events 0 to 84 not whole, missing: trigger record\n"
                "stn-recover: warning: run.root: 1 baskets are damaged or cut\n",
            ),
        )
        self.assertIn("   85 ", self.run_program("stn-headers", "run.root")[1])

    def test_keeps_events_that_are_there_in_part_if_wanted(self):
        self.lose_triggers()
        code, output, _ = self.recover("--partial", "run.root", "new.root")
        self.assertEqual((code, output), (1, "new.root: 100 events, with run header, with run trailer\n"))

    def test_takes_the_last_of_two_trees(self):
        self.make("twice", "twice.root")
        self.assertEqual(
            self.recover("twice.root", "new.root"),
            (
                1,
                "new.root: 2 events, without run header, without run trailer\n",
                "stn-recover: warning: twice.root: tree 1 of 2 with 3 events was left out: --tree 1 takes it\n"
                "stn-recover: warning: twice.root: tree 2 of 2 with 2 events was taken\n",
            ),
        )
        self.assertEqual(self.checksum("new.root"), self.checksum("twice.root"))

    def test_takes_the_tree_that_is_wanted(self):
        self.make("twice", "twice.root")
        self.make("bare", "bare.root")
        self.assertEqual(self.recover("--tree", "1", "twice.root", "new.root")[0], 1)
        self.assertEqual(self.checksum("new.root"), self.checksum("bare.root"))

    def test_refuses_a_tree_that_does_not_exist(self):
        self.make("bare", "bare.root")
        self.assertEqual(
            self.recover("--tree", "2", "bare.root", "new.root"),
            (2, "", "stn-recover: bare.root has no tree 2: it has 1\n"),
        )
        self.assertEqual(os.listdir(self.folder), ["bare.root"])

    def test_keeps_a_run_without_events(self):
        self.simulate("run.root", "-n", "20")
        self.cut("cut.root", self.find("run.root", b"\x07TBasket\x0cfEventHeader") - 34)
        self.assertEqual(
            self.recover("cut.root", "new.root"), (0, "new.root: 0 events, with run header, without run trailer\n", "")
        )

    def test_says_that_there_is_nothing_to_recover(self):
        self.make("bare", "bare.root")
        self.write("cut.root", self.read("bare.root")[: self.find("bare.root", b"fFADCData\x0cStnEventTree")])
        self.assertEqual(
            self.recover("cut.root", "new.root"),
            (1, "", "stn-recover: cut.root: nothing can be recovered, no event is whole\n"),
        )
        self.assertEqual(sorted(os.listdir(self.folder)), ["bare.root", "cut.root"])

    def test_refuses_what_is_no_station_file(self):
        self.make("foreign", "foreign.root")
        self.write("notes.txt", b"not what you are looking for\n")
        for name, text in (
            ("foreign.root", "holds nothing of a station file, neither events nor run records; name a station file"),
            ("notes.txt", "is not a ROOT file; name a station file"),
            ("none.root", "does not exist; check the name"),
        ):
            with self.subTest(name):
                self.assertEqual(self.recover(name, "new.root"), (3, "", f"stn-recover: {name} {text}\n"))

    def test_never_writes_over_its_input(self):
        self.simulate("run.root", "-n", "1")
        os.rename(self.path("run.root"), self.path("run.root.part"))
        os.link(self.path("run.root.part"), self.path("link.root"))
        before = self.read("run.root.part")
        for written in ("run.root.part", "run.root", "link.root"):
            with self.subTest(written):
                part = written + ".part"
                self.assertEqual(
                    self.recover("--force", "run.root.part", written),
                    (
                        2,
                        "",
                        f"stn-recover: run.root.part would be overwritten, as the output is first called {part}; "
                        "choose another name for OUT\n",
                    ),
                )
                self.assertEqual(self.read("run.root.part"), before)

    def test_keeps_a_file_that_exists(self):
        self.simulate("run.root", "-n", "1")
        self.write("new.root", b"precious")
        self.assertEqual(
            self.recover("run.root", "new.root"),
            (4, "", "stn-recover: new.root exists already; choose another name, or --force to replace it\n"),
        )
        self.assertEqual(self.read("new.root"), b"precious")

    def test_leaves_nothing_behind_where_files_may_not_grow(self):
        # Long enough that the limit leaves room for the counts that an instrumented program writes at its end.
        self.simulate("run.root", "-n", "100")
        limit = len(self.read("run.root")) // 2
        code, output, error = self.recover(
            "run.root", "new.root", preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
        )
        self.assertEqual((code, output), (4, ""))
        self.assertRegex(error, r"^stn-recover: new\.root could not be written \(.+\) and was not kept; ")
        self.assertEqual(os.listdir(self.folder), ["run.root"])

    def test_explains_itself(self):
        code, output, error = self.recover("--help")
        self.assertEqual((code, error), (0, ""))
        self.assertIn("Usage: stn-recover [OPTIONS] IN OUT\n", output)
        self.assertIn("\nExit codes: 0 fine; 1 ", output)


if __name__ == "__main__":
    unittest.main()
