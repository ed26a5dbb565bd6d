"""How a pass over many files gets faster with a second Dask worker, as rows for docs/scale.md.

Usage: python_scaling.py FILE [N]. The file is taken N times (8) for all of each event and 20 N times for headers, by links.
Three rounds take one worker process, then two, which have read a file before the clock starts. The files are in the system's
cache. Times are medians; the CPU time is that of the reading processes while they read, whatever else the machine does. The
load is the machine's before the rounds.
"""

import os
import resource
import statistics
import sys
import tempfile
import time
import warnings

from distributed import Client, LocalCluster

import stnevent

N_ROUNDS = 3


def read_headers(run):
    return cost(lambda: len(run.headers()))


def read_all(run):
    return cost(lambda: sum(len(event.traces()) + len(event.pixels()) for event in run))


def cost(work):
    """A row with the CPU time of this process for some work."""
    before = resource.getrusage(resource.RUSAGE_SELF)
    work()
    after = resource.getrusage(resource.RUSAGE_SELF)
    return {"seconds": after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime}


def measure(files, function, n_workers):
    """Seconds of a pass, and of the CPU."""
    with (
        LocalCluster(n_workers=n_workers, threads_per_worker=1, dashboard_address=None) as cluster,
        Client(cluster) as client,
    ):
        stnevent.scan(files[: 2 * n_workers], read_headers, client)
        begin = time.monotonic()
        rows = stnevent.scan(files, function, client).array()
        return time.monotonic() - begin, sum(rows.seconds.to_list())


def rows(files, name, function):
    load = os.getloadavg()[0]
    n_bytes = sum(os.path.getsize(file) for file in files)
    rounds = [[measure(files, function, n_workers) for n_workers in (1, 2)] for _ in range(N_ROUNDS)]
    wall = [statistics.median(each[i][0] for each in rounds) for i in (0, 1)]
    cpu = [statistics.median(each[i][1] for each in rounds) for i in (0, 1)]
    times = [f"{wall[0]:.1f}", f"{wall[1]:.1f}", f"{wall[0] / wall[1]:.2f}", f"{cpu[0]:.1f}", f"{cpu[1]:.1f}"]
    rates = [f"{n_bytes / each / 1e6:,.0f}" for each in cpu]
    print("|", " | ".join([name, str(len(files)), f"{load:.1f}", *times, *rates]), "|", flush=True)
    print(rounds, file=sys.stderr, flush=True)


def main(path, n_files):
    warnings.simplefilter("ignore")
    print("| pass | files | load | s, 1 worker | s, 2 workers | ratio | CPU s, 1 | CPU s, 2 | MB/s of CPU, 1 | MB/s of CPU, 2 |")
    with tempfile.TemporaryDirectory() as folder:
        files = [os.path.join(folder, f"run-{index:04}.root") for index in range(20 * n_files)]
        for file in files:
            os.symlink(os.path.abspath(path), file)
        rows(files, "headers", read_headers)
        rows(files[:n_files], "all of each event", read_all)


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 8)
