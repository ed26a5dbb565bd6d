"""`stnevent.uproot`, compared with what the C++ library reads from the same files."""

import subprocess
import sys

import awkward as ak
import numpy as np
import pytest
import uproot

import stnevent
import stnevent.uproot  # noqa: F401  (registers the branches)
from conftest import GOLDEN, SOURCE
from stnevent.records import HEADER

OLD = SOURCE / "test" / "old" / "golden"
UNREADABLE = OLD / "header-5-long.root"
FILES = [GOLDEN / "run.root", *sorted(set(OLD.glob("*.root")) - {UNREADABLE})]


@pytest.fixture(params=FILES, ids=lambda path: path.stem)
def path(request):
    return request.param


def tree_of(path):
    return uproot.open(path)["StnEventTree"]


def test_headers_are_those_of_the_library(path):
    found = tree_of(path)["fEventHeader"].array()
    with stnevent.open(path) as run:
        expected = run.headers()
    assert ak.fields(found) == list(HEADER.names)
    for column in HEADER.names:
        values = found[column].to_numpy()
        assert values.dtype == expected[column].dtype, column
        np.testing.assert_array_equal(values, expected[column], err_msg=column)


def test_traces_are_those_of_the_library(path):
    found = tree_of(path)["fFADCData"].array()
    with stnevent.open(path) as run:
        for traces, event in zip(found, run, strict=True):
            expected = event.traces()
            assert ak.fields(traces) == [field for field in ak.fields(expected) if field != "time"]
            assert ak.array_equal(traces, expected[ak.fields(traces)])


def test_pixels_are_those_of_the_library(path):
    found = tree_of(path)["fPixelList"].array()
    with stnevent.open(path) as run:
        assert found.tolist() == [event.pixels().tolist() for event in run]


def test_triggers_are_those_of_the_library(path):
    tree = tree_of(path)
    if "fPixelData" not in tree["StnEvent"]:
        pytest.skip("older than pixel data")
    found = tree["fPixelData"].array()
    with stnevent.open(path) as run:
        for triggers, event in zip(found, run, strict=True):
            assert ak.array_equal(triggers, event.triggers())
