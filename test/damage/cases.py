"""The damage that is tried: for each kind, the files that it makes out of good ones."""

import random
import struct

import surgery

HEADER_BYTES = 100


def cuts_at_edges(good, _, __):
    places = {edge + step for edge in surgery.edges(good) for step in (-1, 0, 1)}
    for place in sorted(p for p in places if p < len(good)):
        yield f"cut to {place}", surgery.cut(good, place)


def cuts_anywhere(good, _, chance):
    for place in chance.sample(range(1, len(good)), 500):
        yield f"cut to {place}", surgery.cut(good, place)


def flips_in_header(good, _, chance):
    for place in range(HEADER_BYTES):
        for mask in (0xFF, 1 << chance.randrange(8)):
            yield f"byte {place} xor {mask}", surgery.flip(good, place, mask)


def flips_anywhere(good, _, chance):
    for place in chance.sample(range(HEADER_BYTES, len(good)), 200):
        mask = 1 << chance.randrange(8)
        yield f"byte {place} xor {mask}", surgery.flip(good, place, mask)


def flips_outside_traces(good, _, chance):
    """Most bytes are of traces; these are all the others."""
    traces = surgery.baskets(good, "fFADCData")
    places = [p for p in range(HEADER_BYTES, len(good)) if not any(t.contents <= p < t.end for t in traces)]
    for place in chance.sample(places, 600):
        mask = 1 << chance.randrange(8)
        yield f"byte {place} xor {mask}", surgery.flip(good, place, mask)


def flips_in_keys(good, _, chance):
    """Each byte of the keys of the tree, a run record, and one basket of each branch."""
    seen = set()
    for record in surgery.records(good):
        if (record.class_name, record.name) in seen:
            continue
        seen.add((record.class_name, record.name))
        for place in range(record.start, record.contents):
            mask = 1 << chance.randrange(8)
            yield f"byte {place} xor {mask}", surgery.flip(good, place, mask)


def lost_blocks(good, _, __):
    for start in range(0, len(good), 4096):
        yield f"zeros at {start}", surgery.zero(good, start, 4096)


def keys_outside(good, _, __):
    for name in ("RunHeader", "RunTrailer", "StnEventTree"):
        for place in (0, 1, len(good) - 1, len(good), len(good) + 1000, 2**31 - 1, -1, -(2**31)):
            yield f"{name} at {place}", surgery.point_outside(good, name, place)


def keys_of_other_lengths(good, _, __):
    for name in ("RunHeader", "RunTrailer", "StnEventTree"):
        for length in (0, 1, 20, 10**6, 2**31 - 1, -1):
            for object_length in (0, 1, 100, 2 * 10**9, -1):
                yield f"{name} {length} {object_length}", surgery.resize_listed(good, name, length, object_length)


def records_of_other_lengths(good, _, __):
    for record in surgery.records(good):
        for length in (0, 1, record.key_length, record.length - 1, record.length + 1, len(good), 2**31 - 1, -1, -(2**31)):
            yield f"record at {record.start} of {length}", surgery.lengthen_key(good, record, length)


def foreign_baskets(good, _, __):
    all_baskets = [record for record in surgery.records(good) if record.class_name == "TBasket"]
    for record in all_baskets:
        for donor in all_baskets:
            if donor.name != record.name:
                yield f"{donor.name} for {record.name} at {record.start}", surgery.transplant(good, record, donor)


def mixed_runs(good, other, _):
    branches = sorted({record.name for record in surgery.records(good) if record.class_name == "TBasket"})
    for branch in branches:
        yield f"{branch} of another run", surgery.mix_baskets(good, other, branch)
    for edge in surgery.edges(good)[1:-1]:
        yield f"another run from {edge}", surgery.mix(good, other, edge)


def not_station_files(good, _, chance):
    yield "empty", b""
    yield "text", b"not what you are looking for\n"
    yield "four letters", b"root"
    yield "zeros", bytes(len(good))
    yield "noise", chance.randbytes(len(good))
    yield "header and noise", good[:HEADER_BYTES] + chance.randbytes(len(good))
    yield "header and zeros", good[:HEADER_BYTES] + bytes(len(good))
    yield "twice", good + good
    yield "end of 2^62", good[:4] + struct.pack(">iiqq", 1063230, 100, 2**62, 2**62) + good[28:]


KINDS = {
    "cut at each edge of a record, one byte before and after": cuts_at_edges,
    "cut anywhere": cuts_anywhere,
    "bytes of the file's header flipped": flips_in_header,
    "bits flipped anywhere": flips_anywhere,
    "bits flipped outside the traces": flips_outside_traces,
    "bits flipped in keys": flips_in_keys,
    "4096 bytes lost": lost_blocks,
    "keys that point outside": keys_outside,
    "keys of other lengths": keys_of_other_lengths,
    "records of other lengths": records_of_other_lengths,
    "baskets of another branch": foreign_baskets,
    "two runs mixed": mixed_runs,
    "no station file": not_station_files,
}


def make(kind, good, other, seed):
    """Pairs of a description and the contents of a damaged file."""
    yield from KINDS[kind](good, other, random.Random(f"{seed} {kind}"))
