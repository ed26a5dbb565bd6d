"""The mutation tool finds a fault that tests notice, and lets one go that makes no difference. MUTATION_BUILD: a build."""
import json
import os
import pathlib
import subprocess
import sys

import pytest

import mutants
import switches

TOOL = pathlib.Path(__file__).with_name("mutate.py")
LIST = "MrEvent/src/MiPixelList.cc"


def made(source):
    return {f"{mutant.old} -> {mutant.new}" for mutant in mutants.make("x.cc", source)}


def test_comparisons_become_their_neighbours():
    assert made("bool f() { return a < b && !c; }") == {"< -> <=", "< -> >=", "&& -> ||", "! -> "}


def test_constants_become_one_more_and_zero():
    assert made("int f() { return 90U; }") == {"90U -> 91U", "90U -> 0U"}


def test_texts_change_in_one_letter():
    assert made(r'auto f() { return "a\n\t"; }') == {r'"a\n\t" -> "ax\t"'}


def test_statements_are_left_out():
    assert "Clear(); -> ;" in made("void f() {\n  Clear();\n}")


@pytest.mark.parametrize("source", ["// a < b", "/* 1 */", "#define N 1", "ClassImp(T1);", "std::vector<int> v;", "int* p;"])
def test_what_is_not_code_stays(source):
    assert made(source) == set()


def test_several_stand_in_one_text():
    source = "int f(int a) { return a < 90; }"
    joined = switches.join(source, list(enumerate(mutants.make("x.cc", source), 1)))
    assert joined == ("int f(int a) { return a < ::switches::Less{1, 2} > "
                      "(::switches::IsOn(3) ? 91 : ::switches::IsOn(4) ? 0 : 90); }")


def outcomes(tmp_path, match):
    """Of the mutants of one line of the list of pixels: mutant to outcome."""
    results = tmp_path / "results"
    subprocess.run([sys.executable, TOOL, "--build", os.environ["MUTATION_BUILD"], "--results", results, "--jobs", "1",
                    "--match", match, LIST], check=True)
    lines = map(json.loads, results.read_text().splitlines())
    return {line["mutant"].split(": ", 1)[1]: line["outcome"] for line in lines}


def test_a_fault_is_killed_and_an_equivalent_survives(tmp_path):
    source = pathlib.Path(TOOL.parents[2] / LIST).read_text()
    start = source.index("capacity <= fRecord->fCapacity") + len("capacity ")
    # Room that is just enough may as well be made anew.
    assert outcomes(tmp_path, f":{start}:") == {"<= -> <": "survived", "<= -> >": "killed"}
