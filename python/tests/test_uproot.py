"""`stnevent.uproot`, compared with what the C++ library reads from the same files."""

import subprocess
import sys
import zlib

import awkward as ak
import numpy as np
import pytest
import uproot
from uproot.interpretation.custom import AsBinary

import stnevent
import stnevent.uproot  # registers the branches
from conftest import GOLDEN, SOURCE
from stnevent import _headers_on_file, _parts_on_file
from stnevent._frames import Basket, Damage, Entries
from stnevent.records import HEADER

OLD = SOURCE / "test" / "old" / "golden"
UNREADABLE = OLD / "header-5-long.root"
FILES = [*sorted(GOLDEN.glob("*.root")), *sorted(set(OLD.glob("*.root")) - {UNREADABLE})]


@pytest.fixture(params=FILES, ids=lambda path: path.stem)
def path(request):
    return request.param


def tree_of(path):
    return uproot.open(path)["StnEventTree"]


def test_headers_are_those_of_the_library(path):
    found = tree_of(path)["fEventHeader"].array()
    with stnevent.open(path) as run:
        expected = run.headers()
    assert ak.fields(found) == list(HEADER.names)
    for column in HEADER.names:
        values = found[column].to_numpy()
        assert values.dtype == expected[column].dtype, column
        np.testing.assert_array_equal(values, expected[column], err_msg=column)


def test_traces_are_those_of_the_library(path):
    found = tree_of(path)["fFADCData"].array()
    with stnevent.open(path) as run:
        for traces, event in zip(found, run, strict=True):
            expected = event.traces()
            assert ak.fields(traces) == [field for field in ak.fields(expected) if field != "time"]
            assert ak.array_equal(traces, expected[ak.fields(traces)])


def test_pixels_are_those_of_the_library(path):
    found = tree_of(path)["fPixelList"].array()
    with stnevent.open(path) as run:
        assert found.tolist() == [event.pixels().tolist() for event in run]


def test_triggers_are_those_of_the_library(path):
    tree = tree_of(path)
    if "fPixelData" not in tree["StnEvent"]:
        pytest.skip("older than pixel data")
    found = tree["fPixelData"].array()
    with stnevent.open(path) as run:
        for triggers, event in zip(found, run, strict=True):
            assert ak.array_equal(triggers, event.triggers())


def test_a_part_of_the_entries_is_read():
    headers = tree_of(GOLDEN / "run.root")["fEventHeader"]
    assert headers.array(entry_start=1, entry_stop=4).event_number.tolist() == [2, 3, 4]
    assert headers.array(entry_start=3).event_number.tolist() == [4, 5]
    assert headers.array(entry_stop=0).event_number.tolist() == []


def test_several_branches_are_read_step_by_step():
    steps = uproot.iterate({GOLDEN / "run.root": "StnEventTree"}, ["fEventHeader", "fPixelList"], step_size=2)
    assert [step.fEventHeader.event_number.tolist() for step in steps] == [[1, 2], [3, 4], [5]]


def test_a_damaged_header_names_file_branch_and_entry():
    with pytest.raises(stnevent.StnEventError) as error:
        tree_of(UNREADABLE)["fEventHeader"].array(entry_start=1)
    expected = "fEventHeader: members of version 5: found 228, expected 227 bytes; copy or write the file again"
    assert str(error.value) == f"{UNREADABLE}: entry 1: {expected}"


def with_a_changed_byte(folder, branch, place):
    """A copy of a file in which a byte of the first basket of a branch is another; the place of it from the basket's size."""
    source, path = GOLDEN / "run.root", folder / "damaged.root"
    found = tree_of(source)[branch]
    raw = bytearray(source.read_bytes())
    raw[found.member("fBasketSeek")[0] + place(found.member("fBasketBytes")[0])] ^= 0xFF
    path.write_bytes(raw)
    return path


def with_a_damaged_basket(folder, branch):
    return with_a_changed_byte(folder, branch, lambda size: size - 20)


@pytest.mark.parametrize("branch", ["fEventHeader", "fFADCData", "fPixelList", "fPixelData"])
def test_a_basket_that_can_not_be_unpacked_names_file_branch_and_entries(tmp_path, branch):
    path = with_a_damaged_basket(tmp_path, branch)
    last = tree_of(path)[branch].entry_offsets[1] - 1
    with pytest.raises(stnevent.StnEventError) as error:
        tree_of(path)[branch].array()
    place = f"{path}: entry 0: {branch}: the basket of entries 0 to {last} can't be unpacked (error: Error -"
    assert str(error.value).startswith(place)
    assert str(error.value).endswith("; copy or write the file again")


def test_another_number_of_entries_in_a_basket_is_told(tmp_path):
    key_length = tree_of(GOLDEN / "run.root")["fPixelList"].basket_key(0).fKeylen
    path = with_a_changed_byte(tmp_path, "fPixelList", lambda size: key_length - 6)  # the last byte of fNevBuf
    with pytest.raises(stnevent.StnEventError) as error:
        tree_of(path)["fPixelList"].array()
    reason = "fPixelList: entries of the basket: found 5, expected 250; copy or write the file again"
    assert str(error.value) == f"{path}: entry 0: {reason}"


def test_damage_of_other_branches_is_told_by_uproot(tmp_path):
    path = with_a_damaged_basket(tmp_path, "fTriggerData")
    with pytest.raises(zlib.error):
        tree_of(path)["fTriggerData"].array(interpretation=AsBinary())


def test_another_kind_of_array_is_refused():
    with pytest.raises(TypeError, match="fPixelList is read as Awkward arrays only: leave library='np' out"):
        tree_of(GOLDEN / "run.root")["fPixelList"].array(library="np")


def entries_of(branch, path=GOLDEN / "run.root"):
    """All entries of a branch, with bytes that a test may change."""
    raw = [bytes(entry) for entry in tree_of(path)[branch].array(interpretation=AsBinary()).tolist()]
    ends = np.cumsum([0, *map(len, raw)])
    basket = Basket(np.frombuffer(b"".join(raw), np.uint8).copy(), ends)
    return Entries.join([basket], tree_of(path)[branch].streamer.typename.rstrip("*"))


def replaced(entries, index, old, new, n=0):
    """The entries with bytes replaced, in an entry, where they are found for the n-th time."""
    start, stop = entries.starts[index], entries.stops[index]
    raw = entries.data[start:stop].tobytes()
    place = -1
    for _ in range(n + 1):
        place = raw.index(old, place + 1)
    entries.data[start + place : start + place + len(new)] = np.frombuffer(new, np.uint8)
    return entries


def damage_of(decode, *arguments):
    with pytest.raises(Damage) as damage:
        decode(*arguments)
    return damage.value.index, damage.value.reason


def decode_headers(entries):
    return _headers_on_file.decode(entries, tree_of(GOLDEN / "run.root").file)


HEADER_FRAME = b"TStnEventHeader\0\x40\x00\x01\xaf\x00\x0a"
TRACE_FRAME = b"TFADCData\0\x40\x00"


@pytest.mark.parametrize(
    "new, reason",
    [
        (b"TStnEventHeadex\0", "class: found b'TStnEventHeadex', expected TStnEventHeader"),
        (HEADER_FRAME[:-3] + b"\xae", "byte count: found 430, expected 431"),
        (HEADER_FRAME[:-2] + b"\x00\x0b", "version: found 11, which the file does not describe"),
        (HEADER_FRAME[:-2] + b"\x00\x03", "version: found 3, expected 4 or above"),
        (HEADER_FRAME[:-2] + b"\x00\x08", "members of version 8: found 419, expected 371 bytes"),
    ],
)
def test_a_damaged_frame_of_a_header_is_told(new, reason):
    entries = replaced(entries_of("fEventHeader"), 2, HEADER_FRAME, new)
    assert damage_of(decode_headers, entries) == (2, reason)


def test_an_entry_that_ends_outside_its_basket_is_told():
    entries = entries_of("fEventHeader")
    entries.stops[2] = 10**9
    assert damage_of(decode_headers, entries) == (2, f"end of the entry: found 1000000000, expected 0 to {len(entries.data)}")


def test_a_damaged_time_of_a_header_is_told():
    entries = replaced(entries_of("fEventHeader"), 3, b"\x40\x00\x00\x0a\x00\x01", b"\x40\x00\x00\x0b", n=2)
    assert damage_of(decode_headers, entries) == (3, "fRawMirrorTime: found another record, expected time stamps")


def test_a_wrong_element_count_of_version_4_is_told():
    path = OLD / "header-4.root"
    entries = replaced(entries_of("fEventHeader", path), 1, b"\x00\x00\x00\x0c", b"\x00\x00\x00\x0d", n=1)
    index, reason = damage_of(_headers_on_file.decode, entries, tree_of(path).file)
    assert (index, reason) == (1, "elements of fDeadTimeCounter: found 13, expected 12")


def test_an_entry_without_header_is_none():
    entries = entries_of("fEventHeader")
    entries.data[entries.starts[1] : entries.starts[1] + 4] = 0
    entries.stops[1] = entries.starts[1] + 4
    assert [header and header["event_number"] for header in ak.Array(decode_headers(entries)).tolist()] == [1, None, 3, 4, 5]


def test_a_referenced_header_takes_two_bytes_more():
    plain = entries_of("fEventHeader")
    start, stop = plain.starts[0], plain.stops[0]
    raw = plain.data[start:stop].tobytes()
    at = raw.index(HEADER_FRAME)
    frame, members = at + len(HEADER_FRAME) + 10, at + len(HEADER_FRAME) + 10
    bits = (0x10).to_bytes(4, "big")
    longer = raw[: frame - 4] + bits + b"\0\0" + raw[members:]
    longer = (0x40000000 + len(longer) - 4).to_bytes(4, "big") + longer[4:]
    count = at + len(b"TStnEventHeader\0")
    longer = longer[:count] + (0x40000000 + len(longer) - count - 4).to_bytes(4, "big") + longer[count + 4 :]
    entries = Entries.join([Basket(np.frombuffer(longer, np.uint8), np.array([0, len(longer)]))], "TStnEventHeader")
    assert decode_headers(entries)["event_number"].data.tolist() == [1]


def test_damaged_traces_are_told():
    def decode(entries):
        return damage_of(_parts_on_file.decode_traces, entries)

    first = TRACE_FRAME  # of the first trace of an event
    size = 16 + len(b"TFADCData\0")
    n_words = size + 18  # behind byte count, version, TObject and what precedes fNWords
    n_near, n_far = n_words + 2, n_words + 16
    n_wide = n_far - 4

    def with_bytes(offset, new):
        entries = entries_of("fFADCData")
        raw = entries.data[entries.starts[1] : entries.stops[1]].tobytes()
        at = entries.starts[1] + raw.index(first) + offset
        entries.data[at : at + len(new)] = np.frombuffer(new, np.uint8)
        return entries

    assert decode(with_bytes(0, b"TFADCDatx\0")) == (1, "class: found b'TFADCDatx\\x00', expected TFADCData")
    assert decode(with_bytes(n_words, b"\x13\x88")) == (1, "fNWords: found 5000, expected 2000")
    assert decode(with_bytes(n_near, b"\xff\xff\xff\xff")) == (1, "fNNear: found -1, expected 500")
    assert decode(with_bytes(n_far, b"\xff\xff\xff\xff")) == (1, "fNFar: found -1, expected 500")
    assert decode(with_bytes(n_wide, b"\x00\x00\x03\xe9")) == (1, "fNWide: found 1001, expected 1000")
    index, reason = decode(with_bytes(10, b"\x40\x7f\xff\xff"))
    assert index == 1 and reason.startswith("byte count: found 8388607, expected ")


def test_a_pixel_count_that_does_not_fit_is_told():
    count = len(tree_of(GOLDEN / "run.root")["fPixelList"].array()[0])
    entries = replaced(entries_of("fPixelList"), 0, count.to_bytes(4, "big"), (count + 1).to_bytes(4, "big"))
    assert damage_of(_parts_on_file.decode_pixels, entries) == (0, f"pixels: found {count}, expected {count + 1}")


def test_a_vector_size_that_does_not_fit_is_told():
    entries = replaced(entries_of("fPixelList"), 4, b"\x00\x00\x00\x5a", b"\x00\x00\x00\x5b")
    assert damage_of(_parts_on_file.decode_pixels, entries) == (4, "fPixelVectorSize: found 91, expected 90")


def test_a_trigger_count_that_does_not_fit_is_told():
    count = len(tree_of(GOLDEN / "run.root")["fPixelData"].array()[0])
    old = count.to_bytes(4, "big") + (4 * count).to_bytes(4, "big")
    entries = replaced(entries_of("fPixelData"), 0, old, (481).to_bytes(4, "big"))
    assert damage_of(_parts_on_file.decode_triggers, entries) == (0, "fNTriggered: found 481, expected 0 to 480")


def test_nothing_of_root_is_loaded():
    program = """
import sys
import uproot
import stnevent.uproot
tree = uproot.open(sys.argv[1])["StnEventTree"]
for branch in ("fEventHeader", "fFADCData", "fPixelList", "fPixelData"):
    assert len(tree[branch].array()) == 5
assert "ROOT" not in sys.modules
with open("/proc/self/maps") as maps:
    assert "libCore" not in maps.read()
"""
    subprocess.run([sys.executable, "-c", program, GOLDEN / "run.root"], check=True)


def test_headers_of_today_are_as_their_description_says(monkeypatch):
    by_table = tree_of(GOLDEN / "run.root")["fEventHeader"].array()
    monkeypatch.setattr(_headers_on_file, "_TODAYS_VERSION", None)
    by_description = tree_of(GOLDEN / "run.root")["fEventHeader"].array()
    assert by_table.tolist() == by_description.tolist()
