"""Header columns in data frames against the package's own headers."""

import numpy as np
import pytest

import stnevent
import stnevent.rdf
from conftest import SOURCE
from stnevent.records import HEADER_MEMBERS, TIME, column_name


@pytest.fixture(scope="module")
def frame(paths):
    root = stnevent.root()
    return stnevent.rdf.header_columns(root.RDataFrame("StnEventTree", paths))


@pytest.fixture(scope="module")
def paths():
    names = ["golden/run", "old/golden/header-4", "old/golden/header-8"]
    return [str(SOURCE / "test" / f"{name}.root") for name in names]


@pytest.fixture(scope="module")
def columns(frame):
    return frame.AsNumpy([name for name, *_ in HEADER_MEMBERS])


@pytest.mark.parametrize("member", [name for name, *_ in HEADER_MEMBERS])
def test_column_has_the_values_of_headers(columns, paths, member):
    expected = np.concatenate([stnevent.open(path).headers()[column_name(member)] for path in paths])
    found = np.stack([np.asarray(value) for value in columns[member]])
    np.testing.assert_array_equal(found.view(TIME) if expected.dtype == TIME else found, expected)


def test_columns_can_be_used_in_expressions(frame):
    assert frame.Filter("fRunNo == 1 && fMirrorDataBits == 16 && fRawMirrorTime[4] > fTimeStamp").Count().GetValue() > 0


def test_column_that_exists_is_refused(frame):
    with pytest.raises(Exception, match="fEventNumber"):
        stnevent.rdf.header_columns(frame)
