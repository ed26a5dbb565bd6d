"""A progress bar for long loops, shown when a person is looking."""

from __future__ import annotations

import sys
import time
from collections.abc import Callable, Iterable, Iterator
from typing import TYPE_CHECKING, TypeVar

if TYPE_CHECKING:
    from rich.progress import Progress

Item = TypeVar("Item")

# A loop that ends sooner shows nothing.
SECONDS_BEFORE_BAR = 1.0
_SECONDS_BETWEEN_UPDATES = 0.1

_is_in_loop = False


def _one(_: object) -> int:
    return 1


def track(items: Iterable[Item], total: int, what: str, weight: Callable[[Item], int] = _one) -> Iterator[Item]:
    """Gives the items one by one. After a second a bar on standard error shows how much of `total` is done, if that is a
    terminal and this is not inside another such loop; `weight` tells how much an item counts."""
    global _is_in_loop
    if _is_in_loop or not sys.stderr.isatty():
        yield from items
        return
    _is_in_loop = True
    bar = None
    done = 0
    due = time.monotonic() + SECONDS_BEFORE_BAR
    try:
        for item in items:
            yield item
            done += weight(item)
            if time.monotonic() < due:
                continue
            bar = bar or _start(total, what)
            bar.update(bar.task_ids[0], completed=done, refresh=True)
            due = time.monotonic() + _SECONDS_BETWEEN_UPDATES
    finally:
        _is_in_loop = False
        if bar is not None:
            bar.stop()


def _start(total: int, what: str) -> Progress:
    from rich.console import Console
    from rich.progress import Progress

    bar = Progress(console=Console(stderr=True), auto_refresh=False, transient=True)
    bar.add_task(what, total=total)
    bar.start()
    return bar
