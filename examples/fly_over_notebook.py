# %% [markdown]
# # A fly-over, from its files to a plot
# The cells run in any editor that knows `# %%`, or all at once with `/usr/bin/python3`.

# %%
from pathlib import Path

import aq_data

data = Path(__file__).resolve().parent / "data"
header, history = aq_data.read(data / "fly-over.sth.csv")
mask_header, mask = aq_data.read(data / "fly-over.mask.csv")
ambient = aq_data.read(data / "fly-over.ssr.csv").data
microphone = aq_data.read(data / "fly-over.mic.csv").data
track = aq_data.read_tracking(data / "fly-over.tspi.csv")

# %% [markdown]
# The last good bands follow from the masks. One dataset holds everything.

# %%
mask.setLGB()
history.setLGB(mask)
ds = history.to_xarray(mask, header, mask_header)
ds

# %% [markdown]
# The largest overall level, and how long the level is within 10 dB of it.

# %%
overall = ds.aq.unmasked().aq.overall()
loudest = int(overall.argmax("time"))
within = overall >= overall[loudest] - 10
print(f"{float(overall[loudest]):.1f} dB at {float(ds.relative_time[loudest]):+.2f} s")
print(f"within 10 dB for {0.5 * int(within.sum()):.1f} s")

# %%
seconds = ds.relative_time.values[within.values]
events = {"first 10 dB down": seconds[0], "last 10 dB down": seconds[-1]}
page = aq_data.plot.page(ds, ambient, track, microphone=microphone, events=events)
page.savefig("fly-over.png", dpi=100)

# %% [markdown]
# A netCDF file stores the whole dataset.

# %%
ds.to_netcdf("fly-over.nc")
