"""Rates of the Python package on one file, as rows for docs/python.md.

Usage: python_rates.py FILE. CPU time of all threads of the process; the ways take turns, medians of 5 rounds after one
that does not count. Each round opens the file anew; the file is in the system's cache.
"""

import statistics
import sys
import time

import uproot

import stnevent
import stnevent.uproot  # registers the branches

N_ROUNDS = 5
N_EVENTS_WITH_TRACES = 500


def tree_of(path):
    return uproot.open(path, array_cache=None)["StnEventTree"]


def library_headers(path):
    return len(stnevent.open(path).headers())


def uproot_headers(path):
    return len(tree_of(path)["fEventHeader"].array())


def library_single_headers(path):
    return len([event.header for event in stnevent.open(path)])


def library_traces(path):
    return sum(len(event.traces()) for event in stnevent.open(path)[:N_EVENTS_WITH_TRACES])


def uproot_traces(path):
    traces = tree_of(path)["fFADCData"].array(entry_stop=N_EVENTS_WITH_TRACES)
    return sum(len(event) for event in traces)


def uproot_pixels(path):
    return len(tree_of(path)["fPixelList"].array())


def uproot_triggers(path):
    return len(tree_of(path)["fPixelData"].array())


WAYS = {
    "headers of all events, `run.headers()`": library_headers,
    "headers of all events, `stnevent.uproot`": uproot_headers,
    "headers one by one, `event.header`": library_single_headers,
    "traces, `event.traces()`": library_traces,
    "traces, `stnevent.uproot`": uproot_traces,
    "events with their pixels, `stnevent.uproot`": uproot_pixels,
    "events with their triggers, `stnevent.uproot`": uproot_triggers,
}


def rate(way, path):
    begin = time.process_time()
    count = way(path)
    return count / (time.process_time() - begin)


def main(path):
    rounds = [{name: rate(way, path) for name, way in WAYS.items()} for _ in range(1 + N_ROUNDS)][1:]
    for name in WAYS:
        print(f"| {name} | {statistics.median(rates[name] for rates in rounds):,.0f} |")


main(*sys.argv[1:])
