# %% [markdown]
# # What a pixel sees around its trigger
# The traces of all triggered pixels of the showers, without their pedestals, put on top of each other at the first trigger.

# %%
import sys

import matplotlib.pyplot as plt
import numpy as np

import stnevent

run = stnevent.open(sys.argv[1] if len(sys.argv) > 1 else "run.root")
BEFORE, AFTER = 40, 80  # bins
MICROSECONDS_PER_BIN = 0.1
SHOWER = 13

# %%
stack = []
for event in run[run.headers().event_class == SHOWER]:
    for trace in event.traces():
        samples = trace.samples.to_numpy()
        triggered = np.flatnonzero(trace.pixel_trigger)
        if len(triggered) and BEFORE <= triggered[0] < len(samples) - AFTER:
            stack.append(samples[triggered[0] - BEFORE : triggered[0] + AFTER] - np.median(samples))
stack = np.array(stack)
mean, error = stack.mean(axis=0), stack.std(axis=0) / np.sqrt(len(stack))
print(f"{len(stack)} traces; the mean pulse is {mean.max():.1f} counts high")

# %%
time = (np.arange(-BEFORE, AFTER) + 0.5) * MICROSECONDS_PER_BIN
plt.step(time, mean, where="mid", label=f"mean of {len(stack)} traces")
plt.fill_between(time, mean - error, mean + error, step="mid", alpha=0.4, label="error of the mean")
plt.axvline(0, color="grey", linestyle=":", label="first trigger")
plt.xlabel("time after the first trigger [µs]")
plt.ylabel("signal above pedestal [ADC counts]")
plt.legend()
plt.savefig("stack_traces.png")
