import os
import unittest

from programs import ProgramTest


class SplitTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.simulate("run.root", "-n", "30", "--run", "7", "--t3-fraction", "0.5")

    def split(self, *args):
        return self.run_program("stn-split", "run.root", "new.root", *args)

    def lines(self, name, *args):
        """Headers as CSV, without their entries."""
        return [line.partition(",")[2] for line in self.run_program("stn-headers", name, "--format", "csv", *args)[1].splitlines()]

    def assert_same_selection(self, *args):
        expected = self.lines("run.root", *args)
        self.assertTrue(1 < len(expected) < 31, expected)
        count = len(expected) - 1
        self.assertEqual(
            self.split(*args, "--force"),
            (0, f"new.root: {count} of 30 events, with run header, with run trailer\n", ""),
        )
        self.assertEqual(self.lines("new.root"), expected)
        self.assertEqual(self.run_program("stn-check", "new.root")[0], 0)

    def test_takes_a_range_of_entries(self):
        self.assert_same_selection("--first", "5", "--count", "10")

    def test_takes_a_range_of_event_numbers(self):
        self.assert_same_selection("--number", "5-9,12")

    def test_takes_a_class(self):
        name = self.run_program("stn-headers", "run.root", "--format", "jsonl", "--count", "1")[1]
        self.assert_same_selection("--class", name.partition('"eventClass":"')[2].partition('"')[0])

    def test_takes_everything_if_nothing_is_said(self):
        self.assertEqual(self.split(), (0, "new.root: 30 of 30 events, with run header, with run trailer\n", ""))
        checksums = [self.run_program("stn-verify", name)[1].partition(": ")[2] for name in ("run.root", "new.root")]
        self.assertEqual(checksums[0], checksums[1])

    def test_counts_the_events_in_the_trailer_and_keeps_the_rest_of_it(self):
        self.split("--count", "4")
        trailer = self.run_program("stn-show", "run.root", "--trailer")[1]
        self.assertIn("Number of events: 30\n", trailer)
        self.assertEqual(
            self.run_program("stn-show", "new.root", "--trailer")[1],
            trailer.replace("Number of events: 30\n", "Number of events: 4\n"),
        )

    def test_keeps_the_run_header(self):
        self.split("--count", "4")
        show = [self.run_program("stn-show", name, "--header") for name in ("run.root", "new.root")]
        self.assertEqual(show[0], show[1])

    def test_writes_the_records_of_the_run_if_no_event_is_wanted(self):
        self.assertEqual(
            self.split("--number", "1000"), (0, "new.root: 0 of 30 events, with run header, with run trailer\n", "")
        )
        self.assertEqual(self.run_program("stn-check", "new.root")[0], 0)

    def test_refuses_to_write_nothing(self):
        self.make("bare", "bare.root")
        self.assertEqual(
            self.run_program("stn-split", "bare.root", "new.root", "--number", "1000"),
            (
                2,
                "",
                "stn-split: new.root would be empty: no event is wanted, and there is no run header or trailer\n",
            ),
        )
        self.assertEqual(sorted(os.listdir(self.folder)), ["bare.root", "run.root"])

    def test_takes_one_run_out_of_a_file_of_two(self):
        self.make("mixed", "mixed.root")
        self.assertEqual(self.run_program("stn-split", "mixed.root", "new.root")[0], 2)
        self.assertEqual(
            self.run_program("stn-split", "mixed.root", "new.root", "--run", "2"),
            (0, "new.root: 2 of 5 events, without run header, with run trailer\n", ""),
        )

    def test_reads_only_the_headers_of_events_that_are_not_wanted(self):
        self.simulate("run.root", "-n", "100", "--force")
        content = bytearray(self.read("run.root"))
        place = content.index(b"fTriggerData\x0cStnEventTree") + 50
        content[place : place + 6] = b"damage"
        self.write("run.root", content)
        code, output, error = self.split("--first", "80")
        self.assertEqual((code, output), (1, ""))
        self.assertRegex(error, r"^stn-split: run\.root is damaged: event 80 cannot be read \(.+\); copy or write it again\n\Z")
        self.assertEqual(os.listdir(self.folder), ["run.root"])
        self.assertEqual(self.split("--first", "85")[0], 0)

    def test_refuses_an_entry_that_does_not_exist(self):
        self.assertEqual(
            self.split("--first", "30"), (2, "", "stn-split: run.root has no event 30: its events are 0 to 29\n")
        )
        self.assertEqual(os.listdir(self.folder), ["run.root"])

    def test_keeps_a_file_that_exists(self):
        self.write("new.root", b"precious")
        self.assertEqual(
            self.split("--count", "1"),
            (4, "", "stn-split: new.root exists already; choose another name, or --force to replace it\n"),
        )
        self.assertEqual(self.read("new.root"), b"precious")

    def test_never_writes_over_its_input(self):
        before = self.read("run.root")
        code, _, error = self.run_program("stn-split", "--force", "run.root", "run.root")
        self.assertEqual(
            (code, error),
            (
                2,
                "stn-split: run.root would be overwritten, as the output is first called run.root.part; "
                "choose another name for OUT\n",
            ),
        )
        self.assertEqual(self.read("run.root"), before)

    def test_explains_itself(self):
        code, output, error = self.run_program("stn-split", "--help")
        self.assertEqual((code, error), (0, ""))
        self.assertIn("Usage: stn-split [OPTIONS] IN OUT\n", output)
        self.assertIn("\nExit codes: 0 fine; 1 ", output)


if __name__ == "__main__":
    unittest.main()
