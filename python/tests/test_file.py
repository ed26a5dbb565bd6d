"""`stnevent.open` and what it gives, compared with the values that the C++ library has in JSON."""

import gc
import pickle
import resource
import shutil

import awkward as ak
import numpy as np
import pytest
import uproot

import stnevent

# Columns of the headers and their names in the JSON.
COLUMNS = {
    "event_number": "event",
    "stn_number": "station",
    "event_class": "class",
    "event_type": "type",
    "mirror_data_bits": "data_bits",
    "mirror_status": "mirror_status",
    "run_no": "run",
    "trigger_source": "trigger_source",
    "status_bits": "status_bits",
    "time_stamp": "time",
    "time_correction_quality": "quality",
    "t10_mhz": "t10",
    "offset": "offset",
    "mirror_time_offset": "mirror_offset",
    "raw_mirror_time": "raw_time",
    "trigger_time_stamp": "trigger_stamp",
    "dead_time_counter": "dead_time",
    "veto_time_counter": "veto_time",
    "run_time_counter": "run_time",
    "stn_daq_dead_time": "stn_daq_dead_time",
    "mirror_daq_dead_time": "mirror_daq_dead_time",
    "mirror_n_skipped_triggers": "skipped",
    "mirror_event_label": "label",
    "t3_id": "t3_id",
    "t3_time_at_ground": "t3_time",
    "n_rejected_t3": "rejected_t3",
    "total_t3_dead_time": "t3_dead_time",
}


def time_of(stamp):
    return np.datetime64("NaT", "ns") if stamp is None else np.datetime64(stamp[0] * 10**9 + stamp[1], "ns")


def as_expected(column, value):
    """A value of the JSON as the column should have it."""
    if column == "raw_mirror_time":
        return np.array([time_of(stamp) for stamp in value])
    return time_of(value) if column in ("time_stamp", "t3_time_at_ground") else np.array(value)


@pytest.fixture
def run(run_path):
    with stnevent.open(run_path) as file:
        yield file


def test_length_is_the_number_of_events(run, expected):
    assert len(run) == len(expected["events"]) == 5


def test_headers_have_every_column_of_the_library(run):
    assert run.headers().dtype.names == tuple(COLUMNS)


@pytest.mark.parametrize("column", COLUMNS)
def test_headers_have_the_values_of_the_library(run, expected, column):
    values = [as_expected(column, event["header"][COLUMNS[column]]) for event in expected["events"]]
    np.testing.assert_array_equal(run.headers()[column], np.array(values, run.headers()[column].dtype))


def test_header_of_an_event_is_its_row(run):
    header, row = run[3].header, run.headers()[3]
    for column in COLUMNS:
        np.testing.assert_array_equal(header[column], row[column])


def test_traces_have_the_values_of_the_library(run, expected):
    for event, values in zip(run, expected["events"]):
        traces = event.traces()
        assert traces.pixel.tolist() == [trace["station_pixel"] for trace in values["traces"]]
        assert traces.mirror.tolist() == [trace["pixel_word"] >> 9 & 7 for trace in values["traces"]]
        assert traces.mirror_pixel.tolist() == [trace["pixel_word"] & 0x1FF for trace in values["traces"]]
        monitor = [traces[name].tolist() for name in
                   ("prev_threshold", "actual_threshold", "actual_rate", "mean", "variance")]
        assert [list(row) for row in zip(*monitor)] == [trace["monitor"] for trace in values["traces"]]
        assert traces.start_time.tolist() == [trace["start_time"] for trace in values["traces"]]


def test_samples_and_flags_have_the_values_of_the_library(run, expected):
    for event, values in zip(run, expected["events"]):
        for trace, value in zip(event.traces(), values["traces"]):
            start, end = value["trace_info"] & 0xFFF, value["trace_info"] >> 12 & 0xFFF
            words = np.zeros(2000, int)
            words[: len(value["words"])] = value["words"]
            words = words[start : end + 1]
            assert (trace.start_bin, trace.end_bin, trace.n_bins) == (start, end, 1000)
            assert trace.samples.tolist() == (words & 0xFFF).tolist()
            assert trace.pixel_trigger.tolist() == (words >> 15 & 1).tolist()
            assert trace.threshold_changed.tolist() == (words >> 14 & 1).tolist()


def test_time_of_a_trace_is_that_of_its_mirror_less_its_bins(run):
    for event in run:
        for trace in event.traces():
            raw = event.header.raw_mirror_time[trace.mirror - 1]
            first = raw - np.timedelta64(100 * (trace.n_bins - trace.start_bin), "ns")
            # The correction moves it by the offset and by the drift of the clock within a second.
            assert abs(np.datetime64(trace.time, "ns") - first) < np.timedelta64(100_000, "ns")


def test_pixels_have_the_values_of_the_library(run, expected):
    assert [event.pixels().tolist() for event in run] == [event["pixels"] for event in expected["events"]]


def test_triggers_have_the_values_of_the_library(run, expected):
    for event, values in zip(run, expected["events"]):
        pixels, slices = (event.triggers()[name].to_numpy() for name in ("pixel", "slices"))
        first = [
            [(mirror["mirror"] - 1) * 480 + (column - 1) * 24 + row, slice_]
            for mirror in values["pixel_data"] if mirror
            for column, row, slice_ in mirror["first"]
        ]
        assert np.column_stack([pixels, slices.argmax(axis=1)]).tolist() == first
        assert slices.shape == (len(pixels), 100) and slices.any(axis=1).all()


def test_run_header_has_the_values_of_the_library(run):
    assert run.run_header == stnevent.RunHeader(
        run_no=1, stn_no=3, mirror_status=18, start_time=time_of([1715964782, 0]), user_name="stn-simulate",
        comment="simulated, seed 1", evb_version="1.0.0", stn_event_version="2.1.100", mr_event_version="4.1.5",
        readout_version=None)


def test_run_trailer_has_the_values_of_the_library(run, expected):
    trailer, values = run.run_trailer, expected["run_trailer"]
    assert trailer.dead_time_counter == tuple(values["dead_time"])
    assert trailer.life_time_counter == tuple(values["life_time"])
    assert trailer.mirror_daq_dead_time == tuple(values["mirror_daq_dead_time"])
    assert trailer.mirror_n_skipped_triggers == tuple(values["skipped"])
    assert [trailer.n_t3, trailer.n_rejected_t3, trailer.total_t3_dead_time] == values["t3"]
    assert (trailer.mirror_status, trailer.n_events) == (values["mirror_status"], values["events"])
    assert (trailer.veto_time_counter, trailer.stn_daq_dead_time) == (
        values["veto_time"], values["stn_daq_dead_time"])
    assert (trailer.start_time, trailer.stop_time) == (time_of(values["start"]), time_of(values["stop"]))
    assert trailer.total_time == values["total_time"]


def test_index_counts_from_either_end(run):
    assert [run[0].entry, run[-1].entry, run[np.int64(2)].entry] == [0, 4, 2]


def test_slices_masks_and_indices_give_events(run):
    assert run[1:4].entries.tolist() == [1, 2, 3]
    assert run[::-2].entries.tolist() == [4, 2, 0]
    assert run[run.headers().event_number > 3].entries.tolist() == [3, 4]
    assert run[[3, 0]].entries.tolist() == [3, 0]
    assert [event.entry for event in run[1:][1:3]] == [2, 3]


def test_an_event_is_found_by_its_number(run):
    assert run.by_number(4).entry == 3
    with pytest.raises(LookupError, match=r"run\.root has no event with number 6$"):
        run.by_number(6)


def test_the_event_nearest_to_a_time_is_found(run):
    times = run.headers().time_stamp
    assert run.by_time(times[2] + np.timedelta64(1, "s")).entry == 2
    assert run.by_time(times[3] - np.timedelta64(1, "s")).entry == 3
    assert run.by_time("2030-01-01").entry == 4


def test_events_between_two_times_are_found(run):
    times = run.headers().time_stamp
    assert run.between(times[1], times[3]).entries.tolist() == [1, 2]


def test_headers_of_a_selection_are_its_rows(run):
    assert run[[4, 0, 1, 3]].headers().event_number.tolist() == [5, 1, 2, 4]
    assert run[:0].headers().event_number.tolist() == []


def test_an_index_outside_is_an_index_error(run):
    with pytest.raises(IndexError):
        run[5]


def test_what_was_read_stays_when_the_file_is_closed(run_path):
    with stnevent.open(run_path) as file:
        times, pixels, traces = file.headers().time_stamp, file[0].pixels(), file[0].traces()
        copies = times.copy(), pixels.copy(), ak.copy(traces)
        file[1].traces()
    np.testing.assert_array_equal(times, copies[0])
    np.testing.assert_array_equal(pixels, copies[1])
    assert ak.array_equal(traces, copies[2])


def test_a_closed_file_says_so(run_path):
    file = stnevent.open(run_path)
    file.close()
    file.close()
    with pytest.raises(ValueError, match=r"run\.root is closed"):
        file.headers()
    with pytest.raises(ValueError, match=r"run\.root is closed"):
        file[0].traces()


def test_a_missing_file_is_the_systems_error(tmp_path):
    with pytest.raises(FileNotFoundError):
        stnevent.open(tmp_path / "none.root")


def test_another_kind_of_file_is_named(tmp_path):
    path = tmp_path / "text.root"
    path.write_text("this is no ROOT file")
    with pytest.raises(stnevent.StnEventError) as error:
        stnevent.open(path)
    assert str(error.value) == f"{path}: is not a ROOT file; name a station file"
    assert error.value.entry is None


def test_a_file_cut_short_is_named(run_path, tmp_path):
    path = tmp_path / "cut.root"
    path.write_bytes(run_path.read_bytes()[:20000])
    with pytest.raises(stnevent.StnEventError, match="cut short, with 20000 of its [0-9]+ bytes"):
        stnevent.open(path)


def with_damaged_basket(path, branch, copy):
    """A copy of the file in which the second basket of a branch can't be expanded."""
    damaged = uproot.open(path)["StnEventTree"][branch]
    content = bytearray(path.read_bytes())
    content[damaged.member("fBasketSeek")[1] + damaged.member("fBasketBytes")[1] - 30] ^= 0xFF
    copy.write_bytes(content)
    return copy


def test_a_damaged_event_names_file_and_entry_and_the_others_stay_good(run_path, expected, tmp_path):
    path = with_damaged_basket(run_path, "fEventHeader", tmp_path / "damaged.root")
    with stnevent.open(path) as run:
        with pytest.raises(stnevent.StnEventError) as error:
            [event.pixels() for event in run]
        assert (error.value.file, error.value.entry) == (str(path), 2)
        assert str(error.value).startswith(f"{path}: entry 2: the event cannot be read (")
        assert str(error.value).endswith("); copy or write the file again")
        assert [run[i].pixels().tolist() for i in (0, 4)] == [expected["events"][i]["pixels"] for i in (0, 4)]


def test_a_damaged_header_names_file_and_entry(run_path, tmp_path):
    path = with_damaged_basket(run_path, "fEventHeader", tmp_path / "damaged.root")
    with stnevent.open(path) as run:
        with pytest.raises(stnevent.StnEventError, match=r"entry 2: the event header cannot be read \("):
            run.headers()
        assert run[4:].headers().event_number.tolist() == [5]


def test_errors_survive_the_way_between_processes():
    error = stnevent.StnEventError("run.root", 7, "damaged")
    again = pickle.loads(pickle.dumps(error))
    assert (str(again), again.entry) == ("run.root: entry 7: damaged", 7)


def test_differences_of_samples_and_bins_can_be_negative(run):
    trace = run[0].traces()[0]
    assert ak.min(trace.samples - 4095) < 0
    assert trace.start_bin - 1 == -1


def resident():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024


def read_all(path, times):
    for _ in range(times):
        with stnevent.open(path) as file:
            for event in file:
                assert len(event.traces()) + len(event.pixels()) + event.header.event_number > 0
            file.headers()
    gc.collect()


def test_memory_stays_constant_over_a_long_loop(run_path, tmp_path):
    path = shutil.copy(run_path, tmp_path / "run.root")
    read_all(path, 20)
    before = resident()
    read_all(path, 200)
    assert resident() - before < 8  # MB, of 1000 events with 180 MB of traces and headers
