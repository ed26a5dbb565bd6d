"""What a file costs on a Dask cluster of two workers beside its events, for docs/scale.md.

Usage: python_file_cost.py FILE [N]. The file, which should have few events, is taken N times (2000), by links. CPU time of all
processes, and how much the client's process grows, for one number from each file with a folder, and for headers without.
"""

import os
import sys
import tempfile

import psutil
from distributed import Client, LocalCluster

import stnevent


def count(run):
    return {"n": len(run)}


def cpu_seconds(processes):
    return sum(process.cpu_times().user + process.cpu_times().system for process in processes)


def report(name, n_files, scan):
    me = psutil.Process()
    others = me.children(recursive=True)
    client, all_others, memory = cpu_seconds([me]), cpu_seconds(others), me.memory_info().rss
    scan()
    client, all_others = cpu_seconds([me]) - client, cpu_seconds(others) - all_others
    grown = (me.memory_info().rss - memory) / n_files / 1e3
    total = 1e3 * (client + all_others) / n_files
    print(f"{name}: {total:.1f} ms a file, {1e3 * client / n_files:.1f} ms of it in the client, which grew by {grown:.0f} kB")


def main(path, n_files):
    with (
        tempfile.TemporaryDirectory() as folder,
        LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster,
        Client(cluster) as client,
    ):
        files = [os.path.join(folder, f"run-{index:05}.root") for index in range(n_files)]
        for file in files:
            os.symlink(os.path.abspath(path), file)
        stnevent.scan(files[:100], count, client)
        report("one number", n_files, lambda: stnevent.scan(files, count, client, os.path.join(folder, "rows")))
        report("headers", n_files, lambda: stnevent.headers(files, client))
        for process in psutil.Process().children(recursive=True):
            print(f"{process.memory_info().rss / 1e6:.0f} MB: {' '.join(process.cmdline())[-60:]}")
        print(f"load: {os.getloadavg()[0]:.1f}")


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 2000)
