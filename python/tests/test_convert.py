"""Station files as Parquet and RNTuple."""

import os
import subprocess
import sys

import awkward as ak
import numpy as np
import pytest
import uproot

import stnevent
from stnevent.convert import NTUPLE, convert

pq = pytest.importorskip("pyarrow.parquet")
runner = pytest.importorskip("typer.testing").CliRunner()
from stnevent.convert import app  # noqa: E402


@pytest.fixture
def run(run_path):
    return stnevent.open(run_path)


@pytest.fixture(autouse=True)
def folder(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    return tmp_path


class LongRun:
    """The events of a run again and again."""

    def __init__(self, run, n_events):
        self.run, self.path, self.n_events = run, run.path, n_events

    def __len__(self):
        return self.n_events

    def __getitem__(self, part):
        return self.run[np.arange(self.n_events)[part] % len(self.run)]


def resident_mib():
    with open("/proc/self/statm", encoding="ascii") as pages:
        return int(pages.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") / 2**20


def command(*args):
    done = runner.invoke(app, [str(arg) for arg in args])
    return done.exit_code, done.stdout, done.stderr


def read(path):
    """The rows of a converted file, with times as integers."""
    if path.endswith(".parquet"):
        return ak.from_arrow(pq.read_table(path))
    with uproot.open(path) as file:
        return file[NTUPLE].arrays()


def as_numbers(values):
    values = np.asarray(values)
    return values.view(np.int64) if values.dtype.kind == "M" else values


@pytest.mark.parametrize("path", ["out.parquet", "out.root"])
def test_every_column_of_the_headers_comes_back(run, path):
    convert(run, path)
    found, headers = read(path), run.headers()
    assert found.fields == list(headers.dtype.names)
    for name in found.fields:
        np.testing.assert_array_equal(as_numbers(ak.to_numpy(found[name])), as_numbers(headers[name]))


@pytest.mark.parametrize("path", ["out.parquet", "out.root"])
@pytest.mark.parametrize("chunk_size", [None, 2])
def test_every_trace_comes_back(run, path, chunk_size):
    convert(run, path, traces=True, chunk_size=chunk_size)
    for event, traces in zip(run, read(path)["traces"], strict=True):
        expected = event.traces()
        assert traces.fields == expected.fields
        for name in traces.fields:
            assert as_numbers(ak.flatten(traces[name], axis=None)).tolist() == as_numbers(
                ak.flatten(expected[name], axis=None)
            ).tolist()
        assert ak.num(traces["samples"]).tolist() == ak.num(expected["samples"]).tolist()


def test_parquet_has_times(run):
    convert(run, "out.parquet")
    times = pq.read_table("out.parquet")["time_stamp"].to_numpy()
    np.testing.assert_array_equal(times, run.headers().time_stamp)


def test_root_reads_the_ntuple(run):
    convert(run, "out.root", traces=True)
    frame = stnevent.root().RDataFrame(NTUPLE, "out.root")
    assert frame.AsNumpy(["event_number"])["event_number"].tolist() == run.headers().event_number.tolist()


def test_no_more_than_a_chunk_is_in_a_row_group(run):
    convert(run, "out.parquet", chunk_size=2)
    file = pq.ParquetFile("out.parquet")
    assert [file.metadata.row_group(i).num_rows for i in range(file.num_row_groups)] == [2, 2, 1]


@pytest.mark.parametrize("path", ["out.parquet", "out.root"])
def test_memory_does_not_grow_with_the_run(run, path, monkeypatch):
    from stnevent import convert as module

    resident = []

    def measured(events, traces, chunk=module._chunk):
        resident.append(resident_mib())
        return chunk(events, traces)

    monkeypatch.setattr(module, "_chunk", measured)
    convert(LongRun(run, 100_000), path, chunk_size=5000)
    written, read_back = resident[:20], resident[20:]
    assert written[-1] - written[5] < 10
    assert read_back[-1] - read_back[5] < 10


@pytest.mark.parametrize("path", ["out.parquet", "out.root"])
def test_what_does_not_come_back_is_not_kept(run, path, monkeypatch, folder):
    monkeypatch.setattr("stnevent.convert._is_equal", lambda written, read: False)
    with pytest.raises(OSError, match=f"^{path} did not come back as it was written$"):
        convert(run, path)
    assert os.listdir(folder) == []


@pytest.mark.parametrize("path", ["out.parquet", "out.root"])
def test_another_value_is_noticed(run, path, monkeypatch, folder):
    from stnevent import convert as module

    def altered(events, traces, chunk=module._chunk, calls=[]):
        found = chunk(events, traces)
        calls.append(1)
        return found if len(calls) == 1 else ak.with_field(found, found["run_no"] + np.uint32(1), "run_no")

    monkeypatch.setattr(module, "_chunk", altered)
    with pytest.raises(OSError, match="did not come back"):
        convert(run, path)
    assert os.listdir(folder) == []


@pytest.mark.parametrize("path", ["out.parquet", "out.root"])
def test_a_run_without_events_has_its_columns(path, folder):
    subprocess.run([os.path.join(os.environ["STN_BIN"], "stn-simulate"), "run.root", "-n", "0"], check=True)
    empty = stnevent.open("run.root")
    convert(empty, path)
    assert (len(read(path)), read(path).fields) == (0, list(empty.headers().dtype.names))
    with pytest.raises(ValueError, match="^run.root has no events, and so no traces$"):
        convert(empty, path, traces=True)


def test_the_command_goes_on_with_what_could_be_recovered_and_says_so(folder):
    subprocess.run([os.path.join(os.environ["STN_BIN"], "ToolTestFiles"), "unclosed", "cut.root"], check=True)
    code, output, error = command("cut.root", "out.parquet")
    assert (code, output) == (1, "out.parquet: 3 events\n")
    assert error.startswith("stn-convert: warning: cut.root: was not closed by its writer")


def test_the_command_says_what_it_wrote(run_path):
    assert command(run_path, "out.parquet", "--traces") == (0, "out.parquet: 5 events\n", "")
    assert "traces" in pq.read_schema("out.parquet").names


def test_the_command_keeps_a_file_that_exists(run_path, folder):
    (folder / "out.parquet").write_text("precious")
    text = "stn-convert: out.parquet exists already; choose another name, or --force to replace it\n"
    assert command(run_path, "out.parquet") == (4, "", text)
    assert (folder / "out.parquet").read_text() == "precious"
    assert command(run_path, "out.parquet", "--force")[0] == 0


def test_the_command_never_writes_over_its_input(run_path, folder):
    (folder / "run.root").write_bytes(run_path.read_bytes())
    text = "stn-convert: run.root would be overwritten; choose another name for OUT\n"
    assert command("run.root", "run.root", "--force") == (2, "", text)


def test_the_command_refuses_another_ending(run_path):
    text = "stn-convert: out.csv ends with neither of .parquet, .root\n"
    assert command(run_path, "out.csv") == (2, "", text)


def test_the_command_says_that_there_is_no_file():
    assert command("none.root", "out.root") == (3, "", "stn-convert: none.root does not exist; check the name\n")


def test_the_command_wants_a_copy_of_what_is_on_a_server():
    address = "https://server/run.root"
    text = f"stn-convert: {address} is an address; copy the file first, this program needs all of it\n"
    assert command(address, "out.root") == (2, "", text)


def test_the_command_refuses_what_is_no_station_file(folder):
    (folder / "notes.root").write_text("nothing to see")
    code, output, error = command("notes.root", "out.root")
    assert (code, output) == (3, "")
    assert error.startswith("stn-convert: notes.root")


def test_the_command_names_the_event_that_is_damaged(run_path, folder):
    content = bytearray(run_path.read_bytes())
    place = content.index(b"fFADCData\x0cStnEventTree") + 3000
    content[place : place + 6] = b"damage"
    (folder / "bad.root").write_bytes(content)
    code, output, error = command("bad.root", "out.parquet", "--traces")
    assert (code, output) == (1, "")
    assert "bad.root" in error and "entry" in error
    assert os.listdir(folder) == ["bad.root"]


def test_the_command_explains_itself():
    code, output, _ = command("--help")
    assert code == 0
    assert "Exit codes: 0 fine; 1 the file is damaged" in " ".join(output.split())


def test_the_command_is_a_program():
    done = subprocess.run(
        [sys.executable, "-W", "ignore", "-c", "from stnevent.convert import main; main()", "--version"],
        capture_output=True, text=True, check=True,
    )
    assert done.stdout == f"stn-convert (StnEvent {stnevent.__version__})\n"


def test_the_command_completes_its_options():
    program = "import sys; sys.argv[0] = 'stn-convert'; from stnevent.convert import main; main()"
    asked = {"_STN_CONVERT_COMPLETE": "complete_bash", "COMP_WORDS": "stn-convert --tr", "COMP_CWORD": "1"}
    done = subprocess.run(
        [sys.executable, "-W", "ignore", "-c", program], env=os.environ | asked, capture_output=True, text=True, check=True
    )
    assert done.stdout.split() == ["--traces"]
