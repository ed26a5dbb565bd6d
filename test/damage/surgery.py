"""Damage done to ROOT files on purpose: one function for each way, each from bytes to bytes.

Numbers in a ROOT file are big-endian. The file begins with "root", its version, the place of its first record, its end
and more; then come records without gaps. A record begins with a key: its length, a version, the length of its contents
when unpacked, the time, the length of the key, its cycle, its own place, the place of its folder, and three texts (class,
name, title). A negative length is a gap.
"""

import re
import struct
from dataclasses import dataclass

FIRST_RECORD = 100
LONG_KEYS = 1000  # keys of a version above this one have places of eight bytes


@dataclass(frozen=True)
class Record:
    start: int
    length: int
    key_length: int
    object_length: int
    class_name: str
    name: str

    @property
    def end(self):
        return self.start + self.length

    @property
    def is_packed(self):
        return self.length - self.key_length < self.object_length

    @property
    def contents(self):
        return self.start + self.key_length


def _text(data, place):
    length = data[place]
    return data[place + 1 : place + 1 + length].decode("latin-1"), place + 1 + length


def records(data):
    """All records of a sound file, in their order, without gaps."""
    found, place = [], FIRST_RECORD
    while place < len(data):
        (length,) = struct.unpack_from(">i", data, place)
        if length > 0:
            version, object_length, _, key_length = struct.unpack_from(">hiIh", data, place + 4)
            class_name, after = _text(data, place + 18 + (16 if version > LONG_KEYS else 8))
            name, _ = _text(data, after)
            found.append(Record(place, length, key_length, object_length, class_name, name))
        place += abs(length)
    return found


def edges(data):
    """Where records begin or end."""
    return sorted({record.start for record in records(data)} | {len(data)})


def _patched(data, place, replacement):
    return data[:place] + replacement + data[place + len(replacement) :]


def cut(data, length):
    """The end is lost."""
    return data[:length]


def flip(data, place, mask):
    """Bits of one byte are turned round."""
    return _patched(data, place, bytes([data[place] ^ mask]))


def zero(data, start, length):
    """A piece was never written, or was lost with its block of the disk."""
    return _patched(data, start, bytes(min(length, len(data) - start)))


def lengthen_key(data, record, length):
    """The key of a record says that it has another length."""
    return _patched(data, record.start, struct.pack(">i", length))


def _listed_key(data, name):
    """The place of the key of this name in the file's list of keys."""
    list_of_keys = [record for record in records(data) if record.class_name == "TStnEventFile"][0]
    place = data.index(bytes([len(name)]) + name.encode(), list_of_keys.contents)
    class_place = next(p for p in range(place - 1, 0, -1) if data[p] == place - 1 - p)
    return class_place - 26


def point_outside(data, name, place):
    """The file's list of keys says that an object lies beyond the end, or before the beginning."""
    return _patched(data, _listed_key(data, name) + 18, struct.pack(">i", place))


def resize_listed(data, name, length, object_length):
    """The file's list of keys gives other lengths for an object."""
    key = _listed_key(data, name)
    return _patched(_patched(data, key, struct.pack(">i", length)), key + 6, struct.pack(">i", object_length))


def baskets(data, branch):
    return [record for record in records(data) if record.class_name == "TBasket" and record.name == branch]


def transplant(data, record, donor):
    """The contents of one record stand in another, cut or filled up with zeros to its length; its key stays."""
    room = record.length - record.key_length
    contents = data[donor.contents : donor.end][:room].ljust(room, b"\0")
    return _patched(data, record.contents, contents)


def exchange(data, record, other):
    """Two records of one length have changed places, keys and all."""
    assert record.length == other.length
    swapped = _patched(data, record.start, data[other.start : other.end])
    return _patched(swapped, other.start, data[record.start : record.end])


def mix(data, other, place):
    """The beginning of one run and the rest of another."""
    return data[:place] + other[place:]


def mix_baskets(data, other, branch):
    """The baskets of one branch are those of another run, with their keys; what has another length is cut or filled up."""
    for mine, theirs in zip(baskets(data, branch), baskets(other, branch)):
        data = _patched(data, mine.start, other[theirs.start : theirs.end][: mine.length].ljust(mine.length, b"\0"))
        data = lengthen_key(data, mine, mine.length)
    return data


def exchange_names(data, name, other):
    """Two texts of one length stand in each other's places, in all that is not compressed."""
    assert len(name) == len(other)
    places = {name.encode(): other.encode(), other.encode(): name.encode()}
    return re.sub(b"|".join(map(re.escape, places)), lambda found: places[found[0]], data)
