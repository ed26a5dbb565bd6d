import os
import unittest

from programs import ProgramTest


class MergeTest(ProgramTest):
    def merge(self, *args):
        """Runs the program with the inputs, and at the end the output."""
        return self.run_program("stn-merge", *args[:-1], "-o", args[-1])

    def split(self, *args):
        code, _, error = self.run_program("stn-split", *args)
        self.assertEqual((code, error), (0, ""))

    def checksum(self, name):
        """The line of stn-verify without the file's name."""
        return self.run_program("stn-verify", name)[1].partition(": ")[2]

    def show(self, name, what):
        return self.run_program("stn-show", name, what)

    def assert_refused(self, args, code, text, left):
        self.assertEqual(self.merge(*args), (code, "", f"stn-merge: {text}\n"))
        self.assertEqual(sorted(os.listdir(self.folder)), left)

    def test_writes_every_byte_of_its_own_files_again(self):
        for folder in ("one", "two"):
            os.mkdir(self.path(folder))
        self.simulate("run.root", "-n", "20", "--compression", "505")
        self.assertEqual(
            self.merge("run.root", "one/run.root"),
            (0, "one/run.root: 20 of 20 events, with run header, with run trailer\n", ""),
        )
        self.assertEqual(self.checksum("one/run.root"), self.checksum("run.root"))
        self.merge("one/run.root", "two/run.root")
        self.assertEqual(self.read("two/run.root"), self.read("one/run.root"))

    def test_puts_the_parts_of_a_run_together_again(self):
        self.simulate("run.root", "-n", "20")
        self.split("run.root", "one.root", "--count", "7")
        self.split("run.root", "two.root", "--first", "7", "--count", "12")
        self.split("run.root", "three.root", "--first", "19")
        self.assertEqual(
            self.merge("one.root", "two.root", "three.root", "new.root"),
            (0, "new.root: 20 of 20 events, with run header, with run trailer\n", ""),
        )
        self.assertEqual(self.checksum("new.root"), self.checksum("run.root"))
        for what in ("--header", "--trailer"):
            self.assertEqual(self.show("new.root", what), self.show("run.root", what))

    def test_keeps_the_order_of_the_files(self):
        self.simulate("run.root", "-n", "3")
        self.split("run.root", "one.root", "--count", "2")
        self.split("run.root", "two.root", "--first", "2")
        self.merge("two.root", "one.root", "new.root")
        table = self.run_program("stn-headers", "new.root", "--format", "csv")[1]
        numbers = [line.split(",")[1] for line in table.splitlines()[1:]]
        self.assertEqual(numbers, ["3", "1", "2"])

    def test_refuses_files_of_two_runs(self):
        self.simulate("a.root", "-n", "1", "--run", "7")
        self.simulate("b.root", "-n", "1", "--run", "8")
        self.assert_refused(
            ("a.root", "b.root", "new.root"),
            2,
            "the run header of b.root is of run 8, but the run header of a.root of run 7; "
            "a station file has one run of one station",
            ["a.root", "b.root"],
        )

    def test_refuses_files_of_two_stations(self):
        self.simulate("a.root", "-n", "1", "--station", "2")
        self.simulate("b.root", "-n", "1", "--station", "3")
        self.assert_refused(
            ("a.root", "b.root", "new.root"),
            2,
            "the run header of b.root is of station 3, but the run header of a.root of station 2; "
            "a station file has one run of one station",
            ["a.root", "b.root"],
        )

    def test_refuses_an_event_of_another_run(self):
        self.make("mixed", "mixed.root")
        self.assert_refused(
            ("mixed.root", "new.root"),
            2,
            "event 3 of mixed.root is of run 2, but event 0 of mixed.root of run 1; "
            "a station file has one run of one station",
            ["mixed.root"],
        )

    def test_refuses_an_event_twice(self):
        self.simulate("run.root", "-n", "5")
        self.split("run.root", "part.root", "--first", "3")
        self.assert_refused(
            ("run.root", "part.root", "new.root"),
            2,
            "event 0 of part.root has the number 4, as an event of run.root has; name each part of the run once",
            ["part.root", "run.root"],
        )
        self.assertEqual(self.merge("run.root", "run.root", "new.root")[0], 2)

    def test_names_the_event_that_is_damaged(self):
        self.simulate("good.root", "-n", "100")
        self.split("good.root", "bad.root", "--first", "90")
        self.split("good.root", "whole.root", "--count", "90")
        content = bytearray(self.read("bad.root"))
        place = content.index(b"fTriggerData\x0cStnEventTree") + 50
        content[place : place + 6] = b"damage"
        self.write("bad.root", content)
        code, output, error = self.merge("whole.root", "bad.root", "new.root")
        self.assertEqual((code, output), (1, ""))
        self.assertRegex(
            error, r"^stn-merge: bad\.root is damaged: event 0 cannot be read \(.+\); copy or write it again\n\Z"
        )
        self.assertEqual(sorted(os.listdir(self.folder)), ["bad.root", "good.root", "whole.root"])

    def test_goes_on_with_what_could_be_recovered_and_says_so(self):
        self.make("unclosed", "unclosed.root")
        self.assertEqual(
            self.merge("unclosed.root", "new.root"),
            (
                1,
                "new.root: 3 of 3 events, without run header, without run trailer\n",
                "stn-merge: warning: unclosed.root was not closed by its writer; going on with what could be recovered, "
                "3 events\n",
            ),
        )

    def test_keeps_the_first_header_and_the_trailer_that_ends_last(self):
        self.simulate("all.root", "-n", "10")
        self.simulate("few.root", "-n", "5", "--mirrors", "1,2")
        self.split("few.root", "one.root", "--number", "1-3")
        self.split("all.root", "two.root", "--number", "4-10")
        code, _, error = self.merge("one.root", "two.root", "new.root")
        self.assertEqual(code, 0)
        self.assertEqual(
            error,
            "stn-merge: warning: the run header of two.root differs from that of one.root, which is kept\n"
            "stn-merge: warning: the run trailers of one.root and two.root differ in more than the number of events; "
            "the one that ends last is kept, that of two.root\n",
        )
        self.assertEqual(self.show("new.root", "--header"), self.show("few.root", "--header"))
        count = len(self.run_program("stn-headers", "new.root")[1].splitlines()) - 2
        self.assertEqual(
            self.show("new.root", "--trailer")[1],
            self.show("all.root", "--trailer")[1].replace("Number of events: 10", f"Number of events: {count}"),
        )

    def test_keeps_the_trailer_that_ends_last_wherever_it_stands(self):
        self.simulate("all.root", "-n", "10")
        self.simulate("few.root", "-n", "5")
        self.split("few.root", "one.root", "--number", "1-3")
        self.split("all.root", "two.root", "--number", "4-10")
        self.assertEqual(self.merge("two.root", "one.root", "new.root")[0], 0)
        self.assertEqual(self.show("new.root", "--trailer"), self.show("all.root", "--trailer"))

    def test_writes_the_records_of_a_run_without_events(self):
        self.simulate("run.root", "-n", "0")
        self.assertEqual(
            self.merge("run.root", "new.root"),
            (0, "new.root: 0 of 0 events, with run header, with run trailer\n", ""),
        )

    def test_keeps_a_file_that_exists(self):
        self.simulate("run.root", "-n", "1")
        self.write("new.root", b"precious")
        self.assert_refused(
            ("run.root", "new.root"),
            4,
            "new.root exists already; choose another name, or --force to replace it",
            ["new.root", "run.root"],
        )
        self.assertEqual(self.read("new.root"), b"precious")

    def test_replaces_a_file_if_forced(self):
        self.simulate("run.root", "-n", "1")
        self.write("new.root", b"precious")
        self.assertEqual(self.merge("--force", "run.root", "new.root")[0], 0)
        self.assertEqual(self.read("new.root")[:4], b"root")

    def test_never_writes_over_an_input(self):
        self.simulate("a.root", "-n", "1")
        self.simulate("b.root", "-n", "1")
        before = self.read("b.root")
        self.assert_refused(
            ("--force", "a.root", "b.root", "b.root"),
            2,
            "b.root would be overwritten, as the output is first called b.root.part; choose another name for OUT",
            ["a.root", "b.root"],
        )
        self.assertEqual(self.read("b.root"), before)

    def test_refuses_what_is_no_station_file(self):
        self.simulate("run.root", "-n", "1")
        self.make("foreign", "foreign.root")
        self.write("notes.txt", b"not what you are looking for\n")
        for name, text in (
            ("foreign.root", "is a ROOT file but no station file: it has neither events (StnEventTree) nor a run "
                             "header or trailer; name a station file"),
            ("notes.txt", "is not a ROOT file; name a station file"),
            ("none.root", "does not exist; check the name"),
        ):
            for inputs in ((name,), ("run.root", name)):
                with self.subTest(inputs):
                    left = ["foreign.root", "notes.txt", "run.root"]
                    self.assert_refused((*inputs, "new.root"), 3, f"{name} {text}", left)

    def test_explains_itself(self):
        code, output, error = self.run_program("stn-merge", "--help")
        self.assertEqual((code, error), (0, ""))
        self.assertIn("Usage: stn-merge [OPTIONS] IN...\n", output)
        self.assertIn("\nExit codes: 0 fine; 1 ", output)

    def test_wants_an_output(self):
        self.simulate("a.root", "-n", "1")
        self.assertEqual(
            self.run_program("stn-merge", "a.root"),
            (2, "", "--output is required\nRun with --help for more information.\n"),
        )
        self.assertEqual(os.listdir(self.folder), ["a.root"])

    def test_takes_its_arguments_in_any_order(self):
        self.simulate("a.root", "-n", "1")
        self.assertEqual(self.run_program("stn-merge", "-o", "new.root", "a.root")[0], 0)


if __name__ == "__main__":
    unittest.main()
