#!/usr/bin/env python3
"""Writes the starting inputs of the fuzz targets: make_corpus.py CORPUS_FOLDER FILE...

The files are those of the old writers and of the library itself. Of all their records the first of each class, version
and length is kept, of traces the first that stores its words in one way, alone and, for events, whole. Of small files the
first with the same branches and compression is kept whole, but without the descriptions of classes, which make up most
of it. Each is a file named by where it comes from.
"""
import pathlib
import struct
import sys

import uproot

LIMIT = 8000  # bytes of one input
LIMIT_OF_FILES = 24000

# The target that reads a class. What "parts" reads begins with a byte that says which of its classes follows.
PARTS = ["TStnRunHeader", "TStnRunTrailer", "TStnT3Data", "TStnTriggerData", "TStnGeometryData", "TStnPixelData",
         "TStnFADCData", "VdRoot::TTimeStamp"]  # fmt: skip
TARGETS = dict.fromkeys(PARTS, "parts") | {
    "TStnEventHeader": "header",
    "TStnPixelList": "list",
    "TStnEvent": "event",
    "TFADCData": "trace",
    "TMirrorPixelData": "pixels",
}


def keys(path):
    """Class and bytes of each object that has a key of its own in the file."""
    file = uproot.open(path)
    for name in file.keys(recursive=True, cycle=False):
        key = file.key(name)
        if key.fClassName in TARGETS:
            chunk, cursor = key.get_uncompressed_chunk_cursor()
            yield key.fClassName, bytes(chunk.raw_data[cursor.index :])


def entries(path):
    """The first records of each class in the baskets of the tree."""
    for branch in uproot.open(path)["StnEventTree"].itervalues(recursive=True):
        for number in range(branch.num_baskets):
            yield from parts(bytes(branch.basket(number).data))
            yield from traces(bytes(branch.basket(number).data))


def frame(data, at):
    """The record that begins there with its byte count."""
    return data[at : at + 4 + (int.from_bytes(data[at : at + 4], "big") & 0x3FFFFFFF)]


def parts(event):
    """The first record of each class inside an event."""
    for name in TARGETS:
        tag = b"\xff\xff\xff\xff" + name.encode() + b"\0"
        at = event.find(tag)
        if at >= 0:
            yield name, frame(event, at + len(tag))
    stamp = event.find(b"\x40\x00\x00\x0a\x00\x01")
    if stamp >= 0:
        yield "VdRoot::TTimeStamp", frame(event, stamp)


def traces(event):
    """All traces of an event that follow one another. Behind the first a tag stands in the place of the class's name."""
    tag = b"\xff\xff\xff\xffTFADCData\0"
    at = event.find(tag) + len(tag)
    while at >= len(tag) and event[at : at + 1] == b"\x40":
        yield "TFADCData", frame(event, at)
        at += len(frame(event, at))
        while event[at : at + 4] == bytes(4):  # null pointers
            at += 4
        at += 8


def words_of_trace(data):
    """Which of its parts a trace of class version 2 has: near, high bytes of wide, wide, and far words."""
    numbers = struct.unpack_from(">HIHIII", data, 34)
    return tuple(number > 0 for number in (numbers[0], numbers[1], *numbers[3:]))


def shape(class_name, data):
    """Records of one shape are read in one way. An event's is that of its parts too."""
    if class_name == "TFADCData" and data[4:6] == b"\0\2":
        return class_name, data[4:6], words_of_trace(data)
    if class_name == "TFADCData":
        return class_name, data[4:6], len(data) // 1000  # none or one of the two arrays, or both
    inner = tuple((name, record[4:6]) for name, record in parts(data)) if class_name == "TStnEvent" else len(data)
    return class_name, data[4:6], inner


def without_descriptions(data):
    """A file that ends where its class descriptions begin, behind which lies nothing but the list of free space."""
    (place,) = struct.unpack_from(">i", data, 37)
    header = bytearray(data[:100])
    struct.pack_into(">iiii", header, 12, place, place, 0, 0)  # end, list of free space, its length, number of pieces
    struct.pack_into(">ii", header, 37, 0, 0)
    return bytes(header) + data[100:place]


def main(folder, *files):
    known = set()

    def add(class_name, origin, data):
        if shape(class_name, data) in known or len(data) > LIMIT:
            return
        known.add(shape(class_name, data))
        target = TARGETS[class_name]
        path = pathlib.Path(folder, target, f"{class_name.split(':')[-1]}-of-{origin}")
        while path.exists():
            path = path.with_name(path.name + "-again")
        path.parent.mkdir(parents=True, exist_ok=True)
        selector = bytes([PARTS.index(class_name)]) if target == "parts" else b""
        path.write_bytes(selector + data)

    def add_file(origin):
        data = without_descriptions(origin.read_bytes())
        branches = tuple(uproot.open(origin)["StnEventTree"].keys(recursive=True))
        if (branches, data[33:37]) in known or len(data) > LIMIT_OF_FILES:
            return
        known.add((branches, data[33:37]))  # and the compression
        path = pathlib.Path(folder, "file", origin.name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)

    for path in files:
        add_file(pathlib.Path(path))
        for class_name, data in keys(path):
            add(class_name, pathlib.Path(path).stem, data)
            if class_name == "TStnEvent":
                for part, record in parts(data):
                    add(part, pathlib.Path(path).stem, record)
        for class_name, data in entries(path):
            add(class_name, pathlib.Path(path).stem, data)


if __name__ == "__main__":
    main(*sys.argv[1:])
