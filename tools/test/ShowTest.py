import unittest

from programs import InputRefusals, ProgramTest

RUN_HEADER = """--- TStnRunHeader for Stn 2 ---
 RUN started at  : 2024-05-17 16:53:02.000000000 UTC
 RUN id          : 7
 Mirrors present : 1 3 
 Users name      : stn-simulate
 RUN comment     : simulated, seed 5
 Software versions used: 
  - MrEvent 4.1.5
  - StnEvent 2.1.100
  - MiReadout 'unknown'
  - Evb/MiApps 1.0.0
"""


class ShowTest(InputRefusals, ProgramTest):
    PROGRAM = "stn-show"

    def show(self, *args):
        code, output, error = self.run_program(self.PROGRAM, *args)
        self.assertEqual((code, error), (0, ""))
        return output

    def simulate_run(self):
        self.simulate("run.root", "-n", "4", "--station", "2", "--run", "7", "--seed", "5", "--mirrors", "1,3")

    def test_shows_file_run_header_and_run_trailer_by_default(self):
        self.simulate_run()
        output = self.show("run.root")
        self.assertTrue(output.startswith("--- TStnEventFile ---\n File run.root opened for reading\n"))
        self.assertIn("\n Number of Entries = 4\n", output)
        self.assertIn("\n\n" + RUN_HEADER + "--- TStnRunTrailer ---\n", output)
        self.assertNotIn("TStnEvent for", output)

    def test_shows_only_the_run_header(self):
        self.simulate_run()
        self.assertEqual(self.show("run.root", "--header"), RUN_HEADER)

    def test_shows_only_the_run_trailer(self):
        self.simulate_run()
        output = self.show("run.root", "--trailer")
        self.assertTrue(output.startswith("--- TStnRunTrailer ---\n"))
        self.assertIn("\n Number of events: 4\n", output)
        self.assertNotIn("---", output[len("--- TStnRunTrailer ---") :])

    def test_shows_only_the_file(self):
        self.simulate_run()
        output = self.show("run.root", "--file")
        self.assertTrue(output.startswith("--- TStnEventFile ---\n"))
        self.assertEqual(output.count("\n"), 8)

    def test_shows_the_events_asked_for_in_their_order(self):
        self.simulate_run()
        output = self.show("run.root", "--event", "3", "--event", "0")
        numbers = [line for line in output.splitlines() if line.startswith(" Event number    :")]
        self.assertEqual(numbers, [" Event number    :          4", " Event number    :          1"])
        self.assertTrue(output.startswith("--- TStnEvent for Stn 2 ---\n"))
        self.assertNotIn("TStnRun", output)

    def test_shows_what_is_chosen_from_the_beginning_of_the_run_to_its_end(self):
        self.simulate_run()
        output = self.show("run.root", "--trailer", "--event", "1", "--header")
        self.assertTrue(output.startswith(RUN_HEADER + "--- TStnEvent for Stn 2 ---\n"))
        self.assertLess(output.index("--- TStnFADCData ---"), output.index("--- TStnRunTrailer ---"))

    def test_refuses_an_event_behind_the_last(self):
        self.simulate_run()
        self.assertEqual(
            self.run_program(self.PROGRAM, "run.root", "--event", "0", "--event", "4"),
            (2, "", "stn-show: run.root has no event 4: its events are 0 to 3\n"),
        )

    def test_refuses_an_event_of_an_empty_run(self):
        self.simulate("none.root", "-n", "0")
        self.assertEqual(
            self.run_program(self.PROGRAM, "none.root", "--event", "0"),
            (2, "", "stn-show: none.root has no event 0: it has no events\n"),
        )

    def test_says_that_a_file_has_no_run_records(self):
        self.make("bare", "bare.root")
        output = self.show("bare.root")
        self.assertTrue(output.endswith("\n\n(no run header)\n(no run trailer)\n"))

    def test_fails_if_a_run_record_asked_for_is_missing(self):
        self.make("bare", "bare.root")
        for option, what in (("--header", "run header"), ("--trailer", "run trailer")):
            with self.subTest(option):
                self.assertEqual(
                    self.run_program(self.PROGRAM, "bare.root", option),
                    (
                        1,
                        "",
                        f"stn-show: bare.root has no {what}: its run was not ended, or not begun, as it should be\n",
                    ),
                )

    def test_shows_what_could_be_recovered_and_says_so(self):
        self.make("unclosed", "unclosed.root")
        code, output, error = self.run_program(self.PROGRAM, "unclosed.root", "--event", "2")
        self.assertEqual(code, 1)
        self.assertEqual(
            error,
            "stn-show: warning: unclosed.root was not closed by its writer; going on with what could be recovered, "
            "3 events\n",
        )
        self.assertIn("\n Event number    :          3\n", output)


if __name__ == "__main__":
    unittest.main()
