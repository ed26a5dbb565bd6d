"""Resident memory of a long loop over events, as rows for docs/python.md.

Usage: python_memory.py FILE [N]. Loops over the file, again from its start when it ends, until N events (50,000) were read:
header, traces and pixels of each.
"""

import sys

import stnevent


def resident_mib():
    """Of the process, now."""
    with open("/proc/self/status", encoding="ascii") as status:
        line = next(line for line in status if line.startswith("VmRSS:"))
    return int(line.split()[1]) / 1024


def main(path, n_events):
    marks = {int(n_events * part): part for part in (0.01, 0.1, 0.25, 0.5, 0.75, 1)}
    run = stnevent.open(path)
    print(f"| opened | {resident_mib():.1f} |")
    for number in range(1, n_events + 1):
        event = run[number % len(run)]
        event.header, event.traces(), event.pixels()
        if number in marks:
            print(f"| after {number:,} events | {resident_mib():.1f} |", flush=True)


main(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 50_000)
