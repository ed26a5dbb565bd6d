import unittest

from DisplayTest import PageTest, Pictures, data_of
from programs import InputRefusals


class ReportTest(Pictures, InputRefusals, PageTest):
    PROGRAM = "stn-report"
    PICTURE = (2800, 4500)

    def test_counts_the_events(self):
        self.simulate("run.root", "-n", "20", "--run", "17", "--station", "2")
        page = self.page_of("run.root")
        self.assertEqual((page["header"]["run"], page["header"]["station"]), (17, 2))
        self.assertEqual((page["trailer"]["events"], page["summary"]["events"]), (20, 20))
        self.assertEqual(sum(page["summary"]["rate"]["counts"]), 20)
        self.assertEqual(page["summary"]["occupancy"]["events"], 20)

    def test_reads_headers_only(self):
        self.simulate("run.root", "-n", "20")
        whole = self.page_of("run.root")["summary"]
        headers = self.page_of("run.root", "--headers")["summary"]
        # Numbers, as a list of so many that differ takes unittest minutes to describe.
        self.assertEqual((headers["occupancy"]["events"], sum(headers["occupancy"]["counts"])), (0, 0))
        self.assertGreater(sum(whole["occupancy"]["counts"]), 0)
        del whole["occupancy"], headers["occupancy"]
        self.assertEqual(headers, whole)

    def test_reports_an_empty_run(self):
        self.simulate("none.root", "-n", "0")
        self.assertEqual(self.page_of("none.root")["summary"]["events"], 0)

    def test_a_run_without_records_has_none(self):
        self.make("bare", "bare.root")
        page = self.page_of("bare.root")
        self.assertEqual((page["header"], page["trailer"], page["summary"]["events"]), (None, None, 3))

    def test_shows_what_could_be_recovered_and_says_so(self):
        self.make("unclosed", "unclosed.root")
        code, output, error = self.run_program(self.PROGRAM, "unclosed.root")
        self.assertEqual(code, 1)
        self.assertIn("unclosed.root was not closed by its writer", error)
        self.assertTrue(data_of(output)["isRecovered"])

    def test_leaves_out_an_event_that_cannot_be_read_and_says_so(self):
        self.simulate("run.root", "-n", "3", "--compression", "0")
        head, tail = self.read("run.root").rsplit(b"\xff\xff\xff\xffTFADCData", 1)
        self.write("run.root", head + b"\xff\xff\xff\xffTFADCDatX" + tail)
        code, output, error = self.run_program(self.PROGRAM, "run.root")
        self.assertEqual((code, error), (1, ""))
        summary = data_of(output)["summary"]
        self.assertEqual((summary["events"], summary["unreadable"]), (2, 1))
        self.assertIn("event 2 cannot be read", summary["reason"])


if __name__ == "__main__":
    unittest.main()
