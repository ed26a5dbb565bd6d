"""Loads the library that stands beside this file. Everything is called with Python's lock held, so that one thread at a
time is in the library, as it requires."""

from __future__ import annotations

import contextlib
import ctypes
import functools
import os
import sys
from collections.abc import Iterator
from pathlib import Path
from typing import Any

from stnevent import records

_FOLDER = Path(__file__).parent
_INCLUDE_VARIABLE = "ROOT_INCLUDE_PATH"
_N_MIRRORS = 6


class EventSizes(ctypes.Structure):
    _fields_ = [(name, ctypes.c_uint32) for name in ("n_traces", "n_samples", "n_pixels", "n_triggers")]


class RunHeaderRecord(ctypes.Structure):
    _fields_ = [
        ("run_no", ctypes.c_uint32),
        ("stn_no", ctypes.c_uint32),
        ("mirror_status", ctypes.c_uint32),
        ("start_time", ctypes.c_int64),
        ("evb_version", ctypes.c_uint32),
        ("stn_event_version", ctypes.c_uint32),
        ("mr_event_version", ctypes.c_uint32),
        ("readout_version", ctypes.c_uint32),
        ("user_name", ctypes.c_char_p),
        ("comment", ctypes.c_char_p),
    ]


class RunTrailerRecord(ctypes.Structure):
    _fields_ = [
        ("mirror_status", ctypes.c_uint32),
        ("n_events", ctypes.c_uint32),
        ("veto_time_counter", ctypes.c_uint64),
        ("dead_time_counter", ctypes.c_uint64 * _N_MIRRORS),
        ("life_time_counter", ctypes.c_uint32 * _N_MIRRORS),
        ("mirror_daq_dead_time", ctypes.c_uint64 * _N_MIRRORS),
        ("mirror_n_skipped_triggers", ctypes.c_uint32 * _N_MIRRORS),
        ("stn_daq_dead_time", ctypes.c_uint64),
        ("n_t3", ctypes.c_uint32),
        ("n_rejected_t3", ctypes.c_uint32),
        ("total_t3_dead_time", ctypes.c_float),
        ("start_time", ctypes.c_int64),
        ("stop_time", ctypes.c_int64),
        ("total_time", ctypes.c_uint32),
    ]


_READER = ctypes.c_void_p
_NUMBER = ctypes.c_uint32
_ADDRESS = ctypes.c_void_p

# Result and arguments of each function of the library.
_FUNCTIONS: dict[str, tuple[Any, ...]] = {
    "stn_start_interpreter": (None,),
    "stn_error": (ctypes.c_char_p, ctypes.POINTER(ctypes.c_int64)),
    "stn_open": (_READER, ctypes.c_char_p),
    "stn_close": (None, _READER),
    "stn_n_events": (_NUMBER, _READER),
    "stn_is_recovered": (ctypes.c_bool, _READER),
    "stn_has_run_header": (ctypes.c_bool, _READER),
    "stn_has_run_trailer": (ctypes.c_bool, _READER),
    "stn_read_headers": (ctypes.c_bool, _READER, _NUMBER, _NUMBER, _ADDRESS),
    "stn_read_event": (ctypes.c_bool, _READER, _NUMBER, ctypes.POINTER(EventSizes)),
    "stn_copy_traces": (None, _READER, _ADDRESS, _ADDRESS),
    "stn_copy_pixels": (None, _READER, _ADDRESS),
    "stn_copy_triggers": (None, _READER, _ADDRESS),
    "stn_read_run_header": (ctypes.c_bool, _READER, ctypes.POINTER(RunHeaderRecord)),
    "stn_read_run_trailer": (ctypes.c_bool, _READER, ctypes.POINTER(RunTrailerRecord)),
    "stn_size_of_header": (_NUMBER,),
    "stn_size_of_trace": (_NUMBER,),
    "stn_size_of_trigger": (_NUMBER,),
    "stn_size_of_run_header": (_NUMBER,),
    "stn_size_of_run_trailer": (_NUMBER,),
}


def _require_same_records(library: ctypes.PyDLL) -> None:
    sizes = {
        "header": records.HEADER.itemsize,
        "trace": records.TRACE.itemsize,
        "trigger": records.TRIGGER.itemsize,
        "run_header": ctypes.sizeof(RunHeaderRecord),
        "run_trailer": ctypes.sizeof(RunTrailerRecord),
    }
    for name, size in sizes.items():
        found = getattr(library, f"stn_size_of_{name}")()
        if found != size:
            raise ImportError(f"{library._name} has {name} records of {found} bytes instead of {size}: install again")


@contextlib.contextmanager
def _headers_known_to_root() -> Iterator[None]:
    """ROOT's interpreter must know where our headers are before it meets our libraries: what it misses then it never
    looks for again. It takes the folder from the environment when it starts."""
    headers = str(_FOLDER / "include")
    if "ROOT" in sys.modules:
        sys.modules["ROOT"].gInterpreter.AddIncludePath(headers)
        yield
        return
    before = os.environ.get(_INCLUDE_VARIABLE)
    os.environ[_INCLUDE_VARIABLE] = headers if before is None else f"{headers}:{before}"
    try:
        yield
    finally:
        os.environ.pop(_INCLUDE_VARIABLE)
        if before is not None:
            os.environ[_INCLUDE_VARIABLE] = before


@functools.cache
def library() -> ctypes.PyDLL:
    """The library, loaded at the first call."""
    with _headers_known_to_root():
        # Global, because ROOT's interpreter looks for symbols among those of the process.
        loaded = ctypes.PyDLL(str(_FOLDER / "lib" / "libStnEventPython.so"), mode=ctypes.RTLD_GLOBAL)
        loaded.stn_start_interpreter()
    for name, (result, *arguments) in _FUNCTIONS.items():
        function = getattr(loaded, name)
        function.restype = result
        function.argtypes = arguments
    _require_same_records(loaded)
    return loaded


@functools.cache
def root() -> Any:
    """PyROOT's module `ROOT` with the classes of station files (`TStnEvent`, `TStnEventFile`, ...) loaded, for those who
    want the C++ classes themselves. ImportError if the libraries don't fit this package."""
    library()
    import ROOT

    return ROOT
