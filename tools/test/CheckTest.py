import json
import os
import unittest

from programs import ProgramTest


class CheckTest(ProgramTest):
    def check(self, *args):
        return self.run_program("stn-check", *args)

    def findings(self, name):
        """Exit code and the findings of one file."""
        code, output, error = self.check("--json", name)
        self.assertEqual(error, "")
        report = json.loads(output)
        self.assertEqual((report["format"], len(report["files"])), ("stn-check 1", 1))
        return code, report["files"][0]["findings"]

    def test_finds_nothing_wrong_with_a_sound_file(self):
        self.simulate("run.root", "-n", "20")
        self.assertEqual(self.check("run.root"), (0, "run.root: sound, 20 events can be read\n", ""))

    def test_finds_nothing_wrong_with_a_run_without_events(self):
        self.simulate("run.root", "-n", "0")
        self.assertEqual(self.check("run.root"), (0, "run.root: sound, 0 events can be read\n", ""))

    def test_finds_nothing_wrong_with_a_file_that_was_updated(self):
        self.make("twice", "twice.root")
        self.assertEqual(self.check("twice.root")[0], 0)

    def test_answers_in_json(self):
        self.simulate("run.root", "-n", "2")
        code, output, error = self.check("--json", "run.root", "none.root")
        self.assertEqual((code, error), (3, ""))
        self.assertEqual(
            json.loads(output),
            {
                "format": "stn-check 1",
                "files": [
                    {"file": "run.root", "state": "sound", "events": 2, "findings": []},
                    {
                        "file": "none.root",
                        "state": "unreadable",
                        "events": 0,
                        "error": "none.root does not exist; check the name",
                        "findings": [],
                    },
                ],
            },
        )

    def test_notes_missing_run_records(self):
        self.make("bare", "bare.root")
        self.assertEqual(
            self.check("bare.root"),
            (
                0,
                "bare.root: note: RunHeader: expected a record, found none, the run was not begun as it should be\n"
                "bare.root: note: RunTrailer: expected a record, found none, the run was not ended\n"
                "bare.root: sound, 3 events can be read\n",
                "",
            ),
        )

    def test_finds_out_that_the_writer_died(self):
        self.make("unclosed", "unclosed.root")
        code, findings = self.findings("unclosed.root")
        self.assertEqual(code, 1)
        self.assertIn(
            {"kind": "damage", "what": "reading the file", "expected": "as it is", "found": "only after a recovery by ROOT"},
            findings,
        )

    def test_finds_out_that_a_file_is_cut(self):
        self.simulate("run.root", "-n", "20")
        whole = self.read("run.root")
        self.write("cut.root", whole[:-1])
        code, output, error = self.check("cut.root")
        self.assertEqual((code, error), (1, ""))
        self.assertIn(f"cut.root: size of the file: expected {len(whole)} bytes, found {len(whole) - 1} bytes\n", output)
        self.assertTrue(output.endswith("stn-recover saves what is whole\n"))

    def test_names_a_damaged_basket_and_its_events(self):
        self.simulate("run.root", "-n", "100")
        content = bytearray(self.read("run.root"))
        place = content.index(b"fTriggerData\x0cStnEventTree") + 50
        content[place : place + 6] = b"damage"
        self.write("run.root", content)
        code, findings = self.findings("run.root")
        self.assertEqual(code, 1)
        self.assertEqual(findings[0]["branch"], "fTriggerData")
        self.assertEqual(
            findings[1],
            {
                "kind": "damage",
                "entry": 0,
                "last_entry": 84,
                "what": "baskets",
                "expected": "all parts",
                "found": "no trigger record",
            },
        )

    def test_finds_a_pixel_list_that_contradicts_itself_and_goes_on(self):
        self.simulate("run.root", "-n", "3", "--compression", "0")
        content = bytearray(self.read("run.root"))
        # Station less 1, number of pixels, 90 words.
        lists = [i for i in range(8, len(content)) if content[i - 8 : i - 4] == b"\0" * 4 and content[i : i + 5] == b"\0\0\0\x5a\1"]
        self.assertEqual(len(lists), 3)
        content[lists[1] - 1] += 1
        self.write("run.root", content)
        code, findings = self.findings("run.root")
        self.assertEqual((code, len(findings)), (1, 1))
        self.assertEqual(findings[0]["what"], "event 1")
        self.assertEqual(
            findings[0]["found"],
            "TStnPixelList::ConstructPixelList() - Size mismatch whilst constructing of internal PixelList !",
        )

    def test_finds_events_of_another_run_and_a_wrong_count(self):
        self.make("mixed", "mixed.root")
        self.assertEqual(
            self.check("mixed.root"),
            (
                1,
                "mixed.root: note: RunHeader: expected a record, found none, the run was not begun as it should be\n"
                "mixed.root: event 3, fEventHeader: run number: expected 1, found 2\n"
                "mixed.root: note: event 3, fEventHeader: event number: expected more than 3, found 1\n"
                "mixed.root: event 4, fEventHeader: run number: expected 1, found 2\n"
                "mixed.root: events by the run trailer: expected 6, found 5\n"
                "mixed.root: damaged, 5 events can be read; stn-recover saves what is whole\n",
                "",
            ),
        )

    def test_refuses_what_is_no_station_file(self):
        self.make("foreign", "foreign.root")
        self.write("notes.txt", b"not what you are looking for\n")
        self.write("empty.root", b"")
        os.mkdir(self.path("folder"))
        for name, text in (
            ("foreign.root", "holds nothing of a station file, neither events nor run records; name a station file"),
            ("notes.txt", "is not a ROOT file; name a station file"),
            ("empty.root", "is empty; write or copy it again"),
            ("folder", "is a directory; name a station file in it"),
        ):
            with self.subTest(name):
                self.assertEqual(self.check(name), (3, "", f"stn-check: {name} {text}\n"))

    def test_goes_on_with_the_next_file(self):
        self.simulate("run.root", "-n", "1")
        self.assertEqual(
            self.check("none.root", "run.root"),
            (3, "run.root: sound, 1 events can be read\n", "stn-check: none.root does not exist; check the name\n"),
        )

    def test_explains_itself(self):
        code, output, error = self.check("--help")
        self.assertEqual((code, error), (0, ""))
        self.assertIn("Usage: stn-check [OPTIONS] FILE...\n", output)
        self.assertIn("\nExit codes: 0 fine; 1 ", output)


if __name__ == "__main__":
    unittest.main()
