"""Station files with uproot alone, without ROOT.

>>> import uproot
>>> import stnevent.uproot
>>> tree = uproot.open("run.root")["StnEventTree"]
>>> headers = tree["fEventHeader"].array()
>>> traces = tree["fFADCData"].array(entry_start=10, entry_stop=20)

Importing this module teaches uproot these branches of station files of every age:

- `fEventHeader`: a record for each event, with the columns of `stnevent.File.headers`
- `fFADCData`: for each event its traces, with the fields of `stnevent.Event.traces` but for `time`
- `fPixelList`: for each event the station pixel numbers of `stnevent.Event.pixels`
- `fPixelData`: for each event the triggered pixels of `stnevent.Event.triggers`

An event without such a part gives None for the header and an empty list for the others. What is damaged raises
`StnEventError`, which names file, branch and entry; of entries that are compressed together, the first.
"""

from __future__ import annotations

from typing import Any

import awkward as ak
import numpy as np
import uproot
from uproot.interpretation.custom import CustomInterpretation
from uproot.models.TBasket import Model_TBasket

from stnevent import _headers_on_file, _parts_on_file
from stnevent._frames import Basket, Damage, Entries, require
from stnevent.errors import StnEventError


_ENTRIES = "entries of the basket"


class _AsPart(CustomInterpretation):  # type: ignore[misc]
    """A branch with one part of each event, an object of a class of its own. The baskets are only collected; all
    entries are decoded at once."""

    branch_name: str
    class_name: str

    @classmethod
    def match_branch(cls, branch: Any, context: dict[str, Any], simplify: bool) -> bool:
        # Not asked for the branch's streamer: uproot would read all class descriptions of the file, which takes longer than
        # reading the headers of a short run.
        return bool(branch.name == cls.branch_name and branch.member("fClassName", none_if_missing=True) == "TStnEvent")

    @property
    def typename(self) -> str:
        return self.class_name

    @property
    def cache_key(self) -> str:
        return type(self).__name__

    def decode(self, entries: Entries, branch: Any) -> ak.contents.Content:
        raise NotImplementedError

    def basket_array(self, data: Any, byte_offsets: Any, basket: Any, branch: Any, *_: Any) -> Basket:
        n_found = 0 if byte_offsets is None else len(byte_offsets) - 1
        if n_found != basket.num_entries:
            reason = f"{_ENTRIES}: found {n_found}, expected {basket.num_entries}"
            raise _error(branch, branch.entry_offsets[basket.basket_num], reason)
        return Basket(data, byte_offsets)

    def final_array(
        self, basket_arrays: Any, entry_start: int, entry_stop: int, entry_offsets: Any, library: Any, branch: Any, _: Any
    ) -> Any:
        if library.name != "ak":
            raise TypeError(f"{branch.name} is read as Awkward arrays only: leave library={library.name!r} out")
        starts, counts = np.array(entry_offsets[:-1], np.int64), np.diff(entry_offsets)
        used = np.flatnonzero((starts < entry_stop) & (starts + counts > entry_start))
        baskets = [basket_arrays[i] for i in used.tolist()]
        found = np.array([len(basket) for basket in baskets], np.int64)
        first = int(starts[used[0]]) if len(used) else entry_start
        try:
            require(found == counts[used], starts[used] - entry_start, _ENTRIES, found, counts[used])
            entries = Entries.join(baskets, self.class_name)[entry_start - first : entry_stop - first]
            return ak.Array(self.decode(entries, branch))
        except Damage as damage:
            raise _error(branch, entry_start + damage.index, damage.reason) from None


def _error(branch: Any, entry: int, reason: str) -> StnEventError:
    return StnEventError(branch.file.file_path, entry, f"{branch.name}: {reason}; copy or write the file again")


class AsEventHeader(_AsPart):
    """`fEventHeader` as records."""

    branch_name = "fEventHeader"
    class_name = "TStnEventHeader"

    def decode(self, entries: Entries, branch: Any) -> ak.contents.Content:
        return _headers_on_file.decode(entries, branch.file)


class AsTraces(_AsPart):
    """`fFADCData` as lists of traces."""

    branch_name = "fFADCData"
    class_name = "TStnFADCData"

    def decode(self, entries: Entries, branch: Any) -> ak.contents.Content:
        return _parts_on_file.decode_traces(entries)


class AsPixels(_AsPart):
    """`fPixelList` as lists of station pixel numbers."""

    branch_name = "fPixelList"
    class_name = "TStnPixelList"

    def decode(self, entries: Entries, branch: Any) -> ak.contents.Content:
        return _parts_on_file.decode_pixels(entries)


class AsTriggers(_AsPart):
    """`fPixelData` as lists of triggered pixels."""

    branch_name = "fPixelData"
    class_name = "TStnPixelData"

    def decode(self, entries: Entries, branch: Any) -> ak.contents.Content:
        return _parts_on_file.decode_triggers(entries)


_read_members = Model_TBasket.read_members


def _read_members_or_tell_where(basket: Any, chunk: Any, cursor: Any, context: dict[str, Any], file: Any) -> None:
    """uproot unpacks baskets before it asks an interpretation, and raises what zlib says, without a place."""
    branch = basket.parent
    try:
        _read_members(basket, chunk, cursor, context, file)
    except Exception as error:
        number = context.get("basket_num")
        if number is None or not isinstance(branch.interpretation, _AsPart):
            raise
        first, stop = branch.entry_offsets[number : number + 2]
        reason = f"the basket of entries {first} to {stop - 1} can't be unpacked ({type(error).__name__}: {error})"
        raise _error(branch, int(first), reason) from error


Model_TBasket.read_members = _read_members_or_tell_where

for _interpretation in (AsEventHeader, AsTraces, AsPixels, AsTriggers):
    uproot.register_interpretation(_interpretation)
