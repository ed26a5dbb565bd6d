"""The records of station files as NumPy types.

A column is named as its member on file, without the "f" and in lower case: `fEventNumber` is `event_number`.
"""

from __future__ import annotations

import re
from typing import Any

import numpy as np

TIME = np.dtype("datetime64[ns]")

# Members of the event header in their order on file, with type and number of values.
HEADER_MEMBERS: tuple[tuple[str, Any, int], ...] = (
    ("fEventNumber", np.uint32, 1),
    ("fStnNumber", np.uint8, 1),
    ("fEventClass", np.int32, 1),
    ("fEventType", np.int32, 1),
    ("fMirrorDataBits", np.uint8, 1),
    ("fMirrorStatus", np.uint8, 1),
    ("fRunNo", np.uint32, 1),
    ("fTriggerSource", np.uint8, 6),
    ("fStatusBits", np.uint32, 1),
    ("fTimeStamp", TIME, 1),
    ("fTimeCorrectionQuality", np.int32, 1),
    ("fT10Mhz", np.float32, 1),
    ("fOffset", np.float32, 1),
    ("fMirrorTimeOffset", np.uint32, 6),
    ("fRawMirrorTime", TIME, 6),
    ("fTriggerTimeStamp", np.uint32, 6),
    ("fDeadTimeCounter", np.uint64, 6),
    ("fVetoTimeCounter", np.uint64, 1),
    ("fRunTimeCounter", np.uint64, 6),
    ("fStnDaqDeadTime", np.uint64, 1),
    ("fMirrorDaqDeadTime", np.uint64, 6),
    ("fMirrorNSkippedTriggers", np.uint32, 6),
    ("fMirrorEventLabel", np.int32, 6),
    ("fT3Id", np.uint16, 1),
    ("fT3TimeAtGround", TIME, 1),
    ("fNRejectedT3", np.uint32, 1),
    ("fTotalT3DeadTime", np.float32, 1),
)


def column_name(member: str) -> str:
    """The column of a member: `fMirrorNSkippedTriggers` is `mirror_n_skipped_triggers`."""
    words = re.findall(r"[A-Z]?[a-z]+|[A-Z]\d+|[A-Z](?=[A-Z])", member.removeprefix("f"))
    return "_".join(words).lower()


HEADER = np.dtype(
    [(column_name(name), kind, (n,) if n > 1 else ()) for name, kind, n in HEADER_MEMBERS], align=True
)

TRACE = np.dtype(
    [
        ("pixel", np.int32),
        ("mirror", np.int32),
        ("mirror_pixel", np.int32),
        ("start_bin", np.int32),
        ("end_bin", np.int32),
        ("n_bins", np.int32),
        ("n_samples", np.int32),
        ("time", TIME),
        ("start_time", np.float32),
        ("prev_threshold", np.uint32),
        ("actual_threshold", np.uint32),
        ("actual_rate", np.uint32),
        ("mean", np.float64),
        ("variance", np.float64),
    ],
    align=True,
)

TRIGGER = np.dtype([("pixel", np.int32), ("words", "<u4", (4,))], align=True)
