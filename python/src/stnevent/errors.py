"""What goes wrong, as exceptions."""

from __future__ import annotations


class StnEventError(Exception):
    """A station file, or one of its events, can't be read.

    Attributes:
        file: Name of the file.
        entry: Number of the event in the file, from 0; None if the failure concerns no single event.
        reason: What was found, and what to do next.
    """

    def __init__(self, file: str, entry: int | None, reason: str) -> None:
        super().__init__(file, entry, reason)
        self.file = file
        self.entry = entry
        self.reason = reason

    def __str__(self) -> str:
        place = self.file if self.entry is None else f"{self.file}: entry {self.entry}"
        return f"{place}: {self.reason}"
