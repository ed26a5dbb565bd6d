# %% [markdown]
# # Rate and dead time of a run
# Both from the headers: each has the counters of its mirrors since the start of the run, in units of 100 ns.

# %%
import sys

import matplotlib.pyplot as plt
import numpy as np

import stnevent

run = stnevent.open(sys.argv[1] if len(sys.argv) > 1 else "run.root")
headers = run.headers()
minutes = (headers.time_stamp - run.run_header.start_time) / np.timedelta64(1, "m")

# %%
fig, (rate, dead) = plt.subplots(2, 1, sharex=True, figsize=(8, 6), layout="constrained")
counts, edges = np.histogram(minutes, bins=max(2, int(minutes.max())))
seconds = 60 * np.diff(edges)
rate.errorbar((edges[1:] + edges[:-1]) / 2, counts / seconds, np.sqrt(counts) / seconds, fmt="o")
rate.set_ylabel("events per second [Hz]")
rate.set_ylim(bottom=0)
rate.set_title(f"Run {run.run_header.run_no}: {len(run)} events in {minutes.max():.1f} minutes")

# %% A mirror has counted only in the events in which it has data.
for mirror in range(6):
    counted = headers.run_time_counter[:, mirror] > 0
    fraction = headers.dead_time_counter[counted, mirror] / headers.run_time_counter[counted, mirror]
    if counted.any():
        dead.plot(minutes[counted], 100 * fraction, ".-", label=f"mirror {mirror + 1}")
        print(f"mirror {mirror + 1}: dead for {100 * fraction[-1]:.2f} % of the run")
dead.set_xlabel("time since the start of the run [minutes]")
dead.set_ylabel("dead time so far [%]")
dead.set_ylim(0, 1.2 * dead.get_ylim()[1])
dead.legend(ncols=3, loc="lower right")
plt.savefig("rate_and_dead_time.png")
