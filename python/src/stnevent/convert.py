"""Station files as Parquet and as RNTuple, for programs that read these: `convert`, and the command `stn-convert`."""

from __future__ import annotations

import builtins
import contextlib
import os
import re
import sys
import warnings
from collections.abc import Callable, Iterator
from typing import Annotated, Any

import awkward as ak
import numpy as np
import typer

from stnevent import __version__
from stnevent.errors import StnEventError
from stnevent.file import Events, File, open

NTUPLE = "StnEvents"
"""Name of the RNTuple in its file."""

_EXIT_CODES = (
    "Exit codes: 0 fine; 1 the file is damaged or incomplete, or a check failed; 2 wrong command line; 3 the input "
    "cannot be opened or is no station file; 4 the output exists or could not be written whole."
)

Chunk = Any  # an Awkward array with a record for each event


class _Parquet:
    """Chunks become row groups; times are timestamps in ns."""

    def __init__(self, path: str) -> None:
        self._path = path
        self._writer: Any = None

    def write(self, chunk: Chunk) -> None:
        import pyarrow.parquet

        table = ak.to_arrow_table(chunk, extensionarray=False)
        if self._writer is None:
            self._writer = pyarrow.parquet.ParquetWriter(self._path, table.schema, compression="zstd")
        self._writer.write_table(table, row_group_size=max(len(table), 1))

    def close(self) -> None:
        if self._writer is not None:
            self._writer.close()

    def read(self) -> Iterator[Chunk]:
        import pyarrow.parquet

        with pyarrow.parquet.ParquetFile(self._path) as file:
            for group in range(file.num_row_groups):
                yield ak.from_arrow(file.read_row_group(group))


class _NTuple:
    """Times are ns since 1970 as integers, as RNTuple has no type for them."""

    def __init__(self, path: str) -> None:
        import uproot

        self._path = path
        self._file = uproot.recreate(path, compression=uproot.ZSTD(1))
        self._ntuple: Any = None
        self._ends = [0]

    def write(self, chunk: Chunk) -> None:
        chunk = _without_times(chunk)
        if self._ntuple is None:
            self._ntuple = self._file.mkrntuple(NTUPLE, chunk)
        else:
            self._ntuple.extend(chunk)
        self._ends.append(self._ends[-1] + len(chunk))

    def close(self) -> None:
        self._file.close()

    def read(self) -> Iterator[Chunk]:
        import uproot

        # Each part is read once: a cache would only grow.
        with uproot.open(self._path, array_cache=None) as file:
            for first, last in zip(self._ends, self._ends[1:]):
                yield file[NTUPLE].arrays(entry_start=first, entry_stop=last)


_WRITERS: dict[str, Callable[[str], Any]] = {".parquet": _Parquet, ".root": _NTuple}


def _without_times(chunk: Chunk) -> Chunk:
    """The same array with integers in place of times."""

    def replace(layout: Any, **_: Any) -> Any:
        if layout.is_numpy and layout.dtype.kind == "M":
            return ak.contents.NumpyArray(layout.data.view(np.int64))
        return None

    return ak.transform(replace, chunk)


def _chunk(events: Events, traces: bool) -> Chunk:
    headers = events.headers()
    columns = {name: ak.from_numpy(np.ascontiguousarray(headers[name]), regulararray=True) for name in headers.dtype.names}
    if traces:
        found = [event.traces() for event in events]
        columns["traces"] = ak.unflatten(ak.concatenate(found), [len(of_event) for of_event in found])
    return ak.zip(columns, depth_limit=1)


def _chunks(run: File, traces: bool, size: int) -> Iterator[Chunk]:
    for first in range(0, max(len(run), 1), size):
        yield _chunk(run[first : first + size], traces)


def _is_equal(written: Chunk, read: Chunk) -> bool:
    return bool(ak.array_equal(_without_times(written), _without_times(read), equal_nan=True, check_regular=False))


def convert(run: File, path: str, traces: bool = False, chunk_size: int | None = None) -> None:
    """Writes the headers of a run, or headers and traces, to a Parquet file ("*.parquet") or to an RNTuple ("*.root").

    There is a row for each event, with the columns of `File.headers`, and `traces` as `Event.traces` gives them. No more
    than `chunk_size` events are in memory at a time (100 with traces, else 10000). What was written is read back and
    compared with the run, and only then gets its name. Raises StnEventError if an event is damaged, ValueError if the
    ending is another or there are no traces to tell how they look, and OSError if the file cannot be written whole.
    """
    kind = _WRITERS.get(os.path.splitext(path)[1])
    if kind is None:
        raise ValueError(f"{path} ends with neither of {', '.join(_WRITERS)}")
    if traces and not len(run):
        raise ValueError(f"{run.path} has no events, and so no traces")
    size = chunk_size or (100 if traces else 10000)
    part = f"{path}.part"
    try:
        writer = kind(part)
        with contextlib.closing(writer):
            for chunk in _chunks(run, traces, size):
                writer.write(chunk)
        pairs = zip(_chunks(run, traces, size), writer.read(), strict=True)
        if not all(_is_equal(written, read) for written, read in pairs):
            raise OSError(f"{path} did not come back as it was written")
        with builtins.open(part, "rb") as file:
            os.fsync(file.fileno())
        os.replace(part, path)
    except BaseException:
        with contextlib.suppress(FileNotFoundError):
            os.remove(part)
        raise


def _require_new(path: str, source: str, force: bool) -> None:
    for name in (path, f"{path}.part"):
        if not os.path.lexists(name):
            continue
        if os.path.samefile(name, source):
            _end(2, f"{source} would be overwritten; choose another name for OUT")
        if not force:
            _end(4, f"{name} exists already; choose another name, or --force to replace it")


def _end(code: int, text: str) -> None:
    print(f"stn-convert: {text}", file=sys.stderr)
    raise typer.Exit(code)


def _open(path: str) -> File:
    if re.match(r"(?!file:)[a-z0-9]+://", path):
        _end(2, f"{path} is an address; copy the file first, this program needs all of it")
    try:
        return open(path)
    except FileNotFoundError:
        _end(3, f"{path} does not exist; check the name")
    except (OSError, StnEventError) as error:
        _end(3, str(error))
    raise AssertionError


def _show_version(wanted: bool) -> None:
    if wanted:
        print(f"stn-convert (StnEvent {__version__})")
        raise typer.Exit()


app = typer.Typer(rich_markup_mode=None)


@app.command(epilog=_EXIT_CODES)
def stn_convert(
    source: Annotated[str, typer.Argument(metavar="IN", help="station file to read")],
    target: Annotated[str, typer.Argument(metavar="OUT", help="file to write: *.parquet, or *.root for an RNTuple")],
    traces: Annotated[bool, typer.Option("--traces", help="also write the traces of the events")] = False,
    chunk: Annotated[
        int | None, typer.Option(min=1, help="events in memory at a time (default: 100 with traces, else 10000)")
    ] = None,
    force: Annotated[bool, typer.Option("-f", "--force", help="replace OUT if it exists")] = False,
    version: Annotated[
        bool, typer.Option("--version", callback=_show_version, is_eager=True, help="show the version and exit")
    ] = False,
) -> None:
    """Writes the headers of a station file, or headers and traces, to a Parquet file or to an RNTuple. What was written
    is read back and compared before the file gets its name."""
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        run = _open(source)
    for warning in caught:
        print(f"stn-convert: warning: {warning.message}", file=sys.stderr)
    _require_new(target, source, force)
    try:
        convert(run, target, traces, chunk)
    except StnEventError as error:
        _end(1, str(error))
    except ValueError as error:
        _end(2, str(error))
    except OSError as error:
        _end(4, f"{target} could not be written ({error}) and was not kept")
    print(f"{target}: {len(run)} events")
    raise typer.Exit(1 if caught else 0)


def main() -> None:
    """The command `stn-convert`."""
    app()
