"""Files that the tests read: those of test/golden and test/old, with the library's values in JSON."""

import json
from pathlib import Path

import pytest

SOURCE = Path(__file__).parents[2]
GOLDEN = SOURCE / "test" / "golden"


@pytest.fixture
def run_path():
    return GOLDEN / "run.root"


@pytest.fixture(scope="session")
def expected():
    """What the C++ library reads from the file of `run_path`."""
    return json.loads((GOLDEN / "run.json").read_text(encoding="utf-8"))
