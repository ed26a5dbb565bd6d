"""What of a station file is on disk, found by a second reader of records that shares nothing with the library or ROOT."""

import struct
import zlib

BRANCHES = {
    "TObject", "fEventHeader", "fFADCData", "fPixelList", "fPixelData", "fTriggerData", "fT3Data", "fGeometryData",
}  # fmt: skip


class Record:
    def __init__(self, data, place):
        """Raises if no record begins at this place. Lengths and texts as in any ROOT file."""
        self.size, version, self.object_size, _, self.key_size, self.cycle = struct.unpack_from(">ihIIhH", data, place)
        places = ">qq" if version > 1000 else ">ii"
        own_place, _ = struct.unpack_from(places, data, place + 18)
        if self.size < self.key_size or self.key_size <= 0 or own_place != place:
            raise ValueError("no record")
        cursor = place + 18 + struct.calcsize(places)
        texts = []
        for _ in range(3):
            length = data[cursor]
            texts.append(data[cursor + 1 : cursor + 1 + length].decode())
            cursor += 1 + length
        self.class_name, self.name, self.title = texts
        self.n_entries = struct.unpack_from(">i", data, cursor + 10)[0] if self.class_name == "TBasket" else 0
        self.is_whole = place + self.size <= len(data)
        self.packed = data[place + self.key_size : place + self.size]

    def content(self):
        if len(self.packed) == self.object_size:
            return self.packed
        content = b""
        cursor = 0
        while cursor < len(self.packed):
            size = int.from_bytes(self.packed[cursor + 3 : cursor + 6], "little")
            if self.packed[cursor : cursor + 2] != b"ZL":
                raise ValueError("another compression")
            content += zlib.decompress(self.packed[cursor + 9 : cursor + 9 + size])
            cursor += 9 + size
        return content


def walk(data):
    """All whole records, wherever they lie: each holds its own place."""
    place = 100
    while place + 26 <= len(data):
        (own_place,) = struct.unpack_from(">q", data, place + 18)  # in eight bytes, or in the first four of them
        record = read(data, place) if place in (own_place, own_place >> 32) else None
        if record:
            yield record
        place += record.size if record else 1


def read(data, place):
    """The record at this place, if there is one that is whole."""
    try:
        record = Record(data, place)
        return record if record.is_whole and len(record.content()) == record.object_size else None
    except (ValueError, IndexError, struct.error, zlib.error):
        return None


def saved_entries(tree):
    """The number of entries in the record of a tree: it stands behind the bases, each with a byte count."""
    content = tree.content()
    cursor = 6
    for _ in range(4):
        (count,) = struct.unpack_from(">I", content, cursor)
        cursor += 4 + (count & 0x3FFFFFFF)
    return struct.unpack_from(">q", content, cursor)[0]


def events_on_disk(data):
    """Number of events whose parts are all in the file, in baskets of their own or in those saved with the tree."""
    saved = 0
    baskets = {}
    for record in walk(data):
        if (record.class_name, record.name) == ("TTree", "StnEventTree"):
            saved = max(saved, saved_entries(record))
        if (record.class_name, record.title) == ("TBasket", "StnEventTree"):
            baskets.setdefault(record.name, {})[record.cycle] = record.n_entries
    ends = []
    for branch in BRANCHES:
        numbers = baskets.get(branch, {})
        end = number = 0
        while number in numbers:
            end += numbers[number]
            number += 1
        ends.append(max(saved, end))
    return min(ends)
