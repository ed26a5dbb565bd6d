"""Traces, pixels and trigger bits of events from their bytes; the forms are told in docs/format.md."""

from __future__ import annotations

import re
from collections.abc import Sequence
from typing import Any

import awkward as ak
import numpy as np
from numpy.typing import NDArray

from stnevent._frames import BYTE_COUNT, NEW_CLASS, OBJECT, Damage, Entries, Objects, records, require

_N_STATION_PIXELS = 2880
_N_MIRRORS = 6
_N_MIRROR_PIXELS = 480
_N_SLICES = 100
_N_WORDS = 2000

_NOT_ZERO = re.compile(rb"[^\0]")
_NULL_SIZE = 4
_POINTER_SIZE = 8

# Entries whose pixel bits are expanded at a time.
_LISTS_AT_ONCE = 1024

# Members of a pixel list before its bits, by class version. In version 2 the bits follow at once, later after a byte.
_LIST_MEMBERS: dict[int, tuple[str, ...]] = {
    2: ("fNPixels", "fPixelVectorSize"),
    3: ("fNPixels", "fPixelVectorSize"),
    4: ("fStnNo", "fNPixels", "fPixelVectorSize"),
}

# Members of a trace before its arrays, by class version.
_TRACES = {
    1: np.dtype(
        [
            ("fPixelWord", ">u4"),
            ("fTraceInfo", ">u4"),
            ("fPrevThreshold", ">u4"),
            ("fActualThreshold", ">u4"),
            ("fActualRate", ">u4"),
            ("fMean", ">f8"),
            ("fVariance", ">f8"),
            ("fTraceStartTime", ">f4"),
            ("fBase", ">u2"),
            ("fFirstLow", ">u2"),
            ("fFirstHigh", ">u2"),
            ("fNLow", ">i4"),
            ("fNHigh", ">i4"),
        ]
    ),
    2: np.dtype(
        [
            ("fTraceInfo", ">u4"),
            ("fVariance", ">f8"),
            ("fTraceStartTime", ">f4"),
            ("fFirst", ">u2"),
            ("fNWords", ">u2"),
            ("fNNear", ">i4"),
            ("fFirstWideHigh", ">u2"),
            ("fNWideHigh", ">i4"),
            ("fNWide", ">i4"),
            ("fNFar", ">i4"),
            ("fPixelWord", ">u4"),
            ("fPrevThreshold", ">u4"),
            ("fActualThreshold", ">u4"),
            ("fActualRate", ">u4"),
            ("fMean", ">f8"),
            ("fBase", ">u2"),
        ]
    ),
}
# The values of a trace that all versions have.
_VALUES = np.dtype(
    [
        ("fPixelWord", "u4"),
        ("fTraceInfo", "u4"),
        ("fPrevThreshold", "u4"),
        ("fActualThreshold", "u4"),
        ("fActualRate", "u4"),
        ("fMean", "f8"),
        ("fVariance", "f8"),
        ("fTraceStartTime", "f4"),
    ]
)
# Arrays of a trace with their counts, by class version and in their order on file.
_TRACE_ARRAYS = {1: ("fNLow", "fNHigh"), 2: ("fNWideHigh", "fNWide", "fNFar", "fNNear")}
# Of class version 2: a half byte that sends on to the next array, and the differences that half bytes stand for.
_NEXT = 15
_NEAR = np.arange(57, 73, dtype=np.uint16)
_FAR = np.array([*range(50, 57), *range(72, 81)], np.uint16)
# Before each counted array there is a byte.
_FLAG_SIZE = 1
# Bins that the whole digitised time has, by resolution.
_N_BINS = np.array([1000, 2000, 4000, 0], np.int32)

_PIXEL_DATA = np.dtype([("fUnused", ">u4"), ("fMirrorNumber", ">u4"), ("fNTriggered", ">i4"), ("fNTriggerWords", ">i4")])
_WORDS_PER_PIXEL = 4


def _lists(counts: Sequence[int] | NDArray[Any], content: ak.contents.Content) -> ak.contents.Content:
    offsets = np.concatenate([[0], np.cumsum(counts, dtype=np.int64)])
    return ak.contents.ListOffsetArray(ak.index.Index64(offsets), content)


def _counts(n_entries: int, indices: NDArray[Any]) -> NDArray[np.int64]:
    return np.bincount(indices, minlength=n_entries)


# ---- Pixels


def decode_pixels(entries: Entries) -> ak.contents.Content:
    """For each entry the station pixel numbers, in ascending order."""
    lists = entries.objects()
    indices, pixels = [np.zeros(0, np.int64)], [np.zeros(0, np.int32)]
    for first in range(0, len(lists), _LISTS_AT_ONCE):
        rows, found = _expand(lists[first : first + _LISTS_AT_ONCE])
        indices.append(lists.indices[first + rows])
        pixels.append(found)
    return _lists(_counts(len(entries), np.concatenate(indices)), ak.contents.NumpyArray(np.concatenate(pixels)))


def _expand(lists: Objects) -> tuple[NDArray[np.int64], NDArray[np.int32]]:
    """Index of the list, and number, of all pixels of some lists."""
    is_set = np.zeros((len(lists), _N_STATION_PIXELS), np.bool_)
    counts = np.zeros(len(lists), np.int64)
    for version in np.unique(lists.versions):
        chosen = np.flatnonzero(lists.versions == version)
        is_set[chosen], counts[chosen] = _read_bits(lists[chosen], int(version))
    bits = is_set.sum(axis=1)
    require(bits == counts, lists.indices, "pixels", bits, counts)
    rows, columns = np.nonzero(is_set)
    return rows, (columns + 1).astype(np.int32)


def _read_bits(lists: Objects, version: int) -> tuple[NDArray[np.bool_], NDArray[np.int64]]:
    """A truth value for each station pixel, and the number of pixels that each list claims."""
    if version not in _LIST_MEMBERS:
        expected = ", ".join(str(known) for known in _LIST_MEMBERS)
        raise Damage(int(lists.indices[0]), f"version: found {version}, expected one of {expected}")
    kind = np.dtype([(name, ">u4") for name in _LIST_MEMBERS[version]])
    members = lists.first_members(kind)
    n_words = members["fPixelVectorSize"].astype(np.int64)
    head = kind.itemsize + (_FLAG_SIZE if version > 2 else 0)
    require(lists.sizes == head + 4 * n_words, lists.indices, "fPixelVectorSize", n_words, (lists.sizes - head) // 4)
    bits = np.zeros((len(lists), _N_STATION_PIXELS), np.bool_)
    for n in np.unique(n_words):
        chosen = np.flatnonzero(n_words == n)
        words = records(lists.data, lists.starts[chosen] + head, np.dtype((np.void, 4 * n))).view(">u4")
        in_bytes = words.astype("<u4").view(np.uint8).reshape(len(chosen), -1)
        found = np.unpackbits(in_bytes, axis=1, bitorder="little")[:, :_N_STATION_PIXELS]
        bits[chosen, : found.shape[1]] = found
    return bits, members["fNPixels"].astype(np.int64)


# ---- Pointers to objects


class _Places:
    """Where objects lie: the index of the entry, the slot in their array, and where their frames begin and end."""

    def __init__(self) -> None:
        self.indices: list[int] = []
        self.slots: list[int] = []
        self.starts: list[int] = []
        self.stops: list[int] = []

    def add(self, raw: bytes, start: int, stop: int, n_slots: int, class_name: bytes, index: int) -> None:
        """Looks through an array of pointers that takes all of the room, null pointers and those to objects of a class.
        The class is named at the first object only."""
        slot = 0
        while slot < n_slots:
            match = _NOT_ZERO.search(raw, start, stop)
            n_null = ((match.start() if match else stop) - start) // _NULL_SIZE
            start, slot = start + n_null * _NULL_SIZE, slot + n_null
            if slot >= n_slots:
                break
            end = _object_end(raw, start, stop, index)
            self.indices.append(index)
            self.slots.append(slot)
            self.starts.append(_object_start(raw, start, end, class_name, index))
            self.stops.append(end)
            start, slot = end, slot + 1
        if start != stop or slot != n_slots:
            raise Damage(index, f"objects: found {slot}, expected {n_slots}")

    def objects(self, data: NDArray[np.uint8]) -> Objects:
        indices, starts, stops = (np.array(values, np.int64) for values in (self.indices, self.starts, self.stops))
        return Objects.at(data, indices, starts, stops)


def _object_end(raw: bytes, start: int, stop: int, index: int) -> int:
    count = int.from_bytes(raw[start : start + 4], "big") - BYTE_COUNT
    if not 0 <= count <= stop - start - 4:
        raise Damage(index, f"byte count of an object: found {count}, expected 0 to {stop - start - 4}")
    return start + 4 + count


def _object_start(raw: bytes, start: int, stop: int, class_name: bytes, index: int) -> int:
    """Where the frame of the object begins that a pointer leads to."""
    tag = int.from_bytes(raw[start + 4 : start + _POINTER_SIZE], "big")
    if tag != NEW_CLASS:
        return start + _POINTER_SIZE
    end = start + _POINTER_SIZE + len(class_name) + 1
    name = raw[start + _POINTER_SIZE : end]
    if name != class_name + b"\0" or end > stop:
        raise Damage(index, f"class: found {name!r}, expected {class_name.decode()}")
    return end


# ---- Traces


def decode_traces(entries: Entries) -> ak.contents.Content:
    """For each entry its traces."""
    containers = entries.objects()
    raw = entries.data.tobytes()
    places = _Places()
    for index, start, stop in zip(containers.indices, containers.starts, containers.stops):
        _add_traces(places, raw, int(start), int(stop), int(index))
    traces = places.objects(entries.data)
    require(np.isin(traces.versions, list(_TRACES)), traces.indices, "version of a trace", traces.versions, "1 or 2")
    values = np.zeros(len(traces), _VALUES)
    members = {}
    for version in np.unique(traces.versions).tolist():
        chosen = np.flatnonzero(traces.versions == version)
        members[version] = traces[chosen].first_members(_TRACES[version])
        _check_trace_counts(traces[chosen], members[version], version)
        for name in _VALUES.names or ():
            values[name][chosen] = members[version][name]
    columns = _trace_columns(values)
    counts, words = _trace_words(raw, traces, values, members)
    columns["samples"] = _lists(counts, ak.contents.NumpyArray((words & 0xFFF).view(np.int16)))
    columns["pixel_trigger"] = _lists(counts, ak.contents.NumpyArray((words & 0x8000) != 0))
    columns["threshold_changed"] = _lists(counts, ak.contents.NumpyArray((words & 0x4000) != 0))
    record = ak.contents.RecordArray(list(columns.values()), list(columns), length=len(traces))
    return _lists(_counts(len(entries), traces.indices), record)


def _add_traces(places: _Places, raw: bytes, start: int, stop: int, index: int) -> None:
    """The members of a container: the count of traces, and a pointer to a TObjArray."""
    array = start + 4
    if stop - array == _NULL_SIZE:
        return
    end = _object_end(raw, array, stop, index)
    begin = _object_start(raw, array, end, b"TObjArray", index) + OBJECT.itemsize
    slots = begin + 1 + raw[begin] + 8  # behind a short name, the number of slots and the lower bound
    if end != stop or slots > stop:
        raise Damage(index, f"TObjArray: found {end - begin} bytes, expected {stop - begin}")
    n_slots = int.from_bytes(raw[slots - 8 : slots - 4], "big", signed=True)
    places.add(raw, slots, stop, n_slots, b"TFADCData", index)


def _check_trace_counts(traces: Objects, members: NDArray[Any], version: int) -> None:
    check = {1: _check_bytes, 2: _check_halves}
    check[version](traces, members)
    counts = _TRACE_ARRAYS[version]
    size = members.dtype.itemsize + len(counts) * _FLAG_SIZE + sum(members[name].astype(np.int64) for name in counts)
    require(traces.sizes == size, traces.indices, "bytes of a trace", traces.sizes, size)


def _check_count(traces: Objects, members: NDArray[Any], name: str, limit: NDArray[np.int64]) -> None:
    found = members[name].astype(np.int64)
    require((found >= 0) & (found <= limit), traces.indices, name, found, limit)


def _check_bytes(traces: Objects, members: NDArray[Any]) -> None:
    for first, count in (("fFirstLow", "fNLow"), ("fFirstHigh", "fNHigh")):
        _check_count(traces, members, count, _N_WORDS - members[first].astype(np.int64))


def _check_halves(traces: Objects, members: NDArray[Any]) -> None:
    n_words, n_wide = members["fNWords"].astype(np.int64), members["fNWide"].astype(np.int64)
    _check_count(traces, members, "fNWords", _N_WORDS - members["fFirst"].astype(np.int64))
    n_pairs, n_near = (n_words + 1) // 2, members["fNNear"].astype(np.int64)
    require((n_near == 0) | (n_near == n_pairs), traces.indices, "fNNear", n_near, n_pairs)
    _check_count(traces, members, "fNFar", n_pairs)
    _check_count(traces, members, "fNWide", n_words)
    _check_count(traces, members, "fNWideHigh", n_wide - members["fFirstWideHigh"])


def _trace_columns(members: NDArray[Any]) -> dict[str, ak.contents.Content]:
    word, info = members["fPixelWord"].astype(np.int64), members["fTraceInfo"].astype(np.int64)
    pixel, mirror = word & 0x1FF, word >> 9 & 7
    is_pixel = (pixel >= 1) & (pixel <= _N_MIRROR_PIXELS) & (mirror >= 1) & (mirror <= _N_MIRRORS)
    columns = {
        "pixel": np.where(is_pixel, (mirror - 1) * _N_MIRROR_PIXELS + pixel, 0),
        "mirror": mirror,
        "mirror_pixel": pixel,
        "start_bin": info & 0xFFF,
        "end_bin": info >> 12 & 0xFFF,
        "n_bins": _N_BINS[info >> 24 & 3],
    }
    integers = {name: ak.contents.NumpyArray(values.astype(np.int32)) for name, values in columns.items()}
    others = {
        "start_time": "fTraceStartTime",
        "prev_threshold": "fPrevThreshold",
        "actual_threshold": "fActualThreshold",
        "actual_rate": "fActualRate",
        "mean": "fMean",
        "variance": "fVariance",
    }
    native = {column: members[name].astype(members[name].dtype.newbyteorder("=")) for column, name in others.items()}
    return integers | {name: ak.contents.NumpyArray(values) for name, values in native.items()}


def _trace_words(
    raw: bytes, traces: Objects, values: NDArray[Any], members: dict[int, NDArray[Any]]
) -> tuple[NDArray[np.int64], NDArray[np.uint16]]:
    """How many bins each trace has, and the words of all."""
    info = values["fTraceInfo"].astype(np.int64)
    firsts = info & 0xFFF
    counts = np.maximum((info >> 12 & 0xFFF) + 1 - firsts, 0)
    ends = np.cumsum(counts)
    words = np.zeros(int(ends[-1]) if len(ends) else 0, np.uint16)
    trace = np.zeros(_N_WORDS, np.uint16)
    fill = {1: _fill_from_bytes, 2: _fill_from_halves}
    for version, of_version in members.items():
        chosen = np.flatnonzero(traces.versions == version)
        columns = [values[chosen].tolist() for values in (traces.indices, traces.starts, firsts, counts, ends - counts)]
        names = of_version.dtype.names or ()
        for member, (index, start, first, count, begin) in zip(of_version.tolist(), zip(*columns)):
            trace[:] = 0
            of_trace = dict(zip(names, member))
            place = start + of_version.dtype.itemsize
            fill[version](_trace_arrays(raw, place, of_trace, version), of_trace, trace, index)
            part = trace[first : first + count]
            words[begin : begin + len(part)] = part
    return counts, words


def _trace_arrays(raw: bytes, place: int, members: dict[str, Any], version: int) -> dict[str, NDArray[np.uint8]]:
    """The arrays of one trace, by their counts."""
    arrays = {}
    for name in _TRACE_ARRAYS[version]:
        arrays[name] = np.frombuffer(raw, np.uint8, members[name], place + _FLAG_SIZE)
        place += _FLAG_SIZE + members[name]
    return arrays


def _fill_from_bytes(
    arrays: dict[str, NDArray[np.uint8]], members: dict[str, Any], trace: NDArray[np.uint16], _: int
) -> None:
    low, high = arrays["fNLow"], arrays["fNHigh"]
    first_low, first_high = members["fFirstLow"], members["fFirstHigh"]
    np.add(low, np.uint16(members["fBase"]), out=trace[first_low : first_low + len(low)])
    trace[first_high : first_high + len(high)] += high.astype(np.uint16) << 8


def _fill_from_halves(
    arrays: dict[str, NDArray[np.uint8]], members: dict[str, Any], trace: NDArray[np.uint16], index: int
) -> None:
    n_words = members["fNWords"]
    near = _halves(arrays["fNNear"])[:n_words] if members["fNNear"] else np.full(n_words, _NEXT, np.uint8)
    difference = _NEAR[near]
    others = np.flatnonzero(near == _NEXT)
    if members["fNNear"]:
        _require_count(index, members, "fNFar", (len(others) + 1) // 2)
        far = _halves(arrays["fNFar"])[: len(others)]
        difference[others] = _FAR[far]
        others = others[far == _NEXT]
    _require_count(index, members, "fNWide", len(others))
    wide = arrays["fNWide"].astype(np.uint16)
    first = members["fFirstWideHigh"]
    wide[first : first + members["fNWideHigh"]] += arrays["fNWideHigh"].astype(np.uint16) << 8
    difference[others] = wide
    np.add(difference, np.uint16(members["fBase"]), out=trace[members["fFirst"] : members["fFirst"] + n_words])


def _halves(values: NDArray[np.uint8]) -> NDArray[np.uint8]:
    """Half bytes, the first in the low bits of the first byte."""
    return np.stack([values & 15, values >> 4], axis=1).reshape(-1)


def _require_count(index: int, members: dict[str, Any], name: str, expected: int) -> None:
    if members[name] != expected:
        raise Damage(index, f"{name}: found {members[name]}, expected {expected}")


# ---- Trigger bits


def decode_triggers(entries: Entries) -> ak.contents.Content:
    """For each entry its triggered pixels, with their slices."""
    stations = entries.objects()
    raw = entries.data.tobytes()
    places = _Places()
    for index, start, stop in zip(stations.indices, stations.starts, stations.stops):
        places.add(raw, int(start), int(stop), _N_MIRRORS, b"TMirrorPixelData", int(index))
    mirrors = places.objects(entries.data)
    members = mirrors.first_members(_PIXEL_DATA)
    counts = members["fNTriggered"].astype(np.int64)
    is_count = (counts >= 0) & (counts <= _N_MIRROR_PIXELS)
    require(is_count, mirrors.indices, "fNTriggered", counts, f"0 to {_N_MIRROR_PIXELS}")
    n_words = members["fNTriggerWords"].astype(np.int64)
    require(n_words == _WORDS_PER_PIXEL * counts, mirrors.indices, "fNTriggerWords", n_words, _WORDS_PER_PIXEL * counts)
    sizes = _PIXEL_DATA.itemsize + 2 * _FLAG_SIZE + 18 * counts
    require(mirrors.sizes == sizes, mirrors.indices, "bytes of pixel data", mirrors.sizes, sizes)
    pixels, bits = _trigger_arrays(raw, mirrors, counts, np.array(places.slots, np.int64))
    indices = np.repeat(mirrors.indices, counts)
    is_triggered = bits.any(axis=1)
    contents = [ak.contents.NumpyArray(pixels[is_triggered]), ak.contents.NumpyArray(bits[is_triggered])]
    record = ak.contents.RecordArray(contents, ["pixel", "slices"])
    return _lists(_counts(len(entries), indices[is_triggered]), record)


def _trigger_arrays(
    raw: bytes, mirrors: Objects, counts: NDArray[np.int64], slots: NDArray[np.int64]
) -> tuple[NDArray[np.int32], NDArray[np.bool_]]:
    """Station pixel numbers and slices of all pixels on file."""
    pixels, words = [np.zeros(0, np.int64)], [np.zeros(0, "<u4")]
    starts = mirrors.starts + _PIXEL_DATA.itemsize + _FLAG_SIZE
    for start, n in zip(starts.tolist(), counts.tolist()):
        pixels.append(np.frombuffer(raw, ">u2", n, start).astype(np.int64))
        words.append(np.frombuffer(raw, ">u4", _WORDS_PER_PIXEL * n, start + 2 * n + _FLAG_SIZE).astype("<u4"))
    mirror_pixels = np.concatenate(pixels)
    is_pixel = (mirror_pixels >= 1) & (mirror_pixels <= _N_MIRROR_PIXELS)
    indices = np.repeat(mirrors.indices, counts)
    require(is_pixel, indices, "fPixelNo", mirror_pixels, f"1 to {_N_MIRROR_PIXELS}")
    in_bytes = np.concatenate(words).view(np.uint8).reshape(len(mirror_pixels), -1)
    bits = np.unpackbits(in_bytes.reshape(-1, 4 * _WORDS_PER_PIXEL), axis=1, count=_N_SLICES, bitorder="little")
    return (np.repeat(slots, counts) * _N_MIRROR_PIXELS + mirror_pixels).astype(np.int32), bits.astype(np.bool_)
