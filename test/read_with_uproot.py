"""Reads a station file with uproot alone and compares pixel lists, pixel data and traces with the library's values.

Usage: read_with_uproot.py FILE JSON DOCUMENT, with the JSON of dump_events and the document whose Python decodes the
traces and the pixel data.
"""

import json
import re
import sys

import numpy as np
import uproot

def pixels(pixel_list):
    """Station pixel numbers, ascending, of a TStnPixelList: one bit each, pixel 1 in the lowest bit of word 0."""
    words = np.asarray(pixel_list.member("fPixelVector"), dtype="<u4")
    return (np.flatnonzero(np.unpackbits(words.view("u1"), bitorder="little")) + 1).tolist()


def documented(document_name):
    """What the Python code of a document defines."""
    names = {"np": np, "uproot": uproot}
    with open(document_name, encoding="utf-8") as text:
        for code in re.findall(r"^```python\n(.*?)^```", text.read(), re.DOTALL | re.MULTILINE):
            exec(code, names)
    return names


def trace_values(trace, words):
    """What the library gives for a trace, from the members on file."""
    word = trace.member("fPixelWord")
    return {
        "station_pixel": ((word >> 9 & 7) - 1) * 480 + (word & 0x1FF),
        "pixel_word": word,
        "monitor": [trace.member(f"f{name}") for name in
                    ("PrevThreshold", "ActualThreshold", "ActualRate", "Mean", "Variance")],
        "trace_info": trace.member("fTraceInfo"),
        "start_time": float(np.float32(trace.member("fTraceStartTime"))),
        "words": np.trim_zeros(words(trace), "b").tolist(),
    }


def pixel_values(data, triggers):
    """What the library gives for the pixel data of a mirror: numbers, and column, row and first slice of each pixel."""
    if data is None:
        return None
    number = data.member("fMirrorNumber")
    bits = triggers(data)
    indices = np.flatnonzero(bits.any(axis=1))
    return {
        "station": number >> 5 & 7,
        "mirror": ((number & 0x1F) - 1) % 6 + 1,
        "first": [[int(i) // 24 + 1, int(i) % 24 + 1, int(bits[i].argmax())] for i in indices],
    }


def main(file_name, json_name, document_name):
    code = documented(document_name)
    with open(json_name, encoding="utf-8") as text:
        events = json.load(text)["events"]
    tree = uproot.open(file_name)["StnEventTree"]
    lists = tree["fPixelList"].array(library="np")
    pixel_data = tree["fPixelData"].array(library="np")
    traces = tree["fFADCData"].array(library="np")
    assert len(events) == tree.num_entries == len(lists) == len(pixel_data) == len(traces) > 0
    for entry, event in enumerate(events):
        assert pixels(lists[entry]) == event["pixels"], f"pixel list of entry {entry} differs"
        assert lists[entry].member("fNPixels") == len(event["pixels"])
        mirrors = [pixel_values(data, code["triggers"]) for data in pixel_data[entry].member("fPixelData")]
        assert mirrors == event["pixel_data"], f"pixel data of entry {entry} differ"
        found = [trace_values(trace, code["words"]) for trace in traces[entry].member("fFADCData") if trace is not None]
        assert found == event["traces"], f"traces of entry {entry} differ"
    print(f"{len(events)} events, {sum(len(event['traces']) for event in events)} traces: uproot agrees")


main(*sys.argv[1:])
