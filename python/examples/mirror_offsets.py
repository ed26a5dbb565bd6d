# %% [markdown]
# # How much later the other mirrors see a shower
# The corrected time of each mirror after the first mirror of the event, in the headers.

# %%
import sys

import matplotlib.pyplot as plt
import numpy as np

import stnevent

run = stnevent.open(sys.argv[1] if len(sys.argv) > 1 else "run.root")
headers = run.headers()
SHOWER, AVERAGED = 13, 1

# %% Offsets mean something where the time correction is known and a second mirror has data.
has_data = headers.mirror_data_bits[:, None] >> np.arange(6) & 1 == 1
is_good = (headers.event_class == SHOWER) & (headers.time_correction_quality >= AVERAGED) & (has_data.sum(axis=1) > 1)
offsets = headers.mirror_time_offset[is_good]
is_first = headers.raw_mirror_time[is_good] == np.nanmin(headers.raw_mirror_time[is_good], axis=1, keepdims=True)
is_later = has_data[is_good] & ~is_first

# %%
bins = np.arange(-50, 1250, 100)  # the clock of the mirrors has steps of 100 ns
fig, axes = plt.subplots(2, 3, sharex=True, sharey=True, figsize=(9, 5), layout="constrained")
for mirror, axis in enumerate(axes.flat):
    late = offsets[is_later[:, mirror], mirror]
    axis.hist(late, bins)
    axis.set_title(f"mirror {mirror + 1}: {len(late)}, mean {late.mean():.0f} ns", fontsize="medium")
    print(f"mirror {mirror + 1}: {late.mean():.0f} ns after the first mirror on average, at most {late.max()} ns")
fig.supxlabel("time after the first mirror [ns]")
fig.supylabel("showers per 100 ns")
plt.savefig("mirror_offsets.png")
