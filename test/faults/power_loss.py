"""power_loss.py BIN SHIM [PART]: what is on disk when the power fails at each moment in the life of a file, and what
stn-recover brings back of it.

The writes and syncs of one run of stn-simulate are taken down. For each moment there are several disks: all writes
arrived; those since the last sync did not; the last one arrived by half; some of those since the last sync, drawn by lot,
did not. PART, from 0 to 1, is the part of these that is tried."""

import os
import random
import struct
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "damage"))
import surgery
from reader import Reader

EVENTS = 40
DRAWS = 2


def read_log(path):
    """The writes as (place, bytes), and None for each sync."""
    with open(path, "rb") as file:
        while kind := file.read(1):
            place, length = struct.unpack("=qq", file.read(16))
            if kind == b"W":
                yield place, file.read(length)
            elif kind == b"S":
                yield None


def replay(writes):
    disk = bytearray()
    for place, contents in writes:
        disk[len(disk) :] = bytes(max(0, place + len(contents) - len(disk)))
        disk[place : place + len(contents)] = contents
    return bytes(disk)


def disks(calls, chance):
    """What can be on disk after each call, with a name."""
    synced, since = [], []
    for number, call in enumerate(calls):
        if call is None:
            synced, since = synced + since, []
            continue
        place, contents = call
        yield f"call {number}, all", synced + since + [call]
        yield f"call {number}, nothing since the sync", synced
        yield f"call {number}, torn", synced + since + [(place, contents[: len(contents) // 2])]
        since = since + [call]
        for _ in range(DRAWS if len(since) > 1 else 0):
            yield f"call {number}, some", synced + [write for write in since if chance.random() < 0.5]


def events_of_baskets(good):
    """For each basket its place, its end, and the entries that it holds."""
    next_entry = {}
    for record in surgery.records(good):
        if record.class_name == "TBasket":
            (n_entries,) = struct.unpack_from(">i", good, record.contents - 9)
            first = next_entry.get(record.name, 0)
            next_entry[record.name] = first + n_entries
            yield record, range(first, first + n_entries)


def events_on_disk(disk, good):
    """The events whose baskets are all there, and those of them that nothing places: without the tree the number of an event
    is only known as long as no basket before it is lost."""

    def is_there(record):
        return disk[record.start : record.end] == good[record.start : record.end]

    has_tree = any(is_there(record) for record in surgery.records(good) if record.class_name == "TTree")
    lost, unplaced = set(), set()
    for record, entries in events_of_baskets(good):
        if not is_there(record):
            lost |= set(entries)
            unplaced |= set(() if has_tree else range(entries.start, EVENTS))
    whole = set(range(EVENTS)) - lost
    return whole, whole & unplaced


def sums(outcome):
    return [value for what, value in outcome.results.items() if what.startswith("event ")]


def try_disk(disk, good, expected, folder, reader):
    """None if all was right, else what was wrong."""
    given, recovered = os.path.join(folder, "given.root"), os.path.join(folder, "recovered.root")
    with open(given, "wb") as file:
        file.write(disk)
    done = subprocess.run(
        [os.path.join(sys.argv[1], "stn-recover"), given, recovered, "--force"], capture_output=True, text=True, timeout=600
    )
    found = []
    if os.path.exists(recovered):
        found = sums(reader.read(recovered))
        os.remove(recovered)
    with open(given, "rb") as file:
        if file.read() != disk:
            return "the file given was changed"
    whole, unplaced = events_on_disk(disk, good)
    on_disk = {expected[entry] for entry in whole - unplaced}
    if done.returncode not in (0, 1, 3) or not done.stdout + done.stderr:
        return f"stn-recover ended with {done.returncode} {done.stderr}"
    if invented := set(found) - set(expected):
        return f"{len(invented)} events invented"
    if lost := on_disk - set(found):
        return f"{len(lost)} of {len(on_disk)} events lost: {done.stderr}"
    return None


def write_run(folder):
    """The finished file, and the calls that made it."""
    path, log = os.path.join(folder, "run.root"), os.path.join(folder, "calls")
    shim = {"LD_PRELOAD": sys.argv[2], "IO_SHIM_FILE": path + ".part", "IO_SHIM_LOG": log}
    command = [os.path.join(sys.argv[1], "stn-simulate"), path, "-n", str(EVENTS)]
    subprocess.run(command, env={**os.environ, **shim}, check=True, stdout=subprocess.DEVNULL)
    with open(path, "rb") as file:
        return path, file.read(), list(read_log(log))


def main():
    part, chance = float(sys.argv[3]) if len(sys.argv) > 3 else 1, random.Random(1)
    with tempfile.TemporaryDirectory() as folder, Reader(os.path.join(sys.argv[1], "read_damaged")) as reader:
        path, good, calls = write_run(folder)
        if replay(call for call in calls if call) != good:
            sys.exit("the calls taken down do not make the file")
        if calls[-1] is not None:
            sys.exit("the file got its name before it was synced")
        expected = sums(reader.read(path))
        tried, n_whole, n_unplaced, failures = 0, 0, 0, []
        for name, writes in disks(calls, chance):
            if chance.random() >= part:
                continue
            disk = replay(writes)
            tried += 1
            whole, unplaced = events_on_disk(disk, good)
            n_whole += len(whole)
            n_unplaced += len(unplaced)
            if wrong := try_disk(disk, good, expected, folder, reader):
                failures.append(f"{name}: {wrong}")
    print(f"{calls.count(None)} syncs and {len(calls) - calls.count(None)} writes, {tried} disks with {n_whole} whole events, "
          f"{n_unplaced} of them in no known place: {len(failures)} failures")  # fmt: skip
    print(*failures, sep="\n")
    return 1 if failures or not tried else 0


if __name__ == "__main__":
    sys.exit(main())
