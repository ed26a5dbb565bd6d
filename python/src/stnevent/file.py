"""Station files: `open` gives a `File`, which is a sequence of events."""

from __future__ import annotations

import builtins
import ctypes
import dataclasses
import datetime
import functools
import os
import warnings
import weakref
from collections.abc import Iterator, Sequence
from types import TracebackType
from typing import Any, TypeAlias, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

from stnevent import _library, records
from stnevent.errors import StnEventError
from stnevent.event import Event
from stnevent.progress import track

Time: TypeAlias = np.datetime64 | datetime.datetime | str

# Headers that are read in one call of the library.
_HEADERS_AT_ONCE = 4096


@dataclasses.dataclass(frozen=True)
class RunHeader:
    """The run at its start. Versions are texts as "2.1.100", None where they are not known."""

    run_no: int
    stn_no: int
    mirror_status: int
    """One bit for each mirror that takes part; bit 0 is mirror 1."""
    start_time: np.datetime64
    user_name: str
    comment: str
    evb_version: str | None
    stn_event_version: str | None
    mr_event_version: str | None
    readout_version: str | None


@dataclasses.dataclass(frozen=True)
class RunTrailer:
    """The run at its end. Six values are those of mirror 1 to 6; dead times are in units of 100 ns, other times in
    seconds."""

    mirror_status: int
    """One bit for each mirror that took part; bit 0 is mirror 1."""
    n_events: int
    veto_time_counter: int
    dead_time_counter: tuple[int, ...]
    life_time_counter: tuple[int, ...]
    mirror_daq_dead_time: tuple[int, ...]
    mirror_n_skipped_triggers: tuple[int, ...]
    stn_daq_dead_time: int
    n_t3: int
    n_rejected_t3: int
    total_t3_dead_time: float
    start_time: np.datetime64
    stop_time: np.datetime64
    total_time: int


def _version(code: int) -> str | None:
    return f"{code >> 16 & 0xFF}.{code >> 8 & 0xFF}.{code & 0xFF}" if code else None


def _value(name: str, value: Any) -> Any:
    """A value of a record of the library as Python has it."""
    if name.endswith("_version"):
        return _version(value)
    if name in ("start_time", "stop_time"):
        return np.datetime64(value, "ns")
    if isinstance(value, bytes):
        return value.decode(errors="replace")
    return tuple(value) if isinstance(value, ctypes.Array) else value


def _values(record: ctypes.Structure) -> dict[str, Any]:
    return {name: _value(name, getattr(record, name)) for name, *_ in record._fields_}


class Events(Sequence[Event]):
    """Some events of a file, in any order. An index gives an `Event`; a slice, an array of indices or an array of truth
    values gives `Events`. Iterating reads nothing but what is asked of each event, and keeps none of it."""

    def __init__(self, file: File, entries: NDArray[np.int64]) -> None:
        self._file = file
        self._entries = entries

    def __len__(self) -> int:
        return len(self._entries)

    def __repr__(self) -> str:
        return f"<{len(self)} events of {self._file.path}>"

    @overload
    def __getitem__(self, index: int) -> Event: ...
    @overload
    def __getitem__(self, index: slice | ArrayLike) -> Events: ...
    def __getitem__(self, index: Any) -> Event | Events:
        chosen = self._entries[index if isinstance(index, slice) else np.asarray(index)]
        return Events(self._file, chosen) if np.ndim(chosen) else Event(self._file, int(chosen))

    def __iter__(self) -> Iterator[Event]:
        for entry in track(self._entries, len(self), "Events"):
            yield Event(self._file, int(entry))

    @property
    def entries(self) -> NDArray[np.int64]:
        """Numbers of these events in the file, from 0, in one dimension."""
        return self._entries

    def headers(self) -> np.recarray[Any, Any]:
        """The headers of these events, one row for each: a record array with a column for each field of the header.

        Columns are named as the members on file (docs/format.md), without the "f" and in lower case. Times are
        `datetime64[ns]`, in UTC; counters and dead times are in units of 100 ns, time offsets in ns. Columns with six
        values have those of mirror 1 to 6: their shape is (n, 6) for n events, that of the others (n,). `raw_mirror_time` is
        NaT for mirrors without data.

        Raises StnEventError, which names the entry, if one of them can't be read; then there are no rows at all.
        """
        return self._file._read_headers(self._entries)


class File(Events):
    """A station file, open for reading, as a sequence of its events. A file is used by one thread at a time.

    It is closed by `close`, by the end of a `with` block, or when nothing refers to it or its events any more.
    """

    def __init__(self, path: str | os.PathLike[str]) -> None:
        self.path = os.fspath(path)
        """Name of the file, as it was given."""
        with builtins.open(self.path, "rb"):
            pass  # what the system refuses is told in its own exceptions
        self._library = _library.library()
        self._reader = self._library.stn_open(os.fsencode(self.path))
        if not self._reader:
            raise self._error()
        self._close = weakref.finalize(self, self._library.stn_close, self._reader)
        super().__init__(self, np.arange(self._library.stn_n_events(self._reader)))
        if self._library.stn_is_recovered(self._reader):
            reason = f"was not closed by its writer or lost its end: going on with {len(self)} events that are there"
            warnings.warn(f"{self.path}: {reason}", stacklevel=3)

    def __repr__(self) -> str:
        return f"<station file {self.path}: {len(self)} events>"

    def __enter__(self) -> File:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def close(self) -> None:
        """Closes the file; nothing more can be read from it. A second call does nothing."""
        self._close()

    @property
    def run_header(self) -> RunHeader | None:
        """The run header; None if the file has none. StnEventError if it can't be read."""
        if not self._library.stn_has_run_header(self._open_reader()):
            return None
        record = _library.RunHeaderRecord()
        self._require(self._library.stn_read_run_header(self._reader, record))
        return RunHeader(**_values(record))

    @property
    def run_trailer(self) -> RunTrailer | None:
        """The run trailer; None if the file has none, as when its run did not end regularly. StnEventError if it can't be
        read."""
        if not self._library.stn_has_run_trailer(self._open_reader()):
            return None
        record = _library.RunTrailerRecord()
        self._require(self._library.stn_read_run_trailer(self._reader, record))
        return RunTrailer(**_values(record))

    def by_number(self, event_number: int) -> Event:
        """The first event with that number in its header. The first look-up reads all headers. LookupError if there is
        none."""
        found = np.flatnonzero(self._index[0] == event_number)
        if not len(found):
            raise LookupError(f"{self.path} has no event with number {event_number}")
        return Event(self, int(found[0]))

    def by_time(self, time: Time) -> Event:
        """The event whose corrected time is nearest to a time in UTC; the first one if several are. The first look-up reads
        all headers. LookupError if the file has no events."""
        if not len(self):
            raise LookupError(f"{self.path} has no events")
        return Event(self, int(np.argmin(np.abs(self._index[1] - np.array(time, records.TIME)))))

    def between(self, start: Time, stop: Time) -> Events:
        """The events from a time on and before another, in UTC and by their corrected times, in the order of the file; none
        if there are none. The first look-up reads all headers."""
        times = self._index[1]
        chosen = (times >= np.array(start, records.TIME)) & (times < np.array(stop, records.TIME))
        return Events(self, self._entries[chosen])

    def _open_reader(self) -> int:
        if not self._close.alive:
            raise ValueError(f"{self.path} is closed")
        return int(self._reader)

    def _error(self) -> StnEventError:
        entry = ctypes.c_int64()
        reason = self._library.stn_error(entry).decode(errors="replace").removeprefix(f"{self.path} ")
        return StnEventError(self.path, entry.value if entry.value >= 0 else None, reason)

    def _require(self, done: bool) -> None:
        if not done:
            raise self._error()

    def _read_headers(self, entries: NDArray[np.int64]) -> np.recarray[Any, Any]:
        headers = np.zeros(len(entries), records.HEADER)
        for first, last in track(_runs(entries), len(entries), "Headers", lambda run: run[1] - run[0]):
            self._fill_headers(int(entries[first]), headers[first:last])
        return headers.view(np.recarray)

    def _fill_headers(self, entry: int, headers: NDArray[Any]) -> None:
        """Reads as many headers as there is room for, from an entry on."""
        reader = self._open_reader()
        self._require(self._library.stn_read_headers(reader, entry, len(headers), headers.ctypes.data))

    @functools.cached_property
    def _index(self) -> tuple[NDArray[np.uint32], NDArray[np.datetime64]]:
        """Numbers and times of all events."""
        numbers = np.zeros(len(self), np.uint32)
        times = np.zeros(len(self), records.TIME)
        for first, last in track(_runs(self.entries), len(self), "Index", lambda run: run[1] - run[0]):
            headers = np.zeros(last - first, records.HEADER)
            self._fill_headers(first, headers)
            numbers[first:last] = headers["event_number"]
            times[first:last] = headers["time_stamp"]
        return numbers, times

    def _read_event(self, entry: int) -> _library.EventSizes:
        sizes = _library.EventSizes()
        self._require(self._library.stn_read_event(self._open_reader(), entry, sizes))
        return sizes

    def _read_traces(self, entry: int) -> tuple[NDArray[Any], NDArray[np.uint16]]:
        sizes = self._read_event(entry)
        traces = np.empty(sizes.n_traces, records.TRACE)
        words = np.empty(sizes.n_samples, np.uint16)
        self._library.stn_copy_traces(self._reader, traces.ctypes.data, words.ctypes.data)
        return traces, words

    def _read_pixels(self, entry: int) -> NDArray[np.int32]:
        pixels = np.empty(self._read_event(entry).n_pixels, np.int32)
        self._library.stn_copy_pixels(self._reader, pixels.ctypes.data)
        return pixels

    def _read_triggers(self, entry: int) -> NDArray[Any]:
        triggers = np.empty(self._read_event(entry).n_triggers, records.TRIGGER)
        self._library.stn_copy_triggers(self._reader, triggers.ctypes.data)
        return triggers


def _runs(entries: NDArray[np.int64]) -> Iterator[tuple[int, int]]:
    """First and last index (excluded) of runs of entries that follow each other, none longer than is read at once."""
    ends = [0, *(np.flatnonzero(np.diff(entries) != 1) + 1), len(entries)]
    for begin, end in zip(ends, ends[1:]):
        for first in range(begin, end, _HEADERS_AT_ONCE):
            yield first, min(first + _HEADERS_AT_ONCE, end)


def open(path: str | os.PathLike[str]) -> File:
    """Opens a station file for reading.

    Raises OSError if the system can't open it, and StnEventError if it is damaged or no station file.
    """
    return File(path)
