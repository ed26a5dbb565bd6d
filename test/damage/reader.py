"""Reads damaged files through the program read_damaged and judges what became of them."""

import os
import signal
import subprocess
from dataclasses import dataclass, field

RESULTS = ("open", "events", "header", "event", "runheader", "runtrailer", "done")
TOO_LONG = (signal.SIGXCPU, signal.SIGKILL)


@dataclass
class Outcome:
    """What was read (by what it is, as "event 3"), what was said just before it, and how the process ended."""

    ended: str = ""
    seconds: float = 0
    kilobytes: int = 0
    results: dict = field(default_factory=dict)
    said: dict = field(default_factory=dict)
    messages: list = field(default_factory=list)

    def said_before(self, what):
        """Was anything said before this was read? ROOT names each kind of error at most ten times."""
        results = list(self.results)
        return any(self.said[result] for result in results[: results.index(what) + 1])


class Reader:
    def __init__(self, program):
        self._program = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._program.stdin.close()
        self._program.stdout.close()
        self._program.wait()

    def read(self, path):
        self._program.stdin.write(os.fsencode(path) + b"\n")
        self._program.stdin.flush()
        outcome, fresh = Outcome(), []
        for line in self._program.stdout:
            text = line.decode("latin-1").rstrip("\n")
            words = text.split(" ")
            if words[0] == "==":
                outcome.ended = " ".join(words[1:3])
                outcome.seconds, outcome.kilobytes = float(words[3]), int(words[4])
                outcome.messages += fresh
                return outcome
            if words[0] in RESULTS:
                what = " ".join(words[:-1]) if len(words) > 1 else words[0]
                outcome.results[what], outcome.said[what] = words[-1], fresh
                outcome.messages += fresh
                fresh = []
            elif text:
                fresh.append(text)
        raise RuntimeError("read_damaged ended")


def judge(outcome, good):
    """One word for what became of a file, of which `good` is the outcome before the damage."""
    kind, number = outcome.ended.split()
    if kind == "signal":
        return "hang" if int(number) in TOO_LONG else "crash"
    if "done" not in outcome.results:
        return "ended" if number == "1" and any(text.startswith("FAT:") for text in outcome.messages) else "crash"
    read = {what: value for what, value in outcome.results.items() if value != "-"}
    wrong = [what for what, value in read.items() if good.results.get(what) != value and what != "open"]
    if not wrong and len(read) == len(good.results):
        return "whole"
    if outcome.results["open"] != good.results["open"]:
        return "told"
    if wrong and not outcome.said_before(wrong[0]):
        return "wrong"
    return "told" if outcome.messages else "wrong"
