#!/usr/bin/env python3
"""Makes the tables of a page from the results of stn_bench.

Usage: report.py RESULTS.json PAGE.md

Each table replaces what stands in the page between a line `<!-- table NAME -->` and the next line `<!-- end -->`.
A ratio is taken turn by turn; shown are the median and, in brackets, the least and the greatest.
"""
import collections
import json
import pathlib
import re
import statistics
import sys

WORKLOADS = ["light", "middle", "heavy"]
OTHERS = ["tree", "ntuple"]
NAMES = {"tree": "flat tree", "ntuple": "RNTuple", "zip": "compression alone", "memcpy": "memcpy"}


class Results:
    """What was measured, by (what, workload, setting, peer), one entry for each turn."""

    def __init__(self, data):
        self.context = data["context"]
        self.runs = collections.defaultdict(list)
        for run in data["benchmarks"]:
            if run.get("error_occurred"):
                sys.exit(f"{run['name']}: {run['error_message']}")
            what, workload, setting, peer, _turn = run["name"].split("/")[:5]
            self.runs[what, workload, int(setting), peer].append(run)

    def get(self, what, workload, setting, peer, value="real_time"):
        """The values of all turns; times are in milliseconds."""
        return [run[value] for run in self.runs[what, workload, setting, peer]]

    def per_event(self, *key, value="real_time"):
        """Time for each event, in microseconds."""
        return [1000 * time / n for time, n in zip(self.get(*key, value), self.get(*key, "events"))]

    def mb_per_s(self, *key):
        return [size / 1000 / time for size, time in zip(self.get(*key, "sample_bytes"), self.get(*key))]

    def cases(self, what):
        """Workloads and settings with which something was measured."""
        found = {(workload, setting) for each, workload, setting, _ in self.runs if each == what}
        return sorted(found, key=lambda case: (WORKLOADS.index(case[0]), case[1]))

    def has(self, peer):
        return any(key[3] == peer for key in self.runs)


def ratios(ours, theirs):
    return [a / b for a, b in zip(ours, theirs)]


def number(value):
    return f"{value:.0f}" if value >= 99.5 else f"{value:#.3g}"


def spread(values):
    if min(values) == max(values):
        return number(values[0])
    return f"{number(statistics.median(values))} ({number(min(values))}–{number(max(values))})"


def table(head, rows):
    lines = [head, ["---"] * len(head)] + rows
    return "\n".join("| " + " | ".join(map(str, line)) + " |" for line in lines)


def speed(results, what):
    """MB/s of the station file, how many times those of its peers, and the part of what the limits reach."""
    others = [peer for peer in OTHERS + ["zip", "memcpy"] if results.has(peer)]
    rows = []
    for workload, setting in results.cases(what):
        ours = results.mb_per_s(what, workload, setting, "station")
        rows.append([workload, setting, spread(ours)]
                    + [spread(ratios(ours, results.mb_per_s(what, workload, setting, peer))) for peer in others])
    return table(["workload", "setting", "MB/s"] + ["to " + NAMES[peer] for peer in others], rows)


def size(results):
    others = [peer for peer in OTHERS if results.has(peer)]
    rows = []
    for workload, setting in results.cases("write"):
        def of(peer):
            return statistics.median(results.get("write", workload, setting, peer, "bytes"))
        ours = of("station")
        rows.append([workload, setting, f"{ours / 1e6:.2f}"] + [f"{ours / of(peer):.3f}" for peer in others]
                    + [f"{ours / value:.3f}" for kind in ("noise", "trace")
                       for value in results.get("entropy", workload, 0, kind, "bytes")])
    return table(["workload", "setting", "MB"] + ["to " + NAMES[peer] for peer in others]
                 + ["to entropy of the noise", "to entropy by trace"], rows)


def add(results):
    rows = []
    for workload, _setting in results.cases("add"):
        ours, copy = (results.per_event("add", workload, 0, peer) for peer in ("station", "memcpy"))
        rows.append([workload, spread(ours), spread(copy), spread(ratios(ours, copy))])
    return table(["workload", "`AddEvent`, µs an event", "`memcpy` of the records, µs", "ratio"], rows)


LONG = ("sparse", 501)
FILES = ("light", 1)


def scan(results):
    rows = []
    ours = results.per_event("scan", *LONG, "station")
    for peer in ["station"] + [peer for peer in OTHERS if results.has(peer)]:
        theirs = results.per_event("scan", *LONG, peer)
        read = results.get("scan", *LONG, peer, "bytes_read")[0]
        rows.append([NAMES.get(peer, "station file"), spread(theirs), spread(ratios(theirs, ours)),
                     f"{read / 1e6:.2f}" if read else "not known"])
    return table(["file", "µs a header", "rate of the station file to this", "MB read"], rows)


def fifths(values):
    """Means of the first and of the last fifth of the turns: one turn has more baskets to write than another."""
    n = max(1, len(values) // 5)
    return statistics.mean(values[:n]), statistics.mean(values[-n:])


def growth(values):
    first, last = fifths(values)
    return last / first


def memory_growth(results, peer):
    """MB of memory more, in the first fifth of a long run and after it."""
    growths = results.get("grow", *LONG, peer, "memory_growth")
    n = len(growths) // 5
    return sum(growths[:n]) / 1e6, sum(growths[n:]) / 1e6


def grow(results):
    rows = []
    for name, peer, value in (("`AddEvent`", "station", "add_cpu"), ("`WriteEvent`", "station", "write_cpu"),
                              ("fill of flat tree", "tree", "write_cpu"), ("fill of RNTuple", "ntuple", "write_cpu")):
        if results.has(peer):
            times = results.per_event("grow", *LONG, peer, value=value)
            rows.append([name] + [number(time) for time in fifths(times)] + [f"{growth(times):.3f}"]
                        + [f"{more:.1f}" for more in memory_growth(results, peer)])
    return table(["what", "µs an event, first fifth", "last fifth", "growth", "MB more memory in the first fifth",
                  "MB more after it"], rows)


def files(results):
    rows = []
    tree = results.per_event("files", *FILES, "tree")
    for peer in ["station"] + [peer for peer in OTHERS if results.has(peer)]:
        times = results.per_event("files", *FILES, peer)
        rows.append([NAMES.get(peer, "station file"), spread(times)] + [number(value) for value in fifths(times)]
                    + [f"{growth(times):.3f}", f"{growth(ratios(times, tree)):.3f}"])
    return table(["file", "µs a file", "first fifth", "last fifth", "growth", "growth by that of the flat tree"], rows)


def reached(results, workload, setting):
    """Medians of the ratios to the peers, the greater the better, by name."""
    def to(what, peer):
        return ratios(*(results.mb_per_s(what, workload, setting, each) for each in ("station", peer)))

    found = {f"{what} to {NAMES[peer]}": to(what, peer)
             for what in ("write", "read") for peer in OTHERS if results.has(peer)}
    found["smallness to flat tree"] = ratios(*(results.get("write", workload, setting, peer, "bytes")
                                               for peer in ("tree", "station")))
    found["`AddEvent` to memcpy"] = ratios(*(results.get("add", workload, 0, peer) for peer in ("memcpy", "station")))
    return {name: statistics.median(values) for name, values in found.items()}


def by_middle(results, workload, setting):
    middle = reached(results, "middle", setting)
    return {name: value / middle[name] for name, value in reached(results, workload, setting).items()}


def relative(results):
    rows = {case: by_middle(results, *case) for case in results.cases("write") if case[0] != "middle"}
    names = list(next(iter(rows.values())))
    return table(["workload", "setting"] + names,
                 [list(case) + [f"{row[name]:.2f}" for name in names] for case, row in rows.items()])


def goals(results):
    """Every line: what, goal, reached, whether that is enough."""
    def to(what, setting, peer):
        return ratios(*(results.mb_per_s(what, "middle", setting, each) for each in ("station", peer)))

    def size_to_tree(setting):
        return ratios(*(results.get("write", "middle", setting, each, "bytes") for each in ("station", "tree")))

    def to_entropy(kind):
        entropy = results.get("entropy", "middle", 0, kind, "bytes")[0]
        return [value / entropy for value in results.get("write", "middle", 501, "station", "bytes")]

    scan_time = results.per_event("scan", *LONG, "station")
    basket_bytes = results.get("scan", *LONG, "station", "basket_bytes")
    read_bytes = results.get("scan", *LONG, "station", "bytes_read")

    adding, writing = (results.per_event("grow", *LONG, "station", value=value) for value in ("add_cpu", "write_cpu"))
    files_to_tree = ratios(*(results.per_event("files", *FILES, peer) for peer in ("station", "tree")))
    least, most = (lambda a, b: a >= b), (lambda a, b: a <= b)
    ntuple = results.has("ntuple")
    lines = [("`WriteEvent`, setting 1, MB/s to flat tree", least, 1.3, to("write", 1, "tree"))]
    lines += [("the same to RNTuple", least, 1.2, to("write", 1, "ntuple"))] * ntuple
    lines += [("`WriteEvent`, setting 501, to flat tree", least, 3, to("write", 501, "tree"))]
    lines += [("the same to RNTuple", least, 1, to("write", 501, "ntuple"))] * ntuple
    lines += [
        ("file size, setting 1, to flat tree", most, 0.76, size_to_tree(1)),
        ("file size, setting 501, to flat tree", most, 0.68, size_to_tree(501)),
        ("file size, setting 501, to entropy of the noise", most, 1.15, to_entropy("noise")),
        ("file size, setting 501, to entropy by trace", most, 1.15, to_entropy("trace")),
        ("`ReadEvent`, setting 1, MB/s to flat tree", least, 1.2, to("read", 1, "tree")),
        ("`ReadEvent`, setting 501, to flat tree", least, 1.5, to("read", 501, "tree")),
        ("`ReadEventHeader`, rate to `ReadEvent`, setting 1", least, 100,
         ratios(results.per_event("read", "middle", 1, "station"), scan_time)),
        ("the same, setting 501", least, 100, ratios(results.per_event("read", "middle", 501, "station"), scan_time)),
        ("`ReadEventHeader`, bytes read to bytes of the header baskets", most, 1.1, ratios(read_bytes, basket_bytes)),
        ("`ReadEventHeader`, rate to flat tree", least, 0.5,
         ratios(results.per_event("scan", *LONG, "tree"), scan_time)),
        ("`AddEvent`, time to `memcpy` of the records", most, 2.5,
         ratios(*(results.per_event("add", "middle", 0, peer) for peer in ("station", "memcpy")))),
        ("`AddEvent`, last fifth of a long run to first", most, 1.1, [growth(adding)]),
        ("`WriteEvent`, last fifth of a long run to first", most, 1.1, [growth(writing)]),
        ("resident memory, MB more after the first fifth of a long run", most, 1,
         [memory_growth(results, "station")[1]]),
        ("many files, time for each by that of the flat tree, last fifth to first", most, 1.02, [growth(files_to_tree)]),
    ]
    for workload in ("light", "heavy"):
        found = [value for setting in (1, 501) for value in by_middle(results, workload, setting).values()]
        lines.append((f"{workload} workload, the least ratio, to that of the middle one", least, 0.9, [min(found)]))
    rows = [[what, f"{'at least' if test is least else 'at most'} {goal}", spread(values),
             "yes" if test(statistics.median(values), goal) else "**no**"] for what, test, goal, values in lines]
    return table(["what", "goal", "reached", "met"], rows)


def cpu_model():
    match = re.search(r"^model name\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.MULTILINE)
    return match[1] if match else "unknown processor"


def machine(results):
    context = results.context
    memory = re.search(r"MemTotal:\s*(\d+)", pathlib.Path("/proc/meminfo").read_text())[1]
    turns = len(next(iter(results.runs.values())))
    return (f"Measured on {context['date'][:10]}: {cpu_model()}, {context['num_cpus']} cores, "
            f"{int(memory) / 1024 ** 2:.0f} GiB of memory, ROOT {context['root']}, g++ {context['compiler']}; "
            f"{turns} turns; load of the machine {context['load_avg'][0]:.1f} at the start.")


TABLES = {
    "machine": machine, "goals": goals, "write": lambda results: speed(results, "write"),
    "read": lambda results: speed(results, "read"), "size": size, "add": add, "scan": scan, "grow": grow,
    "files": files, "relative": relative,
}


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    results = Results(json.loads(pathlib.Path(sys.argv[1]).read_text()))
    page = pathlib.Path(sys.argv[2])

    def replace(match):
        return f"{match[1]}\n{TABLES[match[2]](results)}\n{match[3]}"

    page.write_text(re.sub(r"(<!-- table (\w+) -->)\n.*?(<!-- end -->)", replace, page.read_text(), flags=re.DOTALL))


if __name__ == "__main__":
    main()
