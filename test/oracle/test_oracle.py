"""Property tests: the library and the oracle go through the same random commands and have to give the same answers.

ORACLE_DRIVER names the driver program. ORACLE_EXAMPLES is the number of examples of each property; when it is set they
are chosen anew in each run, otherwise they are always the same.
"""
import json
import os
import re
import subprocess

import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import oracle

FLOATS = [name for name, kind, *_ in oracle.FIELDS if kind == "f"]
EXAMPLES = os.environ.get("ORACLE_EXAMPLES")


def examples(number):
    return settings(max_examples=int(EXAMPLES or number), derandomize=not EXAMPLES, deadline=None, database=None,
                    suppress_health_check=list(HealthCheck))


# ---- the two of them


class Driver:
    def __init__(self):
        self.process = subprocess.Popen([os.environ.get("ORACLE_DRIVER", "oracle_driver")], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)

    def run(self, commands):
        self.process.stdin.write(json.dumps(commands) + "\n")
        self.process.stdin.flush()
        answers = self.process.stdout.readline()
        if not answers:
            raise AssertionError(f"the driver ended with {self.process.wait()}")
        return [tidied(answer) for answer in json.loads(answers)]


def tidied(answer):
    answer["log"] = re.sub(r"(DBG:\w+/src/\w+\.cc:)\d+: ", r"\1#: ", answer["log"])
    for name in FLOATS if answer["state"]["header"] else ():
        bits = answer["state"]["header"][name]
        answer["state"]["header"][name] = oracle.bits_of(oracle.float_of(bits))
    return answer


def differences(got, want, place="answer"):
    """Each place where two answers differ, with what is there in each."""
    if isinstance(got, dict) and isinstance(want, dict):
        for key in sorted(got.keys() | want.keys()):
            yield from differences(got.get(key), want.get(key), f"{place}.{key}")
    elif got != want:
        yield f"{place}: library {got!r}, oracle {want!r}"


class Pair:
    """A driver and the oracle of that process, begun anew when the driver has ended."""

    def __init__(self):
        self.driver = None

    def start(self):
        self.driver = Driver()
        self.oracle = oracle.Oracle(0)
        station = self.driver.run([{"op": "is_set"}])[0]["state"]["header"]["fStnNumber"]
        self.oracle = oracle.Oracle(station)

    def check(self, commands, level=0):
        if not self.driver or self.driver.process.poll() is not None:
            self.start()
        expected, sent = [], []
        for command in [{"op": "new", "level": level}] + commands:
            # A list whose count is wrong ends the process.
            if command["op"] == "walk" and self.oracle.list and not self.oracle.list.is_sound():
                continue
            sent.append(command)
            expected.append(json.loads(json.dumps(self.oracle.run(command))))
        for command, want, got in zip(sent, expected, self.driver.run(sent)):
            found = "\n".join(differences(got, want))
            assert not found, f"{command}\n{found}"
        return expected


@pytest.fixture(scope="module")
def pair():
    pair = Pair()
    yield pair
    if pair.driver:
        pair.driver.process.stdin.close()
        pair.driver.process.wait()


# ---- commands

u8, u16 = st.integers(0, 2**8 - 1), st.integers(0, 2**16 - 1)
u32, u64 = st.integers(0, 2**32 - 1), st.integers(0, 2**64 - 1)
i16, i32 = st.integers(-2**15, 2**15 - 1), st.integers(-2**31, 2**31 - 1)
float_bits = st.one_of(st.floats(width=32).map(lambda value: oracle.bits_of(value)), st.sampled_from(
    [oracle.bits_of(value) for value in (0.0, 49.99, 50.0, 50.01, 99.9, 100.0, 100.1, 150.0, 150.01)])
).map(lambda bits: 0x7FC00000 if bits == "nan" else bits)


def limits(low, high):
    """Both ends of a range of floats, and what lies next to them."""
    bits = [oracle.bits_of(float(end)) + step for end in (low, high) for step in (-1, 0, 1)]
    return st.sampled_from(bits + [oracle.bits_of(100.0)])


levels = st.sampled_from([0, 0, 1, 1, 2])
mirror_ids = st.one_of(st.integers(1, 6), st.integers(1, 6), st.integers(0, 9), st.integers(30, 40), u32)
neighbours = st.integers(1_000_000_000, 1_000_000_002)
at_leaps = [leap - oracle.EPOCH + n + step for n, leap in enumerate(oracle.LEAPS) for step in (-1, 0, 1)]
latest = [oracle.gps_of(2**31 + step) for step in (-2, -1, 0)]
gps_seconds = st.one_of(neighbours, neighbours, st.sampled_from(at_leaps), st.sampled_from(latest), u32)
nanoseconds = st.one_of(st.sampled_from([0, 1, 100]), st.integers(0, 300), st.integers(0, 999_999_999),
                        st.integers(999_999_700, 1_000_000_300), u32)
labels = st.one_of(st.sampled_from(list(oracle.LABELS)), st.sampled_from(list(oracle.LABELS)), i32)
classes = st.one_of(st.sampled_from(list(oracle.CLASSES)), i32)
types = st.one_of(st.integers(0, 3), st.integers(0, 10), i32)


def op(name, /, **arguments):
    return st.fixed_dictionaries({"op": st.just(name), **arguments})


def mirror_number(stn, mirror):
    return stn << 5 | (stn - 1) * 6 + mirror


own_mirrors = st.integers(1, 6).map(lambda mirror: mirror_number(1, mirror))
all_mirrors = st.builds(mirror_number, st.integers(1, 5), st.integers(1, 6))
mirrors = st.one_of(own_mirrors, own_mirrors, own_mirrors, all_mirrors, i16)
pixel_nos = st.one_of(st.integers(1, 4), st.integers(1, 8), st.integers(470, 490), st.integers(0, 511))
pixel_words = st.one_of(pixel_nos, st.builds(lambda low, high: oracle.i32(high & ~0x1FF | low), pixel_nos, u32))


def trace(pixel, own, word, info, start, samples):
    """A trace that mostly says that it is of the pixel at which it stands."""
    return {"pixel": pixel, "word": pixel if own else word, "info": info, "start": start, "samples": sorted(samples)}


samples = st.lists(st.tuples(st.integers(0, 1999), st.integers(1, 2**16 - 1)).map(list), max_size=3,
                   unique_by=lambda sample: sample[0])
traces = st.lists(st.builds(trace, st.one_of(st.integers(1, 4), st.integers(470, 480)),
                            st.sampled_from([True, True, False]), pixel_words, u32, u32, samples),
                  max_size=4, unique_by=lambda trace: trace["pixel"])
triggers = st.lists(st.tuples(st.integers(1, 480), st.integers(0, 3), st.integers(1, 2**32 - 1)).map(list), max_size=3,
                    unique_by=lambda trigger: tuple(trigger[:2])).map(sorted)

mirror_headers = {
    "version": st.one_of(st.integers(3, 4), i16), "mirror": mirrors, "label": labels,
    "type": st.one_of(st.integers(0, 4), u8), "source": u8, "trigger_time": u32, "sec": gps_seconds,
    "nsec": nanoseconds, "dead": u64, "run": u64, "veto": u64, "daq": u64, "skipped": u32, "data_mirror": i16}
full_events = st.fixed_dictionaries({
    **mirror_headers, "triggers": triggers, "pixels": st.lists(pixel_words, max_size=6), "traces": traces})
bare_events = st.fixed_dictionaries({
    **mirror_headers, **{name: st.just([]) for name in ("triggers", "pixels", "traces")}})

add = op("add", event=full_events, force=st.booleans())
add_bare = op("add", event=bare_events, force=st.booleans())
level = op("level", level=levels)
sets = op("set", name=st.sampled_from(list(oracle.SETTERS)), value=st.one_of(u64, u8), id=mirror_ids)
gets = op("get", name=st.sampled_from(list(oracle.GETTERS) + list(oracle.BITS)), id=mirror_ids)
verbose = op("verbose", value=st.one_of(st.integers(-2, 100), i32))
times = st.one_of(
    op("set_raw_time", id=mirror_ids, sec=st.one_of(gps_seconds.map(oracle.unix_of), i32),
       nsec=nanoseconds.map(oracle.i32)),
    op("set_time", sec=gps_seconds, nsec=nanoseconds), op("set_t3_time", sec=gps_seconds, nsec=nanoseconds))
plain_second = {"start": 0, "end": 0, "ticks": 80_000_000, "phase": 0}
at_limits = st.sampled_from([
    {"op": "measured", **plain_second, name: value} for name, values in {
        "start": [-129, -128, 127, 128], "end": [-129, -128, 127, 128], "phase": [100, 101],
        "ticks": [79_199_999, 79_200_000, 80_800_000, 80_800_001]}.items() for value in values])
parameters = st.one_of(
    at_limits,
    op("measured", start=i16, end=i16, ticks=u32, phase=u32),
    op("measured", start=st.integers(-128, 127), end=st.integers(-128, 127), ticks=st.integers(79_200_000, 80_800_000),
       phase=st.integers(0, 100)),
    op("derived", t10=float_bits, offset=float_bits),
    op("derived", t10=limits(50, 150), offset=limits(-128, 227)),
    op("derived", t10=st.floats(50, 150, width=32).map(oracle.bits_of),
       offset=st.floats(-3, 3, width=32).map(oracle.bits_of)))
corrections = st.one_of(
    op("is_set"), op("adjust"),
    op("correct", sec=u32, nsec=st.one_of(st.integers(-3, 3), st.integers(-500, 500), st.integers(0, 10**9), i32)),
    op("bin_time", word=i32, info=u32, bin=st.one_of(st.integers(0, 4001), u32)))
settings_by_caller = st.one_of(op("set_type", value=types), op("set_class", value=classes))
write_header = op("write_header")


# ---- records of old


def stored(kind, length):
    one = {"B": u8, "h": i16, "H": u16, "i": st.one_of(st.integers(-2, 13), i32), "I": u32, "Q": u64, "W": u64,
           "f": float_bits.map(oracle.float_of),
           "T": st.one_of(st.builds(oracle.stamp_of_gps, gps_seconds, nanoseconds),
                          st.tuples(i32, i32).map(list))}[kind]
    return st.lists(one, min_size=length, max_size=length) if length else one


headers = st.fixed_dictionaries({"fUniqueID": u32, **{
    name: stored(kind, length) for name, kind, length, since, _ in oracle.FIELDS if since}})
wrong_counts = st.dictionaries(st.sampled_from(oracle.COUNTED), st.one_of(st.integers(-1, 13), i32), min_size=1)


def read_header(version, header, before, counts={}, extra=b"", hidden=0, cut=0):
    record = oracle.encode_header(version, header, counts, extra, hidden)
    record = record[:max(oracle.FRAME, len(record) - cut)]
    return {"op": "read_header", "bytes": (bytes(before) + record).hex(), "offset": before}


before = st.integers(0, 3)
good_headers = st.builds(read_header, st.integers(4, 8), headers, before)
odd_headers = st.builds(read_header, st.one_of(st.integers(4, 8), st.just(10), st.integers(-1, 3)), headers, before,
                        extra=st.binary(max_size=40))
miscounted_headers = st.builds(read_header, st.just(4), headers, before, counts=wrong_counts)
cuts = st.one_of(st.just(0), st.integers(0, 2), st.integers(0, 400))
cut_headers = st.builds(read_header, st.integers(4, 8), headers, before, cut=cuts,
                        hidden=st.one_of(st.just(0), st.integers(0, 40)))
reads = st.one_of(good_headers, good_headers, odd_headers, miscounted_headers, cut_headers)


def read_list(version, stn, bits, before, length=90, wrong=0, lie=0, cut=0):
    words = [bits >> 32 * i & 0xFFFFFFFF for i in range(length)]
    count = sum(bin(word).count("1") for word in words[:90]) + wrong
    record = oracle.encode_list(version, stn, oracle.u32(count), oracle.u32(length + lie), words)
    record = record[:max(oracle.FRAME, len(record) - cut)]
    return {"op": "read_list", "bytes": (bytes(before) + record).hex(), "offset": before}


def bits_at(places):
    return sum(1 << place for place in places)


bit_sets = st.one_of(st.sets(st.integers(0, 2879), max_size=6).map(bits_at),
                     st.sets(st.integers(0, 20), max_size=6).map(bits_at), st.integers(0, 2**2880 - 1))
stations = st.integers(0, 6)
list_versions = st.sampled_from([2, 2, 4])
list_reads = st.one_of(
    st.builds(read_list, list_versions, stations, bit_sets, before),
    st.builds(read_list, st.integers(-1, 1), stations, bit_sets, before),
    st.builds(read_list, list_versions, stations, bit_sets, before, wrong=st.integers(-1, 2)),
    st.builds(read_list, list_versions, stations, bit_sets, before, length=st.integers(0, 93)),
    st.builds(read_list, list_versions, stations, bit_sets, before, length=st.integers(85, 93),
              lie=st.one_of(st.just(1), st.integers(0, 2**32 - 1)), cut=cuts))
walk = op("walk")
station_pixels = st.one_of(st.integers(1, 34), st.integers(2878, 2884), st.integers(1, 14400), i16)
pixel_calls = st.one_of(*[op(name, pixel=station_pixels)
                          for name in ("add_pixel", "add_pixel", "remove_pixel", "test_pixel")])

anything = st.one_of(add, add_bare, level, sets, gets, verbose, times, parameters, corrections, settings_by_caller,
                     write_header, reads, list_reads, walk, pixel_calls)


def several(*strategies, most=8):
    return st.lists(st.one_of(*strategies), min_size=1, max_size=most)


# ---- properties


@examples(300)
@given(several(add, add, add, settings_by_caller, walk), levels)
def test_merging(pair, commands, level):
    pair.check(commands, level)


@examples(200)
@given(several(add_bare, settings_by_caller, level, most=12), levels)
def test_values_classes_and_times_of_mirrors_without_pixels(pair, commands, level):
    pair.check(commands, level)


def test_every_class_with_every_label(pair):
    event = {name: 0 for name in mirror_headers}
    event.update(mirror=mirror_number(1, 1), version=4, triggers=[], pixels=[], traces=[])
    commands = []
    for current in list(oracle.CLASSES) + [-1, 14, 100]:
        for label in list(oracle.LABELS) + [-1, 7, 98]:
            commands += [{"op": "set_class", "value": current},
                         {"op": "add", "event": dict(event, label=label), "force": True}]
    pair.check(commands)


def test_every_name(pair):
    pair.check([{"op": "verbose", "value": value} for value in range(-3, 103)])


def test_bits_of_every_mirror_id(pair):
    pair.check([{"op": "set", "name": name, "value": 0, "id": id} for name, ids in
                (("SetMirrorPresent", (1, 3, 6)), ("SetMirrorDataPresent", (2, 5))) for id in ids]
               + [{"op": "get", "name": name, "id": id} for name in oracle.BITS for id in [*range(70), 2**32 - 1]])


def test_of_equal_times_the_lower_mirror_is_the_earliest(pair):
    both = [{"op": "set", "name": "SetMirrorDataPresent", "value": 0, "id": id} for id in (1, 2)]
    pair.check(both + [command for nsec in (9, 5) for command in (
        {"op": "set_raw_time", "id": 1, "sec": 10**9, "nsec": nsec},
        {"op": "set_raw_time", "id": 2, "sec": 10**9, "nsec": 5}, {"op": "adjust"})])


@examples(400)
@given(several(add_bare, times, parameters, parameters, corrections, corrections, level, gets, most=12), levels)
def test_time_correction(pair, commands, level):
    pair.check(commands, level)


@examples(300)
@given(several(sets, sets, gets, times, write_header, level, most=12), levels)
def test_values_by_mirror(pair, commands, level):
    pair.check(commands, level)


@examples(400)
@given(reads, levels)
def test_old_header(pair, command, level):
    pair.check([command], level)


@examples(300)
@given(several(reads, reads, parameters, corrections, add_bare, write_header, level), levels)
def test_old_header_into_a_used_one(pair, commands, level):
    pair.check(commands, level)


@examples(200)
@given(several(list_reads, list_reads, add, walk, level), levels)
def test_old_pixel_list(pair, commands, level):
    pair.check(commands, level)


def test_pixels_around_the_end_of_a_vector(pair):
    for length, pixels in ((3, (90, 95, 96, 97, 1999, 2000)), (90, (2879, 2880)), (91, (2879, 2880))):
        pair.check([read_list(2, 0, 2**2912 - 1 if length > 90 else 0, 0, length=length)]
                   + [{"op": name, "pixel": pixel} for name in ("add_pixel", "test_pixel", "remove_pixel", "test_pixel")
                      for pixel in pixels])


@examples(400)
@given(several(pixel_calls, pixel_calls, pixel_calls, walk, list_reads, level, most=16), levels)
def test_pixel_list(pair, commands, level):
    pair.check(commands, level)


@examples(300)
@given(several(anything, most=12), levels)
def test_anything(pair, commands, level):
    pair.check(commands, level)
