#!/usr/bin/env python3
"""Puts small faults into the libraries' sources, one at a time, and tells which of them no test notices.

A mutant is put into a library of its own that stands before the built one, and runs through the test programs of its
source. With --survivors, what none of them noticed runs through the tests of all other sources. Results
are JSON lines; a run that is started again goes on where it stopped. Needs a build with Ninja whose tests have run.
"""
import argparse
import collections
import concurrent.futures
import functools
import json
import os
import pathlib
import queue
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile

import mutants
import switches

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIBRARIES = ("VdUtil", "MrEvent", "StnEvent")  # each builds on those before
INCLUDED_AS = {"StnEvent/src": "StnEvent", "MrEvent/src": "MrEvent", "VdUtil/src": "VdUtil", "VdUtil/root": "VdRoot"}
# Sources whose test programs have other names than theirs.
TESTS_OF = {"MrRecordCheck": ["DamagedRecordTest", "StnPixelListStreamerTest", "StnEventHeaderStreamerTest"],
            "MrTraceCode": ["FadcDataTest", "MiFadcDataTest"]}
# Headers that are changed, or include one that is.
OWN_HEADERS = "|".join([*(f"{name}/" for name in INCLUDED_AS.values()), *(h.name for h in ROOT.glob("*/test/*.h"))])
SANITIZERS = ["-fsanitize=address,undefined", "-fno-sanitize=vptr", "-fno-sanitize-recover=undefined"]


def get_library(file):
    return file.split("/")[0]


def limit_resources(seconds, environment):
    """A mutant may loop for ever, and take all memory or the whole disk meanwhile."""
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 1))
    if "LD_PRELOAD" not in environment:  # sanitizers reserve more room than any machine has
        resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))
    resource.setrlimit(resource.RLIMIT_FSIZE, (256 << 20, 256 << 20))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def passes(command, folder, environment, seconds):
    process = subprocess.Popen(command, cwd=folder, env={**os.environ, **environment}, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                               preexec_fn=lambda: limit_resources(seconds, environment))
    try:
        return process.wait(timeout=20 * seconds) == 0  # the machine may have other things to do
    except subprocess.TimeoutExpired:
        return False
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def sanitizers_environment():
    """That of the project's own runs; the programs themselves are built without sanitizers, so that they come first."""
    script = f"source {ROOT}/cmake/sanitizers.sh; env; echo LD_PRELOAD=$(g++ -print-file-name=libasan.so)"
    lines = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=True).stdout.splitlines()
    return dict(line.split("=", 1) for line in lines if re.match("[A-Z]+SAN_OPTIONS=|LD_PRELOAD=", line))


class Tests:
    """The tests of the libraries as ctest knows them, each with the seconds that it took when ctest ran it last."""

    def __init__(self, build, longest, with_sanitizers):
        self.common = {"GTEST_FAIL_FAST": "1", **(sanitizers_environment() if with_sanitizers else {})}
        listed = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], capture_output=True, check=True)
        costs = build / "Testing/Temporary/CTestCostData.txt"
        costs = re.findall(r"^(\S+) \d+ (\S+)$", costs.read_text(), re.M) if costs.exists() else ()
        self.seconds = collections.defaultdict(float, ((name, float(cost)) for name, cost in costs))
        self.tests = {}
        for test in json.loads(listed.stdout)["tests"]:
            properties = {p["name"]: p["value"] for p in test.get("properties", [])}
            library = os.path.relpath(properties.get("WORKING_DIRECTORY", build), build).split(os.sep)[0]
            is_program = test["name"].endswith("Test") and library in LIBRARIES + ("test",)
            is_script = re.fullmatch(r"GoldenFile\..*|Oracle", test["name"]) and not with_sanitizers
            is_built = "command" in test
            if is_built and (is_program or is_script) and self.seconds[test["name"]] <= longest:
                environment = dict(line.split("=", 1) for line in properties.get("ENVIRONMENT", []))
                self.tests[test["name"]] = library, test["command"], environment

    def passes(self, name, place, folder, number):
        """With the library and, if there is one, the program at that place."""
        _, command, environment = self.tests[name]
        program = place / "bin" / name
        environment = {**environment, **self.common, "LD_LIBRARY_PATH": str(place / "lib"), "MUTANT": str(number)}
        return passes([program] if program.exists() else command, folder, environment, 5 + int(5 * self.seconds[name]))

    def get_own(self, file, files):
        """Test programs of a source: StnEventAddTest is one of StnEvent.cc, but StnEventFileTest is not."""
        stems = {pathlib.Path(f).stem for f in files}
        best = {name: max((s for s in stems if name.startswith(s)), key=len, default="") for name in self.tests}
        own = [name for name in self.tests if best[name] == pathlib.Path(file).stem]
        own += [name for name in TESTS_OF.get(pathlib.Path(file).stem, ()) if name in self.tests]
        return self.sorted(own or [name for name in self.tests if self.tests[name][0] == get_library(file)])

    def get_all(self, file):
        """Those that the source's library matters to."""
        libraries = LIBRARIES[LIBRARIES.index(get_library(file)):] + ("test",)
        return self.sorted(name for name in self.tests if self.tests[name][0] in libraries)

    def sorted(self, names):
        return sorted(names, key=lambda name: self.seconds[name])


class Builder:
    """Compiles and links as the build does, but into the folder of a worker, and in less time."""

    def __init__(self, build, scratch, with_sanitizers):
        self.build, self.scratch = build, scratch
        self.extra = SANITIZERS if with_sanitizers else []
        self.link_extra = [*self.extra, *(["-fuse-ld=lld"] if shutil.which("ld.lld") else [])]
        entries = json.loads((build / "compile_commands.json").read_text())
        self.commands = {os.path.relpath(e["file"], ROOT): shlex.split(e["command"]) for e in entries}
        self.files = {library: next((build / "lib").glob(f"lib{library}.so.*.*")) for library in LIBRARIES}

    def ninja(self, *arguments):
        return subprocess.run(["ninja", "-C", self.build, *arguments], capture_output=True, text=True, check=True).stdout

    def get_object(self, source):
        return self.commands[source][self.commands[source].index("-o") + 1]

    @functools.cached_property
    def includers(self):
        """The sources that a header goes into."""
        found = collections.defaultdict(list)
        source_of = {self.get_object(source): source for source in self.commands}
        for record in self.ninja("-t", "deps").split("\n\n"):
            head, *lines = record.strip().splitlines() or [""]
            for line in lines if head.split(":")[0] in source_of else []:
                header = os.path.relpath(os.path.realpath(self.build / line.strip()), ROOT)
                found[header].append(source_of[head.split(":")[0]])
        return found

    def compile(self, source, options):
        """Messages of the compiler; none when it compiles."""
        words = [word for word in self.commands[source] if not re.fullmatch(r"-O\d|-g|-W.*", word)]
        command = [words[0], *options, *words[1:words.index("-o")], "-O0", "-w", "-Wno-narrowing", *self.extra]
        return subprocess.run(command, cwd=self.build, stderr=subprocess.PIPE, text=True).stderr

    def precompile(self, source, what):
        """Includes of a source, once for all mutants; but assertions are included anew each time."""
        header = self.scratch / (source.replace("/", "_") + ".h")
        if not header.exists():
            includes = re.findall(rf"^#include <{what}(?!VdUtil/Assertions.h).*", (ROOT / source).read_text(), re.M)
            header.write_text("\n".join(includes) + "\n" + switches.prelude())
            assert not self.compile(source, ["-x", "c++-header", header, "-o", f"{header}.gch"])
        return header

    def compile_text(self, file, text, folder):
        """Objects by the names of their sources, and messages of the compiler about the text."""
        return (self.compile_header if file.endswith(".h") else self.compile_source)(file, text, folder)

    def compile_source(self, source, text, folder):
        changed, output = folder / "mutant.cc", folder / "mutant.o"
        changed.write_text(f'#line 1 "{ROOT / source}"\n{text}')  # messages and assertions name the source
        options = ["-include", self.precompile(source, ""), "-iquote", (ROOT / source).parent]
        return {source: output}, self.compile(source, [*options, "-c", changed, "-o", output])

    def compile_header(self, header, text, folder):
        """The sources of its library that include it. Other libraries keep the header as it is."""
        changed = folder / "include" / INCLUDED_AS[os.path.dirname(header)] / os.path.basename(header)
        changed.parent.mkdir(parents=True, exist_ok=True)
        changed.write_text(f'#line 1 "{ROOT / header}"\n{text}')
        objects = {source: folder / (os.path.basename(source) + ".o") for source in self.includers[header]
                   if os.path.dirname(source) in INCLUDED_AS and get_library(source) == get_library(header)}
        for source, output in objects.items():
            messages = self.compile_with_header(source, output, folder)
            if messages:
                return objects, messages
        return objects, ""

    def compile_with_header(self, source, output, folder):
        options = ["-include", self.precompile(source, f"(?!{OWN_HEADERS})"), "-I", folder / "include"]
        return self.compile(source, [*options, "-c", ROOT / source, "-o", output])

    @functools.lru_cache(maxsize=None)
    def link_command(self, target):
        return self.ninja("-t", "commands", target).strip().splitlines()[-1]

    def link(self, target, objects, output):
        command = self.link_command(target).replace(f" -o {target} ", f" {shlex.join(self.link_extra)} -o {output} ")
        for source, changed in objects.items():
            command = command.replace(f" {self.get_object(source)} ", f" {changed} ")
        subprocess.run(command, shell=True, cwd=self.build, check=True)

    def link_library(self, library, objects, folder):
        file = self.files[library]
        self.link(f"lib/{file.name}", objects, folder / "lib" / file.name)

    def make_test(self, name, header, folder):
        """A test program with the changed header, if it includes it; answers whether it compiles."""
        source = next((s for s in self.includers[header] if pathlib.Path(s).stem == name), None)
        if not source:
            return True
        output = folder / f"{name}.o"
        if self.compile_with_header(source, output, folder):
            return False
        (folder / "bin").mkdir(exist_ok=True)
        self.link(f"bin/{name}", {source: output}, folder / "bin" / name)
        return True

    def prepare(self, folder, library):
        """The folder of a worker: where tests run, and a library folder in which only `library` is its own."""
        shutil.rmtree(folder, ignore_errors=True)
        (folder / "lib").mkdir(parents=True)
        (folder / ".rootrc").write_text("Root.Stacktrace: no\n")  # a crash is enough
        for file in (self.build / "lib").glob(f"lib{library}*"):
            (folder / "lib" / file.name).symlink_to(os.readlink(file) if file.is_symlink() else file)
        (folder / "lib" / self.files[library].name).unlink()


class Source:
    """One source or header, with the tests that its mutants have to pass to survive."""

    def __init__(self, file, builder, tests, order):
        self.file, self.builder, self.tests, self.order = file, builder, tests, order
        self.text = (ROOT / file).read_text()

    def make(self, text, place):
        """Library and test programs; messages of the compiler if one of them does not compile."""
        messages = self.make_library(text, place)
        return messages or "".join(self.make_test(name, place) for name in self.order)

    def make_library(self, text, place):
        objects, messages = self.builder.compile_text(self.file, text, place)
        if not messages:
            self.builder.link_library(get_library(self.file), objects, place)
        return messages

    def make_test(self, name, place):
        """A source's test programs are as they were built."""
        is_made = not self.file.endswith(".h") or self.builder.make_test(name, self.file, place)
        return "" if is_made else f"{name} does not compile"

    def run_test(self, name, place, folder, number):
        """Whether it passes. The test that kills a mutant moves to the front: neighbours die of the same test."""
        if self.tests.passes(name, place, folder, number):
            return True
        self.order.remove(name)
        self.order.insert(0, name)
        return False

    def run_tests(self, place, folder, number):
        """Outcome, and the test that killed it."""
        for name in list(self.order):
            if not self.run_test(name, place, folder, number):
                return "killed", name
        return "survived", None

    def try_alone(self, mutant, folder):
        if self.make_library(mutant.apply(self.text), folder):
            return "not compiling", None
        for name in list(self.order):
            if self.make_test(name, folder):
                return "not compiling", None
            if not self.run_test(name, folder, folder, 0):
                return "killed", name
        return "survived", None

    def join(self, chosen, place):
        """Makes one library of as many mutants as can stand in it together: (number, mutant) of these."""
        lines = self.text.splitlines()
        joined = [item for item in enumerate(chosen, 1) if switches.is_switchable(item[1], lines)]
        for around in range(20):  # the compiler does not name all lines at once, nor always the right ones
            messages = self.make(switches.join(self.text, joined), place)
            if not messages or not joined:
                break
            wrong = switches.lines_of_errors(messages, ROOT / self.file)
            print(f"{self.file}: {len(joined)} mutants, errors on {sorted(wrong)}", file=sys.stderr)
            joined = [(n, m) for n, m in joined if wrong and all(abs(m.line - line) > around // 4 for line in wrong)]
        return joined

    def try_all(self, chosen, folders, report):
        for folder in folders:
            self.builder.prepare(folder, get_library(self.file))
        place, *folders = folders
        joined = self.join(chosen, place)
        alone = [(0, m) for m in chosen if m not in {m for _, m in joined}]

        self.check(self.run_tests(place, folders[0], 0))  # or else a broken environment would kill every mutant
        self.for_each(joined, folders, report, lambda folder, item: self.run_tests(place, folder, item[0]))
        self.for_each(alone, folders, report, lambda folder, item: self.try_alone(item[1], folder))
        self.make(self.text, place)
        self.check(self.run_tests(place, folders[0], 0))

    def for_each(self, items, folders, report, outcome_of):
        free = queue.Queue()
        for folder in folders:
            free.put(folder)

        def try_one(item):
            folder = free.get()
            try:
                report(item[1], *outcome_of(folder, item))
            finally:
                free.put(folder)

        with concurrent.futures.ThreadPoolExecutor(len(folders)) as pool:
            list(pool.map(try_one, items))

    def check(self, result):
        outcome, test = result
        if outcome != "survived":
            sys.exit(f"mutate: {self.file} without a mutant: {outcome} {test or ''}")


def summarize(results):
    """A line of a table for each library and kind."""
    counts = collections.Counter((get_library(r["mutant"]), r["kind"], r["outcome"]) for r in results.values())
    print("| library | fault | made | killed | survived | not compiling |\n|---|---|---|---|---|---|")
    for library in LIBRARIES:
        for kind in mutants.KINDS:
            found = [counts[library, kind, outcome] for outcome in ("killed", "survived", "not compiling")]
            print(f"| {library} | {kind} | {sum(found)} | {' | '.join(map(str, found))} |")


def read_results(file):
    """The last result of each mutant."""
    lines = file.read_text().splitlines() if file.exists() else ()
    return {result["mutant"]: result for result in map(json.loads, lines)}


def is_chosen(mutant, args, results):
    outcome = results.get(mutant.name, {}).get("outcome")
    return mutant.kind in args.kinds.split(",") and re.search(args.match, mutant.name) and \
        outcome == ("survived" if args.survivors else None)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", nargs="*", help="sources and headers (default: all of the libraries)")
    parser.add_argument("--build", default=ROOT / "build/release", type=pathlib.Path, help="folder of a build with tests")
    parser.add_argument("--results", default=ROOT / "build/mutants.jsonl", type=pathlib.Path, help="default: %(default)s")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--kinds", default=",".join(mutants.KINDS), help="default: %(default)s")
    parser.add_argument("--match", default="", help="only mutants whose name this regular expression finds")
    parser.add_argument("--survivors", action="store_true", help="once more what survived, through all tests")
    parser.add_argument("--sanitize", action="store_true", help="the source's own programs, with the sanitizers in the mutant's "
                        "library")
    parser.add_argument("--longest", type=float, default=60, help="leave out tests of more seconds (default: %(default)s)")
    parser.add_argument("--list", action="store_true", help="list mutants and make none")
    parser.add_argument("--summary", action="store_true", help="the results so far as a table")
    args = parser.parse_args()

    all_files = sorted(str(file.relative_to(ROOT)) for folder in INCLUDED_AS for file in (ROOT / folder).iterdir()
                       if re.fullmatch(r"(?!LinkDef).*\.(h|cc)", file.name))
    results = read_results(args.results)
    if args.summary:
        return summarize(results)
    todo = [(file, [mutant for mutant in mutants.make(file, (ROOT / file).read_text())
                    if is_chosen(mutant, args, results)]) for file in args.files or all_files]
    if args.list:
        print("\n".join(f"{m.kind}: {m.name}" for _, chosen in todo for m in chosen))
        return

    with tempfile.TemporaryDirectory(prefix="mutate-") as scratch, args.results.open("a") as output:
        folders = [pathlib.Path(scratch) / str(i) for i in range(args.jobs + 1)]
        builder = Builder(args.build.resolve(), pathlib.Path(scratch), args.sanitize)
        tests = Tests(args.build.resolve(), args.longest, args.sanitize)

        def report(mutant, outcome, test):
            counts[outcome] += 1
            output.write(json.dumps({"mutant": mutant.name, "kind": mutant.kind, "outcome": outcome, "by": test}) + "\n")
            output.flush()
            if outcome == "survived":
                print(f"survived: {mutant.name}", flush=True)

        for file, chosen in filter(lambda item: item[1], todo):
            counts = collections.Counter()
            order = tests.get_all(file) if args.survivors and not args.sanitize else tests.get_own(file, all_files)
            Source(file, builder, tests, order).try_all(chosen, folders, report)
            print(f"{file}: {dict(counts)}", flush=True)


if __name__ == "__main__":
    main()
