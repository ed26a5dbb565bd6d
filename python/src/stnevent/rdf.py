"""Station files in ROOT's data frames (RDataFrame).

>>> ROOT.EnableImplicitMT()
>>> frame = stnevent.rdf.header_columns(ROOT.RDataFrame("StnEventTree", "runs/*.root"))
>>> showers = frame.Filter("fEventClass == 13").Histo1D("fT10Mhz")
"""

from __future__ import annotations

import functools
from pathlib import Path
from typing import Any

from stnevent._library import root

_LIBRARY = Path(__file__).parent / "lib" / "libStnFrame.so"


@functools.cache
def _root_with_frames() -> Any:
    ROOT = root()
    if ROOT.gSystem.Load(str(_LIBRARY)) < 0:
        raise ImportError(f"{_LIBRARY} can't be loaded: was this package built with a ROOT that has data frames?")
    if not ROOT.gInterpreter.Declare("#include <StnFrame/HeaderColumns.h>"):
        raise ImportError("StnFrame/HeaderColumns.h is missing or broken: install stnevent again")
    return ROOT


def header_columns(frame: Any) -> Any:
    """The data frame of `StnEventTree` with one more column for each field of the event header, under the field's name
    on file (`fEventNumber`; docs/format.md).

    Works on chains of files of every age, in many threads, and reads nothing but headers. Times are whole nanoseconds
    since 1970-01-01 UTC: `frame.AsNumpy(["fTimeStamp"])["fTimeStamp"].view("datetime64[ns]")`. Counters and dead times
    are in units of 100 ns. Columns with six values have those of mirror 1 to 6; a raw time is NaT for a mirror without
    data.

    Raises what ROOT throws if the frame has no `fEventHeader`, or has one of the new columns already; ImportError if the
    package was built with a ROOT without data frames.
    """
    ROOT = _root_with_frames()
    return ROOT.StnEvent.RDF.HeaderColumns(ROOT.RDF.AsRNode(frame))
