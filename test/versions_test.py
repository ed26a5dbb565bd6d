"""One version everywhere. Arguments: source folder, build folder, version by CMake."""

import json
import pathlib
import re
import subprocess
import sys
import tomllib

source, build, version = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]


def read(path):
    return (source / path).read_text(encoding="utf-8")


def in_header():
    text = read("StnEvent/src/StnEventVersion.h")
    numbers = [re.search(rf"{name} = (\d+);", text)[1] for name in
               ("kStnEventVersion", "kStnEventSubVersion", "kStnEventSubSubVersion")]
    yield "StnEventVersion.h, numbers", ".".join(numbers)
    yield "StnEventVersion.h, text", re.search(r'kStnEventVersionString\[\] = "StnEvent (.*)"', text)[1]


def in_packages():
    yield "python/pyproject.toml", tomllib.loads(read("python/pyproject.toml"))["project"]["version"]
    yield "js/package.json", json.loads(read("js/package.json"))["version"]
    yield "js/package-lock.json", json.loads(read("js/package-lock.json"))["version"]
    yield "CHANGELOG.md", re.search(r"^## \[([\d.]+)\]", read("CHANGELOG.md"), re.MULTILINE)[1]
    yield "StnEvent.pc", re.search(r"^Version: (.*)", (build / "StnEvent.pc").read_text(encoding="utf-8"), re.MULTILINE)[1]


def in_programs():
    for program in sorted((build / "bin").glob("stn-*")):
        answer = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout
        yield program.name, answer.strip().removeprefix(f"{program.name} (StnEvent ").removesuffix(")")


found = [*in_header(), *in_packages(), *in_programs()]
wrong = [f"{place}: {other}, not {version}" for place, other in found if other != version]
print(*wrong, f"{len(found)} places, {len(wrong)} with another version", sep="\n")
sys.exit(1 if wrong or len(found) < 8 else 0)
