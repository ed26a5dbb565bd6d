"""The same work on many files, in this process or on a Dask cluster."""

from __future__ import annotations

import contextlib
import dataclasses
import functools
import glob
import os
import pickle
import uuid
import warnings
from collections.abc import Callable, Iterable, Iterator, Mapping
from pathlib import Path
from typing import TYPE_CHECKING, Any

import numpy as np
from numpy.typing import NDArray

from stnevent import _apart
from stnevent.errors import StnEventError
from stnevent.file import File, open
from stnevent.progress import track

if TYPE_CHECKING:
    import awkward as ak
    import pyarrow as pa
    import pyarrow.dataset

Files = str | os.PathLike[str] | Iterable[str | os.PathLike[str]]


@dataclasses.dataclass(frozen=True)
class Failure:
    """A file without a result."""

    file: str
    reason: str
    """What was raised, or how the process ended."""


@dataclasses.dataclass(frozen=True)
class Results:
    """What `scan` found."""

    dataset: pyarrow.dataset.Dataset
    """The rows of all files, in the order of the files; the column `file` names the file of each."""
    failures: tuple[Failure, ...]
    """The files that gave no result."""
    warnings: tuple[str, ...]
    """What reading the other files warned of, as that events at the end of a file are lost."""

    def array(self) -> ak.Array:
        """The rows as an Awkward array with a field for each column, all in memory."""
        import awkward as ak

        return ak.from_arrow(self.dataset.to_table())


@dataclasses.dataclass(frozen=True)
class _Outcome:
    """Of one file: a table, or the name of the Parquet file that has it, or why there is none."""

    table: pa.Table | str | None
    reason: str | None
    warnings: tuple[str, ...] = ()


def _column(values: Any) -> pa.Array:
    import pyarrow as pa

    values = np.atleast_1d(values)
    flat = pa.array(values.reshape(-1))
    return flat if values.ndim == 1 else pa.FixedSizeListArray.from_arrays(flat, values.shape[1])


def _table(found: Any) -> pa.Table:
    """A result of a function of the caller's as a table."""
    import pyarrow as pa

    if isinstance(found, pa.Table):
        return found
    if isinstance(found, np.ndarray) and found.dtype.names:
        found = {name: found[name] for name in found.dtype.names}
    if isinstance(found, Mapping):
        return pa.table({name: _column(values) for name, values in found.items()})
    import awkward as ak

    if isinstance(found, ak.Array) and ak.fields(found):
        return ak.to_arrow_table(found, extensionarray=False)
    kinds = "a record array, a mapping of columns, an Awkward array of records or a pyarrow table"
    raise TypeError(f"the function gave a {type(found).__name__}; expected {kinds}")


def _with_file(table: pa.Table, file: str) -> pa.Table:
    import pyarrow as pa

    name = pa.array([file], pa.string())
    indices = pa.array(np.zeros(len(table), np.int32))
    return table.append_column("file", pa.DictionaryArray.from_arrays(indices, name))


def _write(table: pa.Table, part: str) -> str:
    """Under its name only when it is whole: a worker can end at any time."""
    import pyarrow.parquet

    unfinished = f"{part}.{uuid.uuid4().hex}.tmp"
    pyarrow.parquet.write_table(table, unfinished)
    os.replace(unfinished, part)
    return part


def _scan_file(file: str, function: Callable[[File], Any], part: str | None) -> _Outcome:
    """Runs on a worker, or in this process."""
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        try:
            with open(file) as run:
                table = _with_file(_table(function(run)), file)
            result: pa.Table | str = _write(table, part) if part else table
        except StnEventError as error:
            return _Outcome(None, error.reason if error.file == file and error.entry is None else str(error))
        except Exception as error:  # whatever the function raises is told with the file
            return _Outcome(None, f"{type(error).__name__}: {error}")
    return _Outcome(result, None, tuple(str(warning.message) for warning in caught))


Task = Callable[[], _Outcome]


def _run_here(tasks: list[Task]) -> Iterator[tuple[int, _Outcome]]:
    for index, task in enumerate(tasks):
        yield index, task()


def _run_on_cluster(client: Any, tasks: list[Task]) -> Iterator[tuple[int, _Outcome]]:
    """Outcomes as they come."""
    import cloudpickle
    from distributed import as_completed

    scan = uuid.uuid4().hex
    # Apart from the worker: Dask does a worker's other tasks again when it ends, blames them too, and can wait forever.
    pickled = [cloudpickle.dumps(task) for task in tasks]
    futures = {client.submit(_apart.run, task, key=f"stnevent-{scan}-{i}", pure=False): i for i, task in enumerate(pickled)}
    for future in as_completed(list(futures)):
        yield futures[future], _outcome(future)
        future.release()


def _outcome(future: Any) -> _Outcome:
    try:
        found: _Outcome | Exception = pickle.loads(future.result())
    except Exception as error:  # of the cluster, as that it lacks a package: those of the function are in the outcome
        found = error
    return found if isinstance(found, _Outcome) else _Outcome(None, f"{type(found).__name__}: {found}")


def _names(files: Files) -> list[str]:
    if not isinstance(files, str | os.PathLike):
        return [os.fspath(file) for file in files]
    name = os.fspath(files)
    found = sorted(glob.glob(name)) if glob.has_magic(name) else [name]
    if not found:
        raise FileNotFoundError(f"no file matches {name}")
    return found


def _part_names(folder: str | os.PathLike[str] | None, n: int) -> list[str] | list[None]:
    if folder is None:
        return [None] * n
    path = Path(folder).absolute()
    path.mkdir(parents=True, exist_ok=True)
    if any(path.iterdir()):
        raise FileExistsError(f"{path} is not empty: name a new folder, or remove what is in it")
    return [str(path / f"part-{index:07}.parquet") for index in range(n)]


def _dataset(tables: list[pa.Table | str]) -> pyarrow.dataset.Dataset:
    import pyarrow as pa
    import pyarrow.dataset

    if tables and isinstance(tables[0], str):
        return pyarrow.dataset.dataset(tables)
    return pyarrow.dataset.dataset(pa.concat_tables(tables, promote_options="default") if tables else pa.table({}))


def _require_cluster_packages() -> None:
    with contextlib.suppress(ImportError):
        import pyarrow.dataset  # noqa: F401

        return
    raise ImportError("pyarrow is missing: pip install 'stnevent[cluster]'")


def scan(
    files: Files,
    function: Callable[[File], Any],
    client: Any = None,
    folder: str | os.PathLike[str] | None = None,
) -> Results:
    """Calls `function` with each file, opened, and puts the rows that it gives into one data set.

    `files` is a list of names, or a pattern as "runs/*.root". With `client`, a `distributed.Client`, each file is one task
    on the cluster, whose workers must see the files under the same names; without it the files are read here, one by one.

    The function gives the rows of its file: a record array such as `run.headers()`, a mapping of column names to values (one
    row if these are single numbers), an Awkward array of records, or a pyarrow table. With `folder`, each worker writes them
    there as one Parquet file for each file, so that results can be larger than memory; the folder must be new or empty.

    A file that can't be read, a function that raises, and on a cluster a file that ends its process are in `failures` of the
    result, with the name of the file, and do not stop the rest; a UserWarning tells how many there are.

    Raises FileNotFoundError if no file matches the pattern, FileExistsError if the folder is not empty, and ImportError
    without pyarrow.
    """
    _require_cluster_packages()
    names = _names(files)
    parts = _part_names(folder, len(names))
    tasks: list[Task] = [functools.partial(_scan_file, *each) for each in zip(names, [function] * len(names), parts)]
    running = _run_on_cluster(client, tasks) if client is not None else _run_here(tasks)
    outcomes = dict(track(running, len(tasks), "Files"))
    ordered = [outcomes[index] for index in range(len(tasks))]
    failures = tuple(Failure(name, each.reason) for name, each in zip(names, ordered) if each.reason is not None)
    if failures:
        first = f"{failures[0].file}: {failures[0].reason}"
        warnings.warn(f"{len(failures)} of {len(names)} files failed, the first: {first}", stacklevel=2)
    noted = tuple(warning for each in ordered for warning in each.warnings)
    return Results(_dataset([each.table for each in ordered if each.table is not None]), failures, noted)


def _headers(run: File) -> dict[str, NDArray[Any]]:
    headers = run.headers()
    return {"entry": run.entries, **{name: headers[name] for name in headers.dtype.names or ()}}


def headers(files: Files, client: Any = None, folder: str | os.PathLike[str] | None = None) -> Results:
    """The headers of all events of these files, one row for each: the columns of `File.headers`, `entry`, the number of the
    event in its file, and `file`. Arguments, failures and exceptions are those of `scan`."""
    return scan(files, _headers, client, folder)
