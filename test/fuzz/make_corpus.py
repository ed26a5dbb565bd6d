#!/usr/bin/env python3
"""Writes the starting inputs of the fuzz targets: make_corpus.py CORPUS_FOLDER FILE...

The files are those of the old writers and of the library itself. Of all their records the first of each class, version
and length is kept, alone and, for events, whole. Each is a file named by where it comes from.
"""
import pathlib
import sys

import uproot

LIMIT = 8000  # bytes of one input

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
        if branch.num_baskets:
            yield from parts(bytes(branch.basket(0).data))


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


def shape(class_name, data):
    """Records of one shape are read in one way. An event's is that of its parts too."""
    inner = tuple((name, record[4:6]) for name, record in parts(data)) if class_name == "TStnEvent" else len(data)
    return class_name, data[4:6], inner


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

    for path in files:
        for class_name, data in keys(path):
            add(class_name, pathlib.Path(path).stem, data)
            if class_name == "TStnEvent":
                for part, record in parts(data):
                    add(part, pathlib.Path(path).stem, record)
        for class_name, data in entries(path):
            add(class_name, pathlib.Path(path).stem, data)


if __name__ == "__main__":
    main(*sys.argv[1:])
