"""A run that is still being written."""

import os
import subprocess
import warnings

import pytest

import stnevent


@pytest.fixture
def writer(tmp_path):
    """Tells the process that writes to run.root what to do next."""
    program = os.path.join(os.environ["STN_BIN"], "ToolTestFiles")
    process = subprocess.Popen(
        [program, "growing", tmp_path / "run.root"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True
    )

    def step(*steps):
        for what in steps:
            process.stdin.write(what + "\n")
            process.stdin.flush()
            assert process.stdout.readline() == "done\n"

    yield step
    process.stdin.close()
    process.stdout.close()
    assert process.wait(60) == 0


def test_an_open_file_stays_as_it_was_and_a_new_one_has_more(writer, tmp_path):
    writer("e", "e", "SaveSelf")
    early = stnevent.open(tmp_path / "run.root")
    numbers = early.headers().event_number.tolist()
    writer("e", "FlushBaskets SaveSelf")
    late = stnevent.open(tmp_path / "run.root")
    assert (len(early), len(late)) == (2, 3)
    assert early.headers().event_number.tolist() == numbers
    assert late.headers().event_number.tolist()[:2] == numbers
    assert late[2].traces().pixel.tolist() == late[2].pixels().tolist()


def test_a_file_that_was_not_saved_with_its_place_is_recovered_with_a_warning(writer, tmp_path):
    writer("e", "e", "")
    with pytest.warns(UserWarning, match="going on with 2 events that are there"):
        assert len(stnevent.open(tmp_path / "run.root")) == 2


def test_a_file_that_was_saved_with_its_place_is_read_without_a_warning(writer, tmp_path):
    writer("e", "SaveSelf", "e")
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        assert len(stnevent.open(tmp_path / "run.root")) == 1
