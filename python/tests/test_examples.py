"""Each example runs on a simulated run and leaves its plot."""

import os
import subprocess
import sys
from pathlib import Path

import pytest

from conftest import SOURCE

pytest.importorskip("matplotlib")
EXAMPLES = SOURCE / "python" / "examples"
PROGRAMS = os.environ.get("STN_BIN")
PNG = b"\x89PNG\r\n"

pytestmark = pytest.mark.skipif(not PROGRAMS, reason="STN_BIN does not name the folder of the programs")


@pytest.fixture(scope="module")
def run_path(tmp_path_factory):
    path = tmp_path_factory.mktemp("run") / "run.root"
    subprocess.run([Path(PROGRAMS) / "stn-simulate", "--events", "60", path], check=True)
    return path


def run_example(name, argument, folder):
    """What the example prints, and the first bytes of its plot."""
    environment = os.environ | {"MPLBACKEND": "Agg"}
    command = [sys.executable, EXAMPLES / f"{name}.py", argument]
    done = subprocess.run(command, cwd=folder, env=environment, capture_output=True, text=True, timeout=300)
    assert done.returncode == 0, done.stderr
    return done.stdout, (folder / f"{name}.png").read_bytes()[: len(PNG)]


@pytest.mark.parametrize(
    ("name", "text"),
    [
        ("select_showers", "showers in 60 events"),
        ("stack_traces", "counts high"),
        ("mirror_offsets", "mirror 6: "),
        ("rate_and_dead_time", "mirror 6: dead for "),
    ],
)
def test_example_prints_its_numbers_and_leaves_a_plot(run_path, tmp_path, name, text):
    output, plot = run_example(name, run_path, tmp_path)
    assert text in output
    assert plot == PNG


def test_example_on_a_hundred_files(run_path, tmp_path):
    pytest.importorskip("distributed")
    for index in range(100):
        (tmp_path / f"run-{index:03}.root").symlink_to(run_path)
    output, plot = run_example("many_files", tmp_path / "*.root", tmp_path)
    assert output.startswith("100 runs, ")
    assert plot == PNG


@pytest.mark.parametrize("path", sorted(EXAMPLES.glob("*.py")), ids=lambda path: path.stem)
def test_example_is_shorter_than_40_lines(path):
    assert len(path.read_text(encoding="utf-8").splitlines()) < 40
