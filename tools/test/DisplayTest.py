import json
import os
import re
import struct
import unittest

from programs import InputRefusals, ProgramTest

CHROMIUM = os.environ.get("STN_CHROMIUM", "/usr/bin/chromium")


def data_of(page):
    return json.loads(re.search(r'<script type="application/json" id="data">(.*?)</script>', page, re.S)[1])


class PageTest(ProgramTest):
    def page_of(self, *args):
        code, output, error = self.run_program(self.PROGRAM, *args)
        self.assertEqual((code, error), (0, ""))
        return data_of(output)


class Pictures:
    """What holds for the pictures of every program that makes pages."""

    @unittest.skipUnless(os.path.exists(CHROMIUM), f"no {CHROMIUM}")
    def test_draws_a_picture(self):
        self.simulate("run.root", "-n", "2")
        self.assertEqual(self.run_program(self.PROGRAM, "run.root", "--png", "$(touch x) #1%.png"), (0, "", ""))
        self.assertEqual(sorted(os.listdir(self.folder)), ["$(touch x) #1%.png", "run.root"])
        picture = self.read("$(touch x) #1%.png")
        self.assertEqual(picture[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(struct.unpack(">II", picture[16:24]), self.PICTURE)

    def test_keeps_a_page_that_exists(self):
        self.simulate("run.root", "-n", "1")
        self.write("run.html", b"precious")
        code, _, error = self.run_program(self.PROGRAM, "run.root", "-o", "run.html")
        self.assertEqual(
            (code, error),
            (4, f"{self.PROGRAM}: run.html exists already; choose another name, or --force to replace it\n"),
        )
        self.assertEqual(self.read("run.html"), b"precious")
        self.assertEqual(self.run_program(self.PROGRAM, "run.root", "-o", "run.html", "--force"), (0, "", ""))
        self.assertIn(b"<!DOCTYPE html>", self.read("run.html"))


class DisplayTest(Pictures, InputRefusals, PageTest):
    PROGRAM = "stn-display"
    PICTURE = (3200, 1800)

    def refused_picture(self, chromium, *args):
        self.simulate("run.root", "-n", "1")
        env = dict(os.environ, STN_CHROMIUM=chromium)
        return self.run_program(self.PROGRAM, "run.root", "--png", "run.png", *args, env=env)

    def test_says_that_there_is_no_browser(self):
        self.assertEqual(
            self.refused_picture("/nowhere/chromium"),
            (
                4,
                "",
                f"{self.PROGRAM}: run.png could not be drawn: there is no Chromium; install one, or name one in "
                "STN_CHROMIUM\n",
            ),
        )
        self.assertEqual(os.listdir(self.folder), ["run.root"])

    def test_says_that_a_browser_failed(self):
        self.assertEqual(
            self.refused_picture("/bin/false"),
            (
                4,
                "",
                f"{self.PROGRAM}: run.png could not be drawn: Chromium ended without a picture; try it by hand with "
                "--headless --screenshot\n",
            ),
        )

    def test_keeps_a_picture_that_exists(self):
        self.write("run.png", b"precious")
        code, _, error = self.refused_picture("/nowhere/chromium")
        self.assertEqual(
            (code, error),
            (4, f"{self.PROGRAM}: run.png exists already; choose another name, or --force to replace it\n"),
        )
        self.assertEqual(self.read("run.png"), b"precious")

    def entries_of(self, *args):
        return [event["entry"] for event in self.page_of(*args)["events"]]

    def test_has_the_neighbours_of_the_asked_event(self):
        self.simulate("run.root", "-n", "12")
        self.assertEqual(self.entries_of("run.root", "-e", "6", "-n", "4"), [5, 6, 7, 8])
        self.assertEqual(self.entries_of("run.root", "-e", "0", "-n", "3"), [0, 1, 2])
        self.assertEqual(self.entries_of("run.root", "-e", "11", "-n", "3"), [9, 10, 11])
        self.assertEqual(self.entries_of("run.root", "-e", "6"), list(range(12)))
        self.assertEqual(self.entries_of("run.root", "-e", "6", "-n", "1"), [6])

    def test_tells_what_it_shows(self):
        self.simulate("run.root", "-n", "3")
        page = self.page_of("run.root", "-e", "2", "-n", "1")
        self.assertEqual((page["file"], page["eventsOnFile"], page["asked"]), ("run.root", 3, 2))
        self.assertEqual(page["events"][0]["header"]["fEventNumber"], 3)

    def test_refuses_an_event_behind_the_last(self):
        self.simulate("run.root", "-n", "3")
        self.assertEqual(
            self.run_program(self.PROGRAM, "run.root", "-e", "3"),
            (2, "", "stn-display: run.root has no event 3: its events are 0 to 2\n"),
        )

    def test_refuses_a_page_without_events(self):
        code, _, error = self.run_program(self.PROGRAM, "run.root", "-n", "0")
        self.assertEqual(code, 2)
        self.assertIn("--count", error)

    def test_shows_what_could_be_recovered_and_says_so(self):
        self.make("unclosed", "unclosed.root")
        code, output, error = self.run_program(self.PROGRAM, "unclosed.root")
        self.assertEqual(code, 1)
        self.assertIn("unclosed.root was not closed by its writer", error)
        self.assertEqual(len(data_of(output)["events"]), 3)

    def test_ends_a_page_before_it_becomes_too_large(self):
        # Every pixel of six mirrors: more than 8 MB an event.
        self.make("full", "full.root")
        page = self.page_of("full.root", "-e", "1")
        self.assertEqual(page["eventsOnFile"], 4)
        self.assertEqual([event["entry"] for event in page["events"]], [1, 2])

    def test_a_neighbour_that_cannot_be_read_is_named(self):
        self.simulate("run.root", "-n", "3", "--compression", "0")
        content = self.read("run.root")
        # Each event names the class of its traces once.
        head, tail = self.read("run.root").rsplit(b"\xff\xff\xff\xffTFADCData", 1)
        self.write("run.root", head + b"\xff\xff\xff\xffTFADCDatX" + tail)
        code, output, error = self.run_program(self.PROGRAM, "run.root")
        self.assertEqual((code, error), (1, ""))
        events = data_of(output)["events"]
        self.assertEqual(["error" in event for event in events], [False, False, True])
        self.assertIn("run.root is damaged: event 2 cannot be read", events[2]["error"])


if __name__ == "__main__":
    unittest.main()
