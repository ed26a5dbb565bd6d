# %% [markdown]
# # The rate of showers in a hundred runs, on a Dask cluster
# Each file is one task. A cluster of machines takes the place of the local one by its address: `Client("host:8786")`.

# %%
import sys

import matplotlib.pyplot as plt
import numpy as np
from distributed import Client, LocalCluster

import stnevent


def count_showers(run):
    headers = run.headers()
    live = (headers.run_time_counter - headers.dead_time_counter).max() * 1e-7  # counters are in units of 100 ns
    return {"run": run.run_header.run_no, "showers": (headers.event_class == 13).sum(), "seconds": live}


# %%
if __name__ == "__main__":  # the processes of the cluster import this file
    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, Client(cluster) as client:
        results = stnevent.scan(sys.argv[1] if len(sys.argv) > 1 else "runs/*.root", count_showers, client)
    for failure in results.failures:
        print(f"{failure.file}: {failure.reason}")
    runs = results.array()
    rate = np.sum(runs.showers) / np.sum(runs.seconds)
    print(f"{len(runs)} runs, {np.sum(runs.showers)} showers, {rate:.3f} Hz")
    plt.errorbar(runs.run, runs.showers / runs.seconds, np.sqrt(runs.showers) / runs.seconds, fmt="o", ms=3)
    plt.axhline(rate, color="grey", linestyle=":", label=f"mean {rate:.3f} Hz")
    plt.xlabel("run")
    plt.ylabel("showers per second of live time [Hz]")
    plt.legend()
    plt.savefig("many_files.png")
