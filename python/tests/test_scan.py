"""The same work on many files, here and on a cluster of processes."""

import os
import signal
import sys
import types
import warnings

import awkward as ak
import numpy as np
import pytest

import stnevent
from conftest import SOURCE

pa = pytest.importorskip("pyarrow")
distributed = pytest.importorskip("distributed")

FILES = [str(SOURCE / "test" / f"{name}.root") for name in ("golden/run", "old/golden/header-9", "old/golden/event-5")]


@pytest.fixture(scope="module")
def client():
    with (
        distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster,
        distributed.Client(cluster) as client,
    ):
        yield client


@pytest.fixture(scope="module")
def all_headers():
    return stnevent.headers(FILES).dataset.to_table()


def some_scan(files, function, client=None, **arguments):
    with pytest.warns(UserWarning, match="files failed, the first: "):
        return stnevent.scan(files, function, client, **arguments)


def values(column):
    """A column of a table as NumPy has it."""
    whole = column.combine_chunks()
    flat = whole.flatten() if pa.types.is_fixed_size_list(whole.type) else whole
    return flat.to_numpy(zero_copy_only=False).reshape(len(whole), -1)


@pytest.mark.parametrize("name", stnevent.open(FILES[0]).headers().dtype.names)
def test_headers_of_files_are_those_of_each_file(all_headers, name):
    expected = np.concatenate([stnevent.open(file).headers()[name] for file in FILES])
    np.testing.assert_array_equal(values(all_headers[name]), expected.reshape(len(expected), -1))


def test_headers_name_file_and_entry_of_each_event():
    found = stnevent.headers(FILES).array()
    expected = [(file, entry) for file in FILES for entry in range(len(stnevent.open(file)))]
    assert list(zip(found["file"].to_list(), found["entry"].to_list())) == expected


def test_a_cluster_gives_the_same_headers(client):
    assert stnevent.headers(FILES, client).dataset.to_table() == stnevent.headers(FILES).dataset.to_table()


def test_a_pattern_names_the_files_that_match_in_alphabetical_order():
    found = stnevent.headers(SOURCE / "test" / "old" / "golden" / "event-[56].root").array()
    assert [os.path.basename(file) for file in found["file"].to_list()] == ["event-5.root"] * 3 + ["event-6.root"] * 3


def test_a_pattern_that_matches_nothing_is_refused():
    with pytest.raises(FileNotFoundError, match="no file matches nowhere/.*root"):
        stnevent.headers("nowhere/*.root")


@pytest.mark.parametrize("where", ["here", "cluster"])
def test_failures_name_the_file_and_do_not_stop_the_rest(tmp_path, client, where):
    (tmp_path / "text.root").write_text("no station file")
    files = [str(tmp_path / "text.root"), FILES[0], str(tmp_path / "missing.root")]
    results = some_scan(files, lambda run: {"n": len(run)}, client if where == "cluster" else None)
    assert results.array()["n"].to_list() == [5]
    assert [failure.file for failure in results.failures] == [files[0], files[2]]
    assert "FileNotFoundError" in results.failures[1].reason


def test_what_the_function_raises_is_told_with_the_file(client):
    def fail(run):
        if run.path == FILES[1]:
            raise ValueError("no such thing")
        return {"n": len(run)}

    results = some_scan(FILES, fail, client)
    assert results.failures == (stnevent.Failure(FILES[1], "ValueError: no such thing"),)
    assert results.array()["n"].to_list() == [5, 3]


def test_files_that_end_their_process_are_named_and_the_others_are_read(tmp_path, client):
    files = [str(tmp_path / f"{index}.root") for index in range(12)]
    for file in files:
        os.symlink(FILES[0], file)
    bad = [files[1], files[2], files[7]]

    def crash(run):
        if run.path in bad:
            os.kill(os.getpid(), signal.SIGKILL)
        return {"n": len(run)}

    results = some_scan(files, crash, client)
    reason = "ProcessEnded: the process that read this file was ended by SIGKILL"
    assert results.failures == tuple(stnevent.Failure(file, reason) for file in bad)
    assert results.array()["file"].to_list() == [file for file in files if file not in bad]


def test_a_function_that_exits_fails_with_its_file(client):
    results = some_scan(FILES[:1], lambda run: sys.exit(3), client)
    assert results.failures[0].reason == "ProcessEnded: the process that read this file was ended with 3"


def test_a_function_that_workers_can_not_import_fails_with_its_file(monkeypatch, client):
    module = types.ModuleType("only_here")
    exec("def count(run): return {'n': len(run)}", module.__dict__)
    monkeypatch.setitem(sys.modules, "only_here", module)
    results = some_scan(FILES[:1], module.count, client)
    assert results.failures[0].reason == "ModuleNotFoundError: No module named 'only_here'"


def test_results_that_are_no_rows_are_failures():
    results = some_scan(FILES[:1], len)
    assert results.failures[0].reason.startswith("TypeError: the function gave a int; expected a record array, ")


def rows_of(result):
    return stnevent.scan(FILES[:1], lambda run: result).array().to_list()


@pytest.mark.parametrize(
    "result",
    [
        np.rec.fromarrays([[1, 2]], names="a"),
        {"a": [1, 2]},
        ak.Array([{"a": 1}, {"a": 2}]),
        pa.table({"a": [1, 2]}),
    ],
    ids=["record array", "mapping", "awkward array", "table"],
)
def test_rows_can_be_given_as(result):
    assert rows_of(result) == [{"a": 1, "file": FILES[0]}, {"a": 2, "file": FILES[0]}]


def test_single_numbers_are_one_row():
    assert rows_of({"a": 1, "b": 2.5}) == [{"a": 1, "b": 2.5, "file": FILES[0]}]


def test_workers_write_one_parquet_file_for_each_file(tmp_path, client):
    numbers = lambda run: {"event_number": run.headers().event_number}  # noqa: E731
    results = stnevent.scan(FILES, numbers, client, folder=tmp_path / "rows")
    assert sorted(os.listdir(tmp_path / "rows")) == [f"part-000000{index}.parquet" for index in range(3)]
    assert results.dataset.to_table() == stnevent.scan(FILES, numbers).dataset.to_table()


def test_a_folder_with_something_in_it_is_refused(tmp_path):
    (tmp_path / "note").touch()
    with pytest.raises(FileExistsError, match="is not empty"):
        stnevent.headers(FILES, folder=tmp_path)


def test_workers_load_the_library_once(client):
    def process(run):
        from stnevent import _library

        return {"process": os.getpid(), "loads": _library.library.cache_info().misses}

    found = stnevent.scan(FILES * 4, process, client).array()
    assert len(set(found["process"].to_list())) <= len(client.run(os.getpid))
    assert set(found["loads"].to_list()) == {1}


def test_warnings_are_kept():
    def warn(run):
        warnings.warn("events are lost")
        return {"n": len(run)}

    assert stnevent.scan(FILES[:2], warn).warnings == ("events are lost", "events are lost")
