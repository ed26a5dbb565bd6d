"""Reads a station file with uproot alone and compares pixel lists and traces with the library's values.

Usage: read_with_uproot.py FILE JSON, with the JSON of dump_events.
"""

import json
import sys

import numpy as np
import uproot

BINS = 2000


def pixels(pixel_list):
    """Station pixel numbers, ascending, of a TStnPixelList: one bit each, pixel 1 in the lowest bit of word 0."""
    words = np.asarray(pixel_list.member("fPixelVector"), dtype="<u4")
    return (np.flatnonzero(np.unpackbits(words.view("u1"), bitorder="little")) + 1).tolist()


def words(trace):
    """The 16-bit words of a TFADCData up to the last that is not 0: base and low byte, and high byte where there is one."""
    result = np.zeros(BINS, "u2")
    for name in "fLow", "fHigh":
        values = np.asarray(trace.member(name), "u2") if trace.member("fN" + name[1:]) else np.zeros(0, "u2")
        first = trace.member("fFirst" + name[1:])
        part = result[first : first + len(values)]
        part += values + np.uint16(trace.member("fBase")) if name == "fLow" else values << 8
    return np.trim_zeros(result, "b").tolist()


def trace_values(trace):
    """What the library gives for a trace, from the members on file."""
    word = trace.member("fPixelWord")
    return {
        "station_pixel": ((word >> 9 & 7) - 1) * 480 + (word & 0x1FF),
        "pixel_word": word,
        "monitor": [trace.member(f"f{name}") for name in
                    ("PrevThreshold", "ActualThreshold", "ActualRate", "Mean", "Variance")],
        "trace_info": trace.member("fTraceInfo"),
        "start_time": float(np.float32(trace.member("fTraceStartTime"))),
        "words": words(trace),
    }


def main(file_name, json_name):
    with open(json_name, encoding="utf-8") as text:
        events = json.load(text)["events"]
    tree = uproot.open(file_name)["StnEventTree"]
    lists = tree["fPixelList"].array(library="np")
    traces = tree["fFADCData"].array(library="np")
    assert len(events) == tree.num_entries == len(lists) == len(traces) > 0
    for entry, event in enumerate(events):
        assert pixels(lists[entry]) == event["pixels"], f"pixel list of entry {entry} differs"
        assert lists[entry].member("fNPixels") == len(event["pixels"])
        found = [trace_values(trace) for trace in traces[entry].member("fFADCData") if trace is not None]
        assert found == event["traces"], f"traces of entry {entry} differ"
    print(f"{len(events)} events, {sum(len(event['traces']) for event in events)} traces: uproot agrees")


main(*sys.argv[1:])
