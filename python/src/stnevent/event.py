"""One event of a station file."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np
from numpy.typing import NDArray

from stnevent import records

if TYPE_CHECKING:
    import awkward as ak

    from stnevent.file import File

# Parts of a word of a trace.
_SAMPLE = 0xFFF
_THRESHOLD_CHANGED = 0x4000
_PIXEL_TRIGGER = 0x8000
_N_SLICES = 100


class Event:
    """One event. It is only a place in its file: each part is read when it is asked for, and is the caller's then. What
    can't be read raises StnEventError, and ValueError once the file is closed."""

    def __init__(self, file: File, entry: int) -> None:
        self.file = file
        self.entry = entry
        """Number of the event in its file, from 0."""

    def __repr__(self) -> str:
        return f"<event at entry {self.entry} of {self.file.path}>"

    @property
    def header(self) -> np.record:
        """The header: one row of `File.headers`, with its columns and units, read without the rest of the event."""
        row = np.zeros(1, records.HEADER)
        self.file._fill_headers(self.entry, row)
        header: np.record = row.view(np.recarray)[0]
        return header

    def traces(self) -> ak.Array:
        """The FADC traces, one record for each pixel that has one, by ascending pixel number.

        Fields: `pixel`, station pixel number, 1 to 2880, 0 if unknown; `mirror`, 1 to 6, and `mirror_pixel`, 1 to 480;
        `samples`, a list of the 12-bit samples of the bins `start_bin` to `end_bin`; `pixel_trigger` and
        `threshold_changed`, a flag for each of these; `n_bins`, how many bins the whole digitised time has; `time`,
        corrected time of the first sample, from which each bin is 100 ns later (NaT without a time of the mirror);
        `start_time`, `prev_threshold`, `actual_threshold`, `actual_rate`, `mean` and `variance` as the mirror gave them.
        Lists of a trace have `end_bin - start_bin + 1` elements; samples are in ADC counts, 0 to 4095.
        """
        import awkward as ak

        traces, words = self.file._read_traces(self.entry)
        ends = np.concatenate([[0], np.cumsum(traces["n_samples"], dtype=np.int64)])

        def per_bin(values: NDArray[Any]) -> ak.contents.Content:
            return ak.contents.ListOffsetArray(ak.index.Index64(ends), ak.contents.NumpyArray(values))

        names = [name for name in records.TRACE.names or () if name != "n_samples"]
        columns = [ak.contents.NumpyArray(np.ascontiguousarray(traces[name])) for name in names]
        flags = {"pixel_trigger": _PIXEL_TRIGGER, "threshold_changed": _THRESHOLD_CHANGED}
        lists = [per_bin((words & _SAMPLE).view(np.int16))] + [per_bin((words & flag) != 0) for flag in flags.values()]
        return ak.Array(ak.contents.RecordArray(columns + lists, [*names, "samples", *flags]))

    def pixels(self) -> NDArray[np.int32]:
        """Station pixel numbers, 1 to 2880, of the pixels that took part, in ascending order, in one dimension."""
        return self.file._read_pixels(self.entry)

    def triggers(self) -> ak.Array:
        """The triggered pixels, one record for each: `pixel`, station pixel number, and `slices`, its trigger bits in 100
        time slices, an array of n x 100 truth values for n pixels."""
        import awkward as ak

        found = self.file._read_triggers(self.entry)
        bits = np.unpackbits(found["words"].view(np.uint8), axis=1, count=_N_SLICES, bitorder="little")
        contents = [ak.contents.NumpyArray(np.ascontiguousarray(found["pixel"])), ak.contents.NumpyArray(bits != 0)]
        return ak.Array(ak.contents.RecordArray(contents, ["pixel", "slices"]))
