"""Objects in the entries of a branch, as ROOT frames them."""

from __future__ import annotations

import dataclasses
from typing import Any

import numpy as np
from numpy.typing import NDArray

BYTE_COUNT = 0x40000000
NEW_CLASS = 0xFFFFFFFF
_IS_REFERENCED = 0x10
_NULL_SIZE = 4

# An object's own frame, and the TObject that all our classes begin with.
OBJECT = np.dtype([("count", ">u4"), ("version", ">i2"), ("object_version", ">i2"), ("id", ">u4"), ("bits", ">u4")])
_PROCESS_ID_SIZE = 2


class Damage(Exception):
    """What is on file can't be read: the index of the entry, and what was found."""

    def __init__(self, index: int, reason: str) -> None:
        super().__init__(index, reason)
        self.index = index
        self.reason = reason


def require(good: NDArray[np.bool_], indices: NDArray[Any], what: str, found: NDArray[Any], expected: object) -> None:
    """Raises `Damage` for the first that is not good."""
    if good.all():
        return
    bad = int(np.argmin(good))
    wanted = expected[bad] if isinstance(expected, np.ndarray) else expected
    raise Damage(int(indices[bad]), f"{what}: found {found[bad]}, expected {wanted}")


def records(data: NDArray[np.uint8], starts: NDArray[np.int64], kind: np.dtype[Any]) -> NDArray[Any]:
    """The records of a type that begin at these places, which must lie inside the data."""
    if not len(starts):
        return np.zeros(0, kind)
    windows = np.lib.stride_tricks.sliding_window_view(data, kind.itemsize)
    return windows[starts].view(kind)[:, 0]


@dataclasses.dataclass
class Objects:
    """Objects that lie in the data: the index of the entry, class version, and where members begin and end."""

    data: NDArray[np.uint8]
    indices: NDArray[np.int64]
    versions: NDArray[np.int16]
    starts: NDArray[np.int64]
    stops: NDArray[np.int64]

    @classmethod
    def at(
        cls, data: NDArray[np.uint8], indices: NDArray[np.int64], starts: NDArray[np.int64], stops: NDArray[np.int64]
    ) -> Objects:
        """The objects whose frames begin at these places and must end at the others."""
        sizes = stops - starts
        require(sizes >= OBJECT.itemsize, indices, "object", sizes, f"at least {OBJECT.itemsize} bytes")
        frames = records(data, starts, OBJECT)
        counts = frames["count"].astype(np.int64) - BYTE_COUNT
        require(counts == sizes - 4, indices, "byte count", counts, sizes - 4)
        is_referenced = (frames["bits"] & _IS_REFERENCED) != 0
        members = starts + OBJECT.itemsize + is_referenced * _PROCESS_ID_SIZE
        require(members <= stops, indices, "object", sizes, OBJECT.itemsize + _PROCESS_ID_SIZE)
        return cls(data, indices, frames["version"].astype(np.int16), members, stops)

    def __getitem__(self, chosen: Any) -> Objects:
        return Objects(
            self.data, self.indices[chosen], self.versions[chosen], self.starts[chosen], self.stops[chosen]
        )

    def __len__(self) -> int:
        return len(self.indices)

    @property
    def sizes(self) -> NDArray[np.int64]:
        """Bytes of the members."""
        return self.stops - self.starts

    def members(self, kind: np.dtype[Any]) -> NDArray[Any]:
        """The members, all of which are of this type."""
        expected = kind.itemsize
        for version in np.unique(self.versions):
            fits = (self.sizes == expected) | (self.versions != version)
            require(fits, self.indices, f"members of version {version}", self.sizes, f"{expected} bytes")
        return records(self.data, self.starts, kind)

    def first_members(self, kind: np.dtype[Any]) -> NDArray[Any]:
        """The members at the beginning."""
        require(self.sizes >= kind.itemsize, self.indices, "members", self.sizes, f"at least {kind.itemsize} bytes")
        return records(self.data, self.starts, kind)


@dataclasses.dataclass
class Basket:
    """Entries as they stand together on file, and where each begins and the last ends."""

    data: NDArray[np.uint8]
    offsets: NDArray[np.int32]

    def __len__(self) -> int:
        return len(self.offsets) - 1


@dataclasses.dataclass
class Entries:
    """Entries of a branch, each of which points to an object of one class, or to none."""

    data: NDArray[np.uint8]
    starts: NDArray[np.int64]
    stops: NDArray[np.int64]
    class_name: str

    @classmethod
    def join(cls, baskets: list[Basket], class_name: str) -> Entries:
        """The entries of baskets that follow each other."""
        if not baskets:
            return cls(np.zeros(0, np.uint8), np.zeros(0, np.int64), np.zeros(0, np.int64), class_name)
        sizes = np.array([len(basket.data) for basket in baskets], np.int64)
        shifts: NDArray[np.int64] = np.repeat(np.cumsum(sizes) - sizes, [len(basket) for basket in baskets])
        starts = np.concatenate([basket.offsets[:-1] for basket in baskets]) + shifts
        stops = np.concatenate([basket.offsets[1:] for basket in baskets]) + shifts
        return cls(np.concatenate([basket.data for basket in baskets]), starts, stops, class_name)

    def __getitem__(self, chosen: slice) -> Entries:
        return Entries(self.data, self.starts[chosen], self.stops[chosen], self.class_name)

    def __len__(self) -> int:
        return len(self.starts)

    @property
    def is_null(self) -> NDArray[np.bool_]:
        """Whether there is no object."""
        found: NDArray[np.bool_] = self.stops - self.starts == _NULL_SIZE
        return found

    def objects(self) -> Objects:
        """The objects, without the entries that have none."""
        name = self.class_name.encode()
        pointer = np.dtype([("count", ">u4"), ("tag", ">u4"), ("name", f"S{len(name) + 1}")])
        indices = np.flatnonzero(~self.is_null)
        starts, stops = self.starts[indices], self.stops[indices]
        sizes = stops - starts
        require((starts >= 0) & (stops <= len(self.data)), indices, "end of the entry", stops, f"0 to {len(self.data)}")
        require(sizes >= pointer.itemsize, indices, "entry", sizes, f"at least {pointer.itemsize} bytes")
        pointers = records(self.data, starts, pointer)
        counts = pointers["count"].astype(np.int64) - BYTE_COUNT
        require(counts == sizes - 4, indices, "byte count of the entry", counts, sizes - 4)
        is_class = (pointers["tag"] == NEW_CLASS) & (pointers["name"] == name)
        require(is_class, indices, "class", pointers["name"], self.class_name)
        return Objects.at(self.data, indices, starts + pointer.itemsize, stops)
