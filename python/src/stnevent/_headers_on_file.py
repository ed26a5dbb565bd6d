"""Event headers of all class versions from their bytes."""

from __future__ import annotations

from typing import Any

import awkward as ak
import numpy as np
from numpy.typing import NDArray

from stnevent._frames import BYTE_COUNT, Damage, Entries, Objects, require
from stnevent.records import HEADER_MEMBERS, TIME, column_name

_FIRST_VERSION = 4
_LAST_VERSION_BY_TABLE = 8
# What is written today. Its description in the file says the same, and takes long to read.
_TODAYS_VERSION = 10
_N_MIRRORS = 6

_STAMP = np.dtype([("count", ">u4"), ("version", ">i2"), ("sec", ">i4"), ("nano", ">i4")])
_STAMP_COUNT = BYTE_COUNT + _STAMP.itemsize - 4

# Class version in which a member came, where that is not the first that can be read. The run time counters came with 9.
_SINCE = {
    "fStatusBits": 7,
    "fTimeCorrectionQuality": 6,
    "fTriggerTimeStamp": 6,
    "fRunTimeCounter": 9,
    "fStnDaqDeadTime": 7,
    "fMirrorDaqDeadTime": 7,
    "fMirrorNSkippedTriggers": 7,
    "fMirrorEventLabel": 8,
    "fNRejectedT3": 7,
    "fTotalT3DeadTime": 7,
}
# Members of the T3, which are given up when they come from a version below 7, as the library does.
_T3_MEMBERS = ("fT3Id", "fT3TimeAtGround")
_T3_TRUSTED_SINCE = 7
# On file as 32-bit words, the low one first.
_WORD_COUNTERS = ("fDeadTimeCounter", "fVetoTimeCounter")

# Nanoseconds of GPS second 0, the time of a header that has none.
_ZERO_STAMP = np.datetime64(315964800 * 10**9, "ns")
_FULL_QUALITY = 2
_QUALITY_NOT_SET = -1

# Numbers as class descriptions name them: ROOT's TVirtualStreamerInfo::EReadWrite.
_NUMBERS = {1: "i1", 2: ">i2", 3: ">i4", 5: ">f4", 8: ">f8", 11: "u1", 12: ">u2", 13: ">u4", 16: ">i8", 17: ">u8", 18: "?"}
_ARRAY = 20
_BASE_TOBJECT = 66
_STAMP_TYPES = (62, 82)


def decode(entries: Entries, file: Any) -> ak.contents.Content:
    """The headers as records, None for entries without one. `file` is uproot's, for the descriptions in it."""
    headers = entries.objects()
    columns = {name: _new_column(len(headers), name, kind, n) for name, kind, n in HEADER_MEMBERS}
    for version in np.unique(headers.versions):
        chosen = headers.versions == version
        members = _read(headers[chosen], int(version), file)
        for name, values in members.items():
            if name in columns:
                columns[name][chosen] = values.reshape(len(values), *columns[name].shape[1:])
    _hide_times_of_absent_mirrors(columns)
    contents = [ak.contents.NumpyArray(column) for column in columns.values()]
    found = ak.contents.RecordArray(contents, [column_name(name) for name in columns], length=len(headers))
    if len(headers) == len(entries):
        return found
    places = np.where(entries.is_null, -1, np.cumsum(~entries.is_null) - 1)
    return ak.contents.IndexedOptionArray(ak.index.Index64(places), found)


def _new_column(length: int, name: str, kind: Any, n: int) -> NDArray[Any]:
    """Values of a header that has none of its own."""
    value = _ZERO_STAMP if kind is TIME else np.zeros((), kind)
    return np.full((length, n) if n > 1 else length, value, kind)


def _read(headers: Objects, version: int, file: Any) -> dict[str, NDArray[Any]]:
    """Members of headers of one version, as columns."""
    if version <= _LAST_VERSION_BY_TABLE or version == _TODAYS_VERSION:
        kind = _layout_by_table(headers, version)
    else:
        kind = _layout_by_description(headers, version, file)
    fields = headers.members(kind)
    for name in kind.names or ():
        if name.startswith("n:"):
            expected = kind[name.removeprefix("n:")].shape[0]
            require(fields[name] == expected, headers.indices, f"elements of {name[2:]}", fields[name], expected)
    members = {name: _column(headers, name, fields[name]) for name in kind.names or () if not name.startswith("n:")}
    return _mend(members, version)


def _column(headers: Objects, name: str, values: NDArray[Any]) -> NDArray[Any]:
    if values.dtype.names:
        return _times(headers, name, values)
    if name in _WORD_COUNTERS and values.dtype.itemsize == 4:
        low, high = values[:, 0::2].astype(np.uint64), values[:, 1::2].astype(np.uint64)
        return low | high << np.uint64(32)
    return values


def _times(headers: Objects, name: str, stamps: NDArray[Any]) -> NDArray[Any]:
    is_stamp = (stamps["count"] == _STAMP_COUNT) & (stamps["version"] == 1)
    rows = is_stamp.reshape(len(stamps), -1).all(axis=1)
    require(rows, headers.indices, name, np.where(rows, "", "another record"), "time stamps")
    nanoseconds: NDArray[np.int64] = stamps["sec"].astype(np.int64) * 10**9 + stamps["nano"]
    return nanoseconds.view(TIME)


def _layout_by_table(headers: Objects, version: int) -> np.dtype[Any]:
    if version < _FIRST_VERSION:
        raise Damage(int(headers.indices[0]), f"version: found {version}, expected {_FIRST_VERSION} or above")
    fields: list[tuple[Any, ...]] = []
    for name, kind, n in HEADER_MEMBERS:
        if version < _SINCE.get(name, _FIRST_VERSION):
            continue
        if name in _WORD_COUNTERS:
            kind, n = np.uint32, 2 * n
        on_file = _STAMP if kind is TIME else np.dtype(kind).newbyteorder(">")
        # Up to version 4 each array of numbers follows its element count.
        if version == _FIRST_VERSION and n > 1 and kind is not TIME:
            fields.append((f"n:{name}", ">i4"))
        fields.append((name, on_file, (n,)) if n > 1 else (name, on_file))
    return np.dtype(fields)


def _layout_by_description(headers: Objects, version: int, file: Any) -> np.dtype[Any]:
    description = file.streamers.get("TStnEventHeader", {}).get(version)
    if description is None:
        raise Damage(int(headers.indices[0]), f"version: found {version}, which the file does not describe")
    fields: list[tuple[Any, ...]] = []
    for element in description.elements:
        code, n = element.member("fType"), element.member("fArrayLength")
        if code == _BASE_TOBJECT:
            continue
        is_stamp = code in _STAMP_TYPES and element.typename.rstrip("*") == "VdRoot::TTimeStamp"
        on_file = _STAMP if is_stamp else _NUMBERS.get(code - _ARRAY if code > _ARRAY else code)
        if on_file is None:
            text = f"{element.name} of type {element.typename}"
            raise Damage(int(headers.indices[0]), f"version {version}: found {text}, expected numbers and time stamps")
        fields.append((element.name, on_file, (n,)) if n else (element.name, on_file))
    return np.dtype(fields)


def _mend(members: dict[str, NDArray[Any]], version: int) -> dict[str, NDArray[Any]]:
    """Gives members that a version lacks, or that are not to be trusted, the values that the library gives them."""
    if version < _SINCE["fTimeCorrectionQuality"]:
        cycle = members["fT10Mhz"]
        is_set = (cycle > 50) & (cycle <= 150)
        members["fTimeCorrectionQuality"] = np.where(is_set, _FULL_QUALITY, _QUALITY_NOT_SET)
    if version < _T3_TRUSTED_SINCE:
        for name in _T3_MEMBERS:
            del members[name]
    return members


def _hide_times_of_absent_mirrors(columns: dict[str, NDArray[Any]]) -> None:
    """A mirror without data has no raw time: what is on file in its place is no measurement."""
    present = columns["fMirrorDataBits"][:, np.newaxis] >> np.arange(_N_MIRRORS, dtype=np.uint8) & 1
    columns["fRawMirrorTime"][present == 0] = np.datetime64("NaT")
