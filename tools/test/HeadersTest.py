import csv
import json
import unittest

from programs import InputRefusals, ProgramTest


class HeadersTest(InputRefusals, ProgramTest):
    PROGRAM = "stn-headers"

    def list(self, *args):
        code, output, error = self.run_program(self.PROGRAM, *args)
        self.assertEqual((code, error), (0, ""))
        return output

    def entries(self, *args):
        return [int(line.split()[0]) for line in self.list(*args).splitlines()[2:]]

    def test_lists_a_run(self):
        self.simulate("run.root", "-n", "6")
        self.assertEqual(self.list("run.root"), TABLE)

    def test_lists_from_an_entry_on(self):
        self.simulate("run.root", "-n", "6")
        self.assertEqual(self.entries("run.root", "--first", "4"), [4, 5])

    def test_lists_so_many(self):
        self.simulate("run.root", "-n", "6")
        self.assertEqual(self.entries("run.root", "--first", "1", "--count", "2"), [1, 2])

    def test_lists_what_there_is_of_a_number_too_large(self):
        self.simulate("run.root", "-n", "6")
        self.assertEqual(self.entries("run.root", "--first", "5", "--count", "100"), [5])

    def test_lists_nothing_if_no_header_is_asked_for(self):
        self.simulate("run.root", "-n", "6")
        self.assertEqual(self.entries("run.root", "--count", "0"), [])

    def test_lists_nothing_of_an_empty_run(self):
        self.simulate("none.root", "-n", "0")
        self.assertEqual(self.entries("none.root"), [])

    def test_lists_what_is_selected(self):
        self.simulate("run.root", "-n", "6")
        self.assertEqual(self.entries("run.root", "--class", "shower", "--mirror", "3", "--number", "4-6"), [3, 4])

    def test_counts_entries_before_it_selects(self):
        self.simulate("run.root", "-n", "6")
        self.assertEqual(self.entries("run.root", "--class", "shower", "--count", "4"), [3])

    def test_refuses_a_selection_that_makes_no_sense(self):
        self.assertEqual(
            self.run_program(self.PROGRAM, "run.root", "--number", "6-4"),
            (2, "", "'6-4' is not a range from the lower number to the higher\nRun with --help for more information.\n"),
        )

    def test_writes_lines_of_json(self):
        self.simulate("run.root", "-n", "6")
        records = [json.loads(line) for line in self.list("run.root", "--format", "jsonl", "--mirror", "6").splitlines()]
        self.assertEqual([record["entry"] for record in records], [0, 1, 3, 5])
        self.assertEqual(records[3]["fMirrorTimeOffset"], [0, 200, 200, 200, 0, 0])

    def test_writes_comma_separated_values(self):
        self.simulate("run.root", "-n", "6")
        rows = list(csv.DictReader(self.list("run.root", "--format", "csv").splitlines()))
        self.assertEqual([row["fTimeStamp"] for row in rows][0], "2024-05-17T16:53:03.859905908Z")
        self.assertEqual([row["fRawMirrorTime_1"] == "" for row in rows], [True, True, False, True, False, False])

    def test_refuses_a_first_entry_behind_the_last(self):
        self.simulate("run.root", "-n", "6")
        self.assertEqual(
            self.run_program(self.PROGRAM, "run.root", "--first", "6"),
            (2, "", "stn-headers: run.root has no event 6: its events are 0 to 5\n"),
        )

    def test_lists_what_could_be_recovered_and_says_so(self):
        self.make("unclosed", "unclosed.root")
        code, output, error = self.run_program(self.PROGRAM, "unclosed.root")
        self.assertEqual(code, 1)
        self.assertEqual(
            error,
            "stn-headers: warning: unclosed.root was not closed by its writer; going on with what could be recovered, "
            "3 events\n",
        )
        self.assertEqual(len(output.splitlines()), 5)

    # Without compression nothing in a file notices that its bytes were changed.
    def test_needs_no_traces(self):
        self.simulate("run.root", "-n", "6", "--compression", "0", "--checksums", "run.json")
        whole = self.list("run.root")
        content = bytearray(self.read("run.root"))
        samples = content.index(b"TFADCData\0") + 500
        content[samples : samples + 100] = b"\xff" * 100
        self.write("run.root", content)
        self.assertEqual(self.run_program("stn-verify", "run.root", "--checksums", "run.json")[0], 1)
        self.assertEqual(self.list("run.root"), whole)


TABLE = """\
  entry     event     GPS sec         ns  UTC                             type          class                mirrors     T3  quality   offset 1  offset 2  offset 3  offset 4  offset 5  offset 6
-------  --------  ----------  ---------  ------------------------------  ------------  -------------------  -------  -----  --------  --------  --------  --------  --------  --------  --------
      0         1  1400000001  859905908  2024-05-17T16:53:03.859905908Z  Physics       Muon + Noise         ---456       -  Averaged         -         -         -       400         0       500
      1         2  1400000004  286015029  2024-05-17T16:53:06.286015029Z  Physics       Muon                 ----56       -  Averaged         -         -         -         -       500         0
      2         3  1400000005  310240882  2024-05-17T16:53:07.310240882Z  Physics       Muon + Noise         123---       -  Averaged       500         0       500         -         -         -
      3         4  1400000007  369486820  2024-05-17T16:53:09.369486820Z  Physics       Shower               --3456       1  Averaged         -         -       800       500         0       300
      4         5  1400000009  552892158  2024-05-17T16:53:11.552892158Z  Physics       Shower               123---       -  Averaged         0       500       800         -         -         -
      5         6  1400000010  524429375  2024-05-17T16:53:12.524429375Z  Simulated     Noise                123456       -  Averaged         0       200       200       200         0         0
"""

if __name__ == "__main__":
    unittest.main()
