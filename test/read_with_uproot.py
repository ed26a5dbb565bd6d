"""Reads a station file with uproot alone and compares pixel lists and traces with the library's values.

Usage: read_with_uproot.py FILE JSON, with the JSON of dump_events.
"""

import json
import sys

import numpy as np
import uproot


def pixels(pixel_list):
    """Station pixel numbers, ascending, of a TStnPixelList: one bit each, pixel 1 in the lowest bit of word 0."""
    words = np.asarray(pixel_list.member("fPixelVector"), dtype="<u4")
    return (np.flatnonzero(np.unpackbits(words.view("u1"), bitorder="little")) + 1).tolist()


