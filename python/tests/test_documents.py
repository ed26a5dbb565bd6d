"""What the documents and the lists of versions say about the package, compared with the package."""

import re
import tomllib

import numpy as np
import pytest

import stnevent
from conftest import SOURCE
from stnevent.records import HEADER

PINS = dict(re.findall(r"([\w-]+)==([\w.]+)", (SOURCE / "dependencies.env").read_text(encoding="utf-8")))
PROJECT = tomllib.loads((SOURCE / "python" / "pyproject.toml").read_text(encoding="utf-8"))
REQUIREMENTS = [
    *PROJECT["build-system"]["requires"],
    *PROJECT["project"]["dependencies"],
    *(pin for extra in PROJECT["project"]["optional-dependencies"].values() for pin in extra),
]


def type_of(column):
    kind = HEADER[column]
    name = kind.base.name
    return f"{kind.shape[0]} {name}" if kind.shape else name


def test_all_columns_of_the_headers_are_documented():
    text = (SOURCE / "docs" / "python.md").read_text(encoding="utf-8")
    table = text.split("## Columns of the headers")[1].split("\n## ")[0]
    documented = re.findall(r"^\| `(\w+)` \| ([^|]+) \|", table, re.MULTILINE)
    assert documented == [(column, type_of(column)) for column in HEADER.names]


@pytest.mark.parametrize("requirement", REQUIREMENTS)
def test_the_package_needs_the_versions_that_are_tested(requirement):
    name, version = requirement.split("==")
    assert PINS[name.split("[")[0]] == version


def test_the_package_has_the_version_of_the_library():
    cmake = (SOURCE / "CMakeLists.txt").read_text(encoding="utf-8")
    version = re.search(r"project\(StnEvent VERSION ([\d.]+)", cmake)[1]
    assert PROJECT["project"]["version"] == version == stnevent.__version__


def test_times_are_nanoseconds():
    assert HEADER["time_stamp"] == np.dtype("datetime64[ns]")
