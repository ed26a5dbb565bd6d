"""When a loop shows a bar."""

import os
import pty
import subprocess
import sys

PROGRAM = """
import sys, time
from stnevent import progress
progress.SECONDS_BEFORE_BAR = float(sys.argv[1])

def slowly(items):
    for item in items:
        time.sleep(0.15)
        yield item

for i in progress.track(slowly(range(4)), 4, "Outer"):
    for j in progress.track(slowly(range(5)), 5, "Inner"):
        pass
"""


def stderr_of(seconds_before_bar, is_terminal):
    """What the program writes to standard error, which is a terminal or a pipe."""
    reader, writer = pty.openpty() if is_terminal else os.pipe()
    command = [sys.executable, "-c", PROGRAM, str(seconds_before_bar)]
    process = subprocess.Popen(command, stderr=writer, stdout=subprocess.DEVNULL, env=os.environ | {"TERM": "xterm"})
    os.close(writer)
    text = b""
    try:
        while part := os.read(reader, 4096):
            text += part
    except OSError:
        pass  # how a terminal tells its end
    os.close(reader)
    assert process.wait() == 0
    return text.decode()


def test_a_long_loop_shows_its_bar_on_a_terminal():
    text = stderr_of(0.5, is_terminal=True)
    assert "Outer" in text and "75%" in text


def test_a_loop_inside_another_one_shows_no_bar():
    assert "Inner" not in stderr_of(0.5, is_terminal=True)


def test_a_short_loop_shows_nothing():
    assert stderr_of(100, is_terminal=True) == ""


def test_without_a_person_nothing_is_shown():
    assert stderr_of(0, is_terminal=False) == ""
