"""Files that are undamaged in themselves and yet not what a reader expects, or larger than numbers of 32 bits can tell.

They are made by the program odd_files of a good run; each function yields what was done, and the path of the file, which
the next one may overwrite."""

import os
import subprocess

import surgery

STEP = 1_500_000_000  # bytes from one quarter of a large file to the next
BORDER = 2**31
TREES = ("no-headers", "numbers", "names", "events-for-headers", "one-branch", "many-branches")


def make_odd(programs, kind, out, run, *args):
    subprocess.run([os.path.join(programs, "odd_files"), kind, out, run, *args], check=True)
    return out


def trees(programs, folder, run, _, __):
    """The tree has other branches, or others under the names of ours."""
    odd = os.path.join(folder, "odd.root")
    for kind in TREES:
        yield kind, make_odd(programs, kind, odd, run)
    plain = os.path.join(folder, "plain.root")
    subprocess.run([os.path.join(programs, "stn-simulate"), plain, "-f", "-n", "12", "--compression", "0"], check=True,
                   stdout=subprocess.DEVNULL)  # fmt: skip
    with open(plain, "rb") as file:
        good = file.read()
    for what, (name, other) in {
        "pixel lists and pixel data exchanged": ("fPixelList", "fPixelData"),
        "entries of headers called trigger records": ("TStnEventHeader\0", "TStnTriggerData\0"),
        "description of the headers' class exchanged": ("TStnEventHeader*", "TStnTriggerData*"),
    }.items():
        with open(odd, "wb") as file:
            file.write(surgery.exchange_names(good, name, other))
        yield what, odd


def _stretches(path):
    """The parts of a file with holes that are on disk."""
    with open(path, "rb") as file:
        place, end = 0, os.path.getsize(path)
        while place < end:
            begin = os.lseek(file.fileno(), place, os.SEEK_DATA)
            place = os.lseek(file.fileno(), begin, os.SEEK_HOLE)
            yield begin, place


def _flip(path, place, mask):
    with open(path, "r+b") as file:
        file.seek(place)
        byte = file.read(1)[0]
        file.seek(place)
        file.write(bytes([byte ^ mask]))


def large(programs, folder, run, chance, n_places):
    """Good, with a flipped bit behind the border of 2 GB, and cut there, which is tried most; and large files of nothing."""
    path = make_odd(programs, "large", os.path.join(folder, "large.root"), run, str(STEP))
    yield "good", path
    behind = [place for begin, end in _stretches(path) if begin >= BORDER for place in range(begin, end)]
    for place in chance.sample(behind, n_places // 5):
        mask = 1 << chance.randrange(8)
        _flip(path, place, mask)
        yield f"byte {place} xor {mask}", path
        _flip(path, place, mask)
    for place in sorted(chance.sample(behind, n_places) + [BORDER], reverse=True):
        os.truncate(path, place)
        yield f"cut to {place}", path
    with open(run, "rb") as file:
        good = file.read()
    for what, beginning in {"header and zeros": good[:100], "good and zeros": good}.items():
        with open(path, "wb") as file:
            file.write(beginning)
            file.truncate(2 * STEP)
        yield what, path


KINDS = {"trees of another shape": trees, "files beyond 2 GB": large}
