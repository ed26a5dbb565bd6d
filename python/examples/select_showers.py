# %% [markdown]
# # Showers, selected by their headers alone
# No trace is read before the selection is made, so this is quick on files of any size.

# %%
import sys

import matplotlib.pyplot as plt
import numpy as np

import stnevent

run = stnevent.open(sys.argv[1] if len(sys.argv) > 1 else "run.root")
headers = run.headers()
SHOWER = 13

# %% A mirror has data if its bit is set; bit 0 is mirror 1.
has_data = headers.mirror_data_bits[:, None] >> np.arange(6) & 1 == 1
n_mirrors = has_data.sum(axis=1)
is_shower = headers.event_class == SHOWER
showers = run[is_shower & (n_mirrors >= 3)]
print(f"{is_shower.sum()} showers in {len(run)} events, {len(showers)} of them in three mirrors or more; the first ones:")
for event in showers[:5]:
    print(f"event {event.header.event_number} at {event.header.time_stamp} UTC, {len(event.pixels())} pixels")

# %%
bins = np.arange(0.5, 7)
plt.hist(n_mirrors, bins, histtype="step", label=f"all {len(run)} events")
plt.hist(n_mirrors[is_shower], bins, alpha=0.5, label=f"{is_shower.sum()} showers")
plt.xlabel("mirrors with data")
plt.ylabel("events")
plt.title(f"Run {run.run_header.run_no} of station {run.run_header.stn_no}")
plt.legend()
plt.savefig("select_showers.png")
