"""Runs the test suite of a build under valgrind's memcheck: the programs that are tested, not the Python or Node.js that test them.

Usage: valgrind.py BUILD ROOT OUT [REGEX]. BUILD is a tested build, ROOT is where ROOT's etc folder is, OUT a folder for the logs, and
REGEX, if given, chooses tests by name. The programs are replaced by scripts of the same names that start valgrind.
"""

import concurrent.futures
import json
import os
import pathlib
import re
import stat
import subprocess
import sys

# What measures, preloads, installs or compiles, or tests no program of ours.
LEFT_OUT = r"Bench|Load|ToolFaultsTest|PowerLoss|PythonWheel|PythonPackage|PyROOT|Uproot|Bootstrap|InstalledPackage|Mutation|Handbook|Versions"
ERROR = re.compile(r"ERROR SUMMARY: (\d+) errors")


def tests_of(build, regex):
    listing = subprocess.run(
        ["ctest", "--test-dir", build, "--show-only=json-v1"], capture_output=True, check=True, text=True
    ).stdout
    tests = json.loads(listing)["tests"]
    return [test for test in tests if not re.match(LEFT_OUT, test["name"]) and re.search(regex, test["name"])]


def is_program(file):
    with file.open("rb") as opened:
        return opened.read(4) == b"\x7fELF"


def make_scripts(folder, build, command):
    """A script for each program of the build, in a folder that looks like the build's own."""
    for program in [*build.glob("bin/*"), *build.glob("test/old/writers/*")]:
        if not program.is_file() or not is_program(program):
            continue
        script = folder / program.relative_to(build)
        script.parent.mkdir(parents=True, exist_ok=True)
        script.write_text(f'#!/bin/sh\nexec {command} {program} "$@"\n')
        script.chmod(script.stat().st_mode | stat.S_IXUSR)


def run(test, build, scripts, log):
    """Whether the test passed with the scripts in the programs' places."""

    def replaced(text):
        return re.sub(rf"{re.escape(str(build))}/(bin|test/old/writers)\b", rf"{scripts}/\1", text)

    properties = {each["name"]: each["value"] for each in test["properties"]}
    environment = dict(text.split("=", 1) for text in map(replaced, properties.get("ENVIRONMENT", [])))
    with log.open("w") as output:
        return subprocess.run(
            [replaced(part) for part in test["command"]],
            stdout=output,
            stderr=subprocess.STDOUT,
            cwd=properties["WORKING_DIRECTORY"],
            env={**os.environ, **environment},
            check=False,
        ).returncode


def main(build, root, out, regex=""):
    build, out = pathlib.Path(build).resolve(), pathlib.Path(out).resolve()
    out.mkdir(parents=True, exist_ok=True)
    ours = pathlib.Path(__file__).parent.parent / "cmake" / "valgrind.supp"
    files = [ours.resolve(), *sorted(pathlib.Path(root, "etc").resolve().glob("valgrind-root*.supp"))]
    suppressions = " ".join(f"--suppressions={file}" for file in files)
    make_scripts(out / "scripts", build, f"valgrind -q --num-callers=40 --log-file={out}/process-%p.log {suppressions}")

    def passes(test):
        code = run(test, build, out / "scripts", out / f"{test['name']}.log")
        print("passed" if code == 0 else f"FAILED ({code})", test["name"], flush=True)
        return code == 0

    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        results = list(pool.map(passes, tests_of(str(build), regex)))
    logs = list(out.glob("process-*.log"))
    noisy = [log.name for log in logs if log.stat().st_size]
    print(f"{results.count(True)} of {len(results)} tests passed; {len(noisy)} of {len(logs)} processes had errors of memory")
    print("\n".join(noisy))
    return bool(noisy) or not all(results)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
