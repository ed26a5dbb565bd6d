"""Station files for analysts: events, headers, traces and pixels as NumPy and Awkward arrays.

>>> import stnevent
>>> run = stnevent.open("run.root")
>>> headers = run.headers()                        # one row for each event, nothing else is read
>>> for event in run[headers.event_class == 13]:   # the showers
...     traces = event.traces()

`stnevent.headers` and `stnevent.scan` work on many files, also on a Dask cluster; `stnevent.rdf` adds header columns to
ROOT's data frames.

`import stnevent.uproot` reads the same files with uproot alone, without ROOT.
"""

from stnevent._library import root
from stnevent._scan import Failure, Results, headers, scan
from stnevent.errors import StnEventError
from stnevent.event import Event
from stnevent.file import Events, File, RunHeader, RunTrailer, open

__all__ = [
    "Event",
    "Events",
    "Failure",
    "File",
    "Results",
    "RunHeader",
    "RunTrailer",
    "StnEventError",
    "headers",
    "open",
    "root",
    "scan",
]
__version__ = "2.1.100"
