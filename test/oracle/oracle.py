"""The event model once more, in few words: merging of mirror events, event classes, time correction, old records.

`Oracle` takes the commands that the driver takes and gives the answers that the library has to give. What depends on
the library's source text alone, the line numbers of debug messages, stands as "#".
"""
import calendar
import struct

MIRRORS = range(1, 7)
BILLION = 1_000_000_000


def u32(value):
    return value & 0xFFFFFFFF


def i32(value):
    return u32(value + 0x80000000) - 0x80000000


def f32(value):
    return struct.unpack("f", struct.pack("f", value))[0]


def float_of(bits):
    return struct.unpack("<f", struct.pack("<I", bits))[0]


def bits_of(value):
    """A float as its bits. One NaN is as good as another."""
    return "nan" if value != value else struct.unpack("<I", struct.pack("<f", value))[0]


# ---- time

EPOCH = 315964800  # GPS second 0 in Unix seconds
LEAPS = [calendar.timegm((year, month, 1, 0, 0, 0)) for year, month in (
    (1981, 7), (1982, 7), (1983, 7), (1985, 7), (1988, 1), (1990, 1), (1991, 1), (1992, 7), (1993, 7),
    (1994, 7), (1996, 1), (1997, 7), (1999, 1), (2006, 1), (2009, 1), (2012, 7), (2015, 7), (2017, 1))]


def unix_of(gps):
    if gps + EPOCH >= 2**32:
        return gps + EPOCH - 2**32
    return gps + EPOCH - sum(gps + EPOCH > leap + n for n, leap in enumerate(LEAPS))


def gps_of(unix):
    return u32(u32(unix) - EPOCH + sum(u32(unix) >= leap for leap in LEAPS))


def stamp(unix, nsec):
    carry, nsec = divmod(i32(nsec), BILLION)
    return [i32(unix + carry), nsec]


def stamp_of_gps(sec, nsec):
    return stamp(unix_of(sec), nsec)


ZERO_STAMP = stamp_of_gps(0, 0)

# ---- the header: name, kind, length, first version on file, last version after whose reading it is emptied.
# Kinds are those of struct, T for a time stamp, W for 64 bits kept as two 32-bit words, the low one first.
# The ones in COUNTED have their length before them in version 4.

NEVER = -2**15
FIELDS = (
    ("fStreamerVersion", "h", 0, None, NEVER),
    ("fEventNumber", "I", 0, 4, NEVER),
    ("fStnNumber", "B", 0, 4, NEVER),
    ("fEventClass", "i", 0, 4, NEVER),
    ("fEventType", "i", 0, 4, NEVER),
    ("fMirrorDataBits", "B", 0, 4, NEVER),
    ("fMirrorStatus", "B", 0, 4, NEVER),
    ("fRunNo", "I", 0, 4, NEVER),
    ("fTriggerSource", "B", 6, 4, NEVER),
    ("fStatusBits", "I", 0, 7, 6),
    ("fTimeStamp", "T", 0, 4, NEVER),
    ("fSecStartOffset", "h", 0, None, NEVER),
    ("fSecEndOffset", "h", 0, None, NEVER),
    ("fTicksPerSecond", "I", 0, None, NEVER),
    ("fPPSPhase", "I", 0, None, NEVER),
    ("fTimeCorrectionQuality", "i", 0, 6, NEVER),
    ("fT10Mhz", "f", 0, 4, NEVER),
    ("fOffset", "f", 0, 4, NEVER),
    ("fMirrorTimeOffset", "I", 6, 4, NEVER),
    ("fRawMirrorTime", "T", 6, 4, NEVER),
    ("fTriggerTimeStamp", "I", 6, 6, 5),
    ("fDeadTimeCounter", "W", 6, 4, NEVER),
    ("fVetoTimeCounter", "W", 1, 4, NEVER),
    ("fRunTimeCounter", "Q", 6, 9, NEVER),
    ("fStnDaqDeadTime", "Q", 0, 7, 6),
    ("fMirrorDaqDeadTime", "Q", 6, 7, 6),
    ("fMirrorNSkippedTriggers", "I", 6, 7, 6),
    ("fMirrorEventLabel", "i", 6, 8, 7),
    ("fT3Id", "H", 0, 4, 6),
    ("fT3TimeAtGround", "T", 0, 4, 6),
    ("fNRejectedT3", "I", 0, 7, 6),
    ("fTotalT3DeadTime", "f", 0, 7, 6),
)
STAMP = 14  # bytes of a time stamp with its frame
FRAME = 6  # bytes of the count and the version before each record
COUNTED = ("fTriggerSource", "fMirrorTimeOffset", "fDeadTimeCounter", "fVetoTimeCounter")
CLASS_VERSION = 10


def on_file(version):
    return [field for field in FIELDS if field[3] and field[3] <= version]


def empty(kind, length):
    one = list(ZERO_STAMP) if kind == "T" else 0.0 if kind == "f" else 0
    return [one] * length if length else one


def new_header(station):
    header = {name: empty(kind, length) for name, kind, length, _, _ in FIELDS}
    return dict(header, fStnNumber=station, fTicksPerSecond=80_000_000, fTimeCorrectionQuality=-1, fUniqueID=0)


def framed(version, body, hidden=0):
    return struct.pack(">Ih", 0x40000000 | len(body) + 2 - hidden, version) + body


def root_object(unique_id=0, bits=0):
    return struct.pack(">hII", 1, unique_id, bits)


def encode_value(kind, value):
    if kind == "T":
        return framed(1, struct.pack(">ii", *value))
    if kind == "W":
        return struct.pack(">II", u32(value), value >> 32)
    return struct.pack(">" + kind, value)


def count_of(kind, length):
    return length * (2 if kind == "W" else 1)


def encode_header(version, header, counts={}, extra=b"", hidden=0):
    """A whole record, with counts in place of true ones where `counts` has some, and `extra` at its end, of which the
    frame does not count the last `hidden` bytes."""
    body = root_object(header["fUniqueID"])
    for name, kind, length, _, _ in on_file(version):
        if version == 4 and name in COUNTED:
            body += struct.pack(">i", counts.get(name, count_of(kind, length)))
        body += b"".join(encode_value(kind, value) for value in (header[name] if length else [header[name]]))
    return framed(version, body + extra, hidden)


class Misfit(Exception):
    """Something in a record does not fit."""


class Reader:
    def __init__(self, data, position):
        self.data, self.position = data, position

    def take(self, form):
        values = struct.unpack_from(">" + form, self.data, self.position)
        self.position += struct.calcsize(">" + form)
        return values if len(values) > 1 else values[0]

    def expect(self, name, expected, found=None, what="bytes"):
        left = len(self.data) - self.position
        if (left < expected if found is None else found != expected):
            raise Misfit(f"{name}: found {left if found is None else found} {what}, expected {expected}")

    def frame(self):
        count, version = self.take("Ih")
        if version <= 0:
            self.take("I")  # where ROOT has a checksum
        return count & ~0x40000000, version

    def value(self, kind):
        if kind == "T":
            return list(self.take("Ihii")[2:])
        if kind == "W":
            low, high = self.take("II")
            return high << 32 | low
        return self.take(kind)


# ---- names and classes

CLASSES = {
    0: "'Unclassified'", 1: "'NoPhys'", 2: "'Large Event'", 3: "'Unhandled Signature'", 4: "'Empty'", 5: "'Muon'",
    6: "'Long Muon'", 7: "'Close Shower'", 8: "'Noise'", 9: "'Muon + Noise'", 10: "'Veto'", 11: "'Shower Candidate'",
    12: "'Horizontal Shower'", 13: "'Shower'", 90: "'UBA T3 noise'", 91: "'User defined 2'", 92: "'User defined 3'",
    93: "'User defined 4'", 98: "'Rejected'", 99: "'Invalid event class'"}
TYPES = {
    0: "'Unknown'", 1: "'Physics - Int or L/R trigger'", 2: "'Calibration - Ext trigger'",
    3: "'Simulated - Sw trigger'", 4: "'Laser Offset'", 5: "'Flasher Offset'", 6: "'Calibration Offset'",
    7: "'Lidar Offset'", 8: "'APF Offset'", 9: "'Invalid'"}
QUALITIES = {-1: "'NotSet'", 0: "'Unknown'", 1: "'Averaged'", 2: "'Full'"}
MIRROR_TYPES = {0: 0, 1: 1, 2: 2, 3: 3, 4: 1, 5: 1, 6: 1, 7: 1, 8: 1}
LABELS = {0: "Unlabelled", 1: "AcceptedEvent", 2: "MuonEvent", 3: "ShowerCandidate", 4: "ShowerEvent", 5: "RandomEvent",
          6: "ManyPixelEvent", 99: "Rejected"}

# By class, the class that each label makes of it.
LABEL_CLASSES = {initial: dict(zip(LABELS, final)) for initial, final in {
    0: (0, 3, 5, 11, 13, 8, 2, 98),
    3: (3, 3, 5, 11, 13, 8, 2, 3),
    5: (5, 5, 5, 11, 13, 9, 5, 5),
    9: (9, 9, 9, 11, 13, 9, 9, 9),
    11: (11, 11, 11, 11, 13, 11, 11, 11),
    13: (13, 13, 13, 13, 13, 13, 13, 13),
    8: (8, 3, 5, 11, 13, 8, 2, 8),
    2: (2, 2, 2, 11, 13, 2, 2, 2),
    98: (0, 3, 5, 11, 13, 8, 2, 98)}.items()}

# ---- accessors by mirror: member, text before a bad id, text after it

PASSED = ") - illegal Mirror id passed !"
SETTERS = {
    "SetMirrorPresent": ("fMirrorStatus", "(", PASSED),
    "SetMirrorDataPresent": ("fMirrorDataBits", "(", PASSED),
    "SetMirrorNSkippedTriggers": ("fMirrorNSkippedTriggers", "(", PASSED),
    "SetMirrorEventLabel": ("fMirrorEventLabel", "(", PASSED),
    "SetMirrorDaqDeadTime": ("fMirrorDaqDeadTime", "(", PASSED),
    "SetDeadTimeCounter": ("fDeadTimeCounter", "(,", PASSED),
    "SetRunTimeCounter": ("fRunTimeCounter", "(,", PASSED),
    "SetTriggerSource": ("fTriggerSource", "(,", PASSED),
    "SetTriggerTimeStamp": ("fTriggerTimeStamp", "(", PASSED),
}
GETTERS = {
    "GetDeadTimeCounter": ("fDeadTimeCounter", "(", PASSED),
    "GetRunTimeCounter": ("fRunTimeCounter", "(", PASSED),
    "GetTriggerTimeStamp": ("fTriggerTimeStamp", "(", ") - illegal Mirror id specified !"),
    "GetTriggerSource": ("fTriggerSource", "(", ") - illegal Mirror id specified !"),
    "GetRawMirrorTimeStamp": ("fRawMirrorTime", "(", "): illegal mirror id passed !"),
    "GetMirrorTimeOffset": ("fMirrorTimeOffset", "(", "): illegal mirror id passed !"),
    "GetMirrorNSkippedTriggers": ("fMirrorNSkippedTriggers", "(", "): illegal mirror id passed !"),
    "GetMirrorEventLabel": ("fMirrorEventLabel", "(", "): illegal mirror id passed !"),
    "GetMirrorDaqDeadTime": ("fMirrorDaqDeadTime", "(", "): illegal mirror id passed !"),
}
BITS = {"IsMirrorPresent": "fMirrorStatus", "IsMirrorDataPresent": "fMirrorDataBits"}
STORED = {name: {"B": lambda v: v & 0xFF, "I": u32, "i": i32, "Q": int, "W": int, "T": int}[kind]
          for name, kind, _, _, _ in FIELDS if kind in "BIiQWT"}

# ---- pixel numbers


def stn_pixel_of(mirror, pixel):
    return (mirror - 1) * 480 + pixel if 1 <= mirror <= 6 and 1 <= pixel <= 480 else 0


def vd_pixel_of(word):
    stn, mirror, pixel = word >> 12 & 7, word >> 9 & 7, word & 0x1FF
    place = stn_pixel_of(mirror, pixel)
    return (stn - 1) * 2880 + place if place and 1 <= stn <= 5 else 0


def stamped(word, stn, mirror):
    if not word:
        return 0  # no pixel
    return i32(word & ~0x7E00 | stn << 12 | mirror << 9)


def place_of(pixel):
    """Station pixel of an installation pixel."""
    return (pixel - 1) % 2880 + 1 if 1 <= pixel <= 14400 else 0


class PixelList:
    def __init__(self, station):
        self.streamer_version, self.stn, self.count, self.bits, self.expanded = 0, station - 1, 0, 0, []
        self.size = 90  # words; there is always room for 90

    def is_sound(self):
        return bool(self.expanded) or self.count in (0, bin(self.bits % 2**2880).count("1"))

    def view(self):
        words = [self.bits >> 32 * i & 0xFFFFFFFF for i in range(self.size)]
        return {"fStreamerVersion": self.streamer_version, "fStnNo": self.stn, "fNPixels": self.count,
                "fPixelVector": words}


class Oracle:
    """An event and a log. One `Oracle` stands for one process: some messages come only once."""

    def __init__(self, station):
        self.station, self.warned, self.text, self.out = station, False, "", ""
        self.do_new(level=0)

    def run(self, command):
        arguments = {key: value for key, value in command.items() if key != "op"}
        result = getattr(self, "do_" + command["op"])(**arguments)
        answer = {"result": result, "log": self.text, "out": self.out, "state": self.view()}
        self.text = self.out = ""
        return answer

    def view(self):
        header = self.header and dict(self.header)
        for name, kind, _, _, _ in FIELDS if header else ():
            if kind == "W":
                header[name] = [word for value in header[name] for word in (u32(value), value >> 32)]
            if kind == "f":
                header[name] = bits_of(header[name])
        return {"header": header, "pixel_list": self.list and self.list.view(), "pixel_data": self.data,
                "fadc": self.traces and {"fNTraces": len(self.traces) - 1, "traces": {
                    str(n): trace for n, trace in self.traces.items() if n}},
                "others": False}

    # -- messages

    def say(self, tag, text):
        self.text += tag + ":" + text + "\n"

    def debug(self, source, text, end="\n"):
        self.text += "DBG:StnEvent/src/" + source + ".cc:#: " + text + end

    def note(self, tag, text):
        if self.level:
            self.say(tag, text)

    def is_mirror(self, call, id, before, after):
        if id not in MIRRORS:
            self.say("ERR", "TStnEventHeader::" + call + before + str(id) + after)
        return id in MIRRORS

    # -- parts that come into being

    def get_header(self):
        self.header = self.header or new_header(self.station)
        return self.header

    def get_list(self):
        if not self.list:
            self.list = PixelList(self.station)
            if self.level > 1:
                self.debug("StnPixelList", "Vd::kSTN_NEXTPIXELS= 2880")
                self.debug("StnPixelList", "fPixelVectorSize=    90")
        if 1 <= self.list.streamer_version <= 4:
            number = self.get_header()["fStnNumber"]
            if self.level and not self.warned:
                self.say("WRN", "TStnEvent::GetPixelList() - using workaround for TStnPixelList::fStnNo,\n" + " " * 26
                         + "- setting fStnNo= " + str(number) + " from event header !")
                self.warned = True
            self.set_list_stn(number)
        return self.list

    def set_list_stn(self, number):
        self.note("INF", f"TStnPixelList::SetStnNo({number})")
        if 1 <= number <= 5:
            self.list.stn = number - 1
        else:
            self.say("WRN", f"TStnPixelList::SetStnNo({number}) - StnNo is outside valid range 1 .. 5 !")

    # -- the event itself

    def do_new(self, level):
        self.level, self.header, self.list, self.data, self.traces = level, None, None, None, None
        if level > 1:
            self.debug("StnEvent", "TStnEvent::TStnEvent()")

    def do_level(self, level):
        self.level = level

    def do_add(self, event, force):
        header = self.get_header()
        stn, mirror = (event["mirror"] & 0xFF) >> 5, u32((event["mirror"] & 0x1F) - 1) % 6 + 1
        result = {"added": False, "pixels": event["pixels"], "data_mirror": event["data_mirror"]}
        if self.level:
            self.debug("StnEvent", f"TStnEvent::AddEvent() - adding data from stn= {stn}, mirror= {mirror}")
        if header["fMirrorDataBits"] == 0:
            header["fStnNumber"] = stn
        if header["fStnNumber"] != stn:
            self.say("ERR", f"TStnEvent::AddEvent() - trying to add data from wrong stn {stn} !")
            return result
        if header["fMirrorDataBits"] >> mirror - 1 & 1:
            if not force:
                self.say("ERR", f"TStnEvent::AddEvent() - cannot add data for telescope {mirror} a second time!")
                return result
            self.say("WRN", f"TStnEvent::AddEvent() - adding data for telescope {mirror} again ...")
        self.add_header(event, mirror)
        self.add_pixel_data(event, mirror)
        words = [stamped(word, stn, mirror) for word in event["pixels"]]
        self.get_list()
        self.set_list_stn(stn)
        self.add_pixels(words)
        self.add_traces(event, words, stn, mirror)
        return {"added": True, "pixels": words, "data_mirror": event["mirror"]}

    def add_header(self, event, mirror):
        header = self.header
        self.do_set("SetMirrorPresent", 0, mirror)
        self.do_set("SetMirrorDataPresent", 0, mirror)
        if self.level:
            self.dump_counters(event, mirror)
        for setter, value in (("SetTriggerSource", "source"), ("SetRunTimeCounter", "run"),
                              ("SetDeadTimeCounter", "dead"), ("SetTriggerTimeStamp", "trigger_time"),
                              ("SetMirrorDaqDeadTime", "daq"), ("SetMirrorNSkippedTriggers", "skipped")):
            self.do_set(setter, event[value], mirror)
        header["fVetoTimeCounter"] = [event["veto"]]
        if header["fEventType"] == 0:
            header["fEventType"] = event["type"] if event["type"] <= 3 else 9
        self.do_set("SetMirrorEventLabel", event["label"], mirror)
        self.convert_label(event["label"])
        if event["version"] <= 3:
            self.note("WRN", f"TMirrorEventHeader::Version() = {event['version']} --> old timing format !!!")
            header.update(fT10Mhz=100.0, fOffset=0.0, fTimeCorrectionQuality=2)
        self.put("fRawMirrorTime", mirror, stamp_of_gps(event["sec"], event["nsec"]))
        self.do_adjust()

    def dump_counters(self, event, mirror):
        for text, end in (
                (f"TStnEvent::AddEvent() - Setting TrgSrc & VETO/Dead time for mi_no= {mirror} ...", "\n"),
                ("", ""), (" " * 24 + f"TrgSrc: 0x{event['source']:02x}", ""), ("", ""),
                (f"  RunTime: {event['run']:20}", "\n"), (f" VetoTime: {event['veto']:20}", "\n"),
                (" " * 36 + f" DeadTime: {event['dead']:20}", "\n")):
            self.debug("StnEvent", text, end)

    def convert_label(self, label):
        current = self.header["fEventClass"]
        final = LABEL_CLASSES.get(current, {}).get(label)
        if final is None:
            self.say("ERR", f"Initial StnEvent class= {self.do_verbose(current)[0]}, MrEventLabel= "
                     f"{LABELS.get(label, 'Unknown')} --> final class= ???")
        else:
            self.header["fEventClass"] = final

    def add_pixel_data(self, event, mirror):
        if self.level:
            self.debug("StnEvent", f"TStnEvent::AddEvent() - adding pixel data for Mirror {mirror} ...")
        self.data = self.data or [None] * 6
        if self.data[mirror - 1]:
            self.say("WRN", f"TStnPixelData::AddPixelData() - pixel data for Mirror Id {mirror} has been already "
                     "added, ignored!")
        else:
            self.data[mirror - 1] = {"mirror": event["mirror"], "triggers": event["triggers"]}

    def add_pixels(self, words):
        self.note("INF", f"TMirrorPixelList contains {len(words)} pixels !")
        for pixel in map(vd_pixel_of, words):
            place = place_of(pixel)
            self.add_pixel(pixel)
            self.note("INF", f"TStnPixelList::AddPixelList(seq={self.list.count}): {pixel},{place},"
                      f"{(place - 1) % 480 + 1 if pixel else 0}")

    def add_pixel(self, pixel):
        stn, place = u32(pixel - 1) // 2880 + 1, place_of(pixel)
        mirror = (place + 479) // 480
        self.note("INF", f"TStnPixelList::AddPixel(({stn},{mirror})={mirror},{pixel}) ...")
        if not place:
            return self.say("WRN", f"TStnPixelList::AddPixel() - tried to add illegal pixel {pixel} - ignored!")
        if stn - 1 != self.list.stn:
            return self.say("WRN", f"TStnPixelList::AddPixel() - tried to add pixel {pixel}from illegal Stn {stn} - "
                            "ignored!")
        self.list.expanded = []
        if self.list.bits >> place - 1 & 1:
            return self.say("WRN", f"TStnPixelList::AddPixel({place}) - tried to add pixel again to list - ignored!")
        self.list.bits |= 1 << place - 1
        self.list.count = u32(self.list.count + 1)
        if place > 32 * self.list.size:
            self.list.size = 90

    def add_traces(self, event, words, stn, mirror):
        self.traces = self.traces or {0: None}  # no trace has number 0, and a dictionary with it is true
        records = {trace["pixel"]: dict(trace) for trace in event["traces"]}
        for record in (records.get(word & 0x1FF) for word in words):
            if not record:
                continue
            record.pop("pixel", None)
            record["word"] = stamped(record["word"], stn, mirror)
            place = stn_pixel_of(mirror, record["word"] & 0x1FF)
            if not place:
                self.say("ERR", "TStnFADCData::AddFADCData() - tried to add illegal FADC trace of pixel "
                         f"{record['word'] & 0x1FF}")
            elif place in self.traces:
                self.say("WRN", f"TStnFADCData::AddFADCData() - tried to add trace for pixel {place} again !")
            else:
                self.traces[place] = dict(record)

    # -- the header's operations

    def put(self, member, mirror, value):
        self.header[member] = [value if i + 1 == mirror else old for i, old in enumerate(self.header[member])]

    def do_set(self, name, value, id):
        header = self.get_header()
        if name == "SetTriggerSource" and self.level:
            self.debug("StnEventHeader", f"TStnEventHeader::SetTriggerSource() - src= {u32(value):x}, id= {id}")
        member, before, after = SETTERS[name]
        if not self.is_mirror(name, id, before, after):
            return
        if name.endswith("Present"):
            header[member] |= 1 << id - 1
        else:
            self.put(member, id, STORED[member](value))

    def do_get(self, name, id):
        header = self.get_header()
        if name in BITS:
            return bool(header[BITS[name]] >> (id - 1) % 32 & 1)
        member, before, after = GETTERS[name]
        if not self.is_mirror(name, id, before, after):
            return None if name == "GetRawMirrorTimeStamp" else 0
        if name == "GetRawMirrorTimeStamp" and not header["fMirrorDataBits"] >> id - 1 & 1:
            return None
        return header[member][id - 1]

    def do_set_raw_time(self, id, sec, nsec):
        self.get_header()
        if self.is_mirror("SetRawMirrorTime", id, "(", ",) - illegal Mirror id passed !"):
            self.put("fRawMirrorTime", id, stamp(sec, nsec))

    def do_set_time(self, sec, nsec):
        self.get_header()["fTimeStamp"] = stamp_of_gps(sec, nsec)

    def do_set_t3_time(self, sec, nsec):
        self.get_header()["fT3TimeAtGround"] = stamp_of_gps(sec, nsec)

    def do_set_type(self, value):
        self.get_header()["fEventType"] = value

    def do_set_class(self, value):
        self.get_header()["fEventClass"] = value

    def do_verbose(self, value):
        return [CLASSES.get(value, "'Invalid event class'"), TYPES.get(value, "Invalid Type"),
                QUALITIES.get(value, "'Unknown'"), MIRROR_TYPES.get(value, 0)]

    # -- time correction

    def refuses(self, *tests):
        for value, name, bad in tests:
            if bad:
                self.say("ERR", f"TStnEventHeader::SetTimeCorrectionParameters() - value '{value}' passed for '{name}' "
                         "is not plausible !")
                return True
        return False

    def do_measured(self, start, end, ticks, phase):
        header = self.get_header()
        if not self.refuses((start, "start_offset", not -128 <= start <= 127),
                            (end, "end_offset", not -128 <= end <= 127),
                            (ticks, "ticks_per_sec", not 79_200_000 <= ticks <= 80_800_000),
                            (phase, "phase", phase > 100)):
            header.update(fSecStartOffset=start, fSecEndOffset=end, fTicksPerSecond=ticks, fPPSPhase=phase)
            self.convert()
            header["fTimeCorrectionQuality"] = 1

    def do_derived(self, t10, offset):
        header, t10, offset = self.get_header(), float_of(t10), float_of(offset)
        if not self.refuses((f"{t10:g}", "T10", t10 < 50.0 or t10 > 150.0),
                            (f"{offset:g}", "offset", offset < -128.0 or offset > 227.0)):
            header.update(fT10Mhz=t10, fOffset=offset, fTimeCorrectionQuality=1)

    def convert(self):
        header = self.header
        span = header["fSecEndOffset"] + BILLION - header["fSecStartOffset"]
        header["fT10Mhz"] = f32(span / header["fTicksPerSecond"] * 8.0)
        header["fOffset"] = f32(float(header["fPPSPhase"]) + header["fSecStartOffset"])

    def do_is_set(self):
        header = self.get_header()
        if header["fT10Mhz"] <= 50.0 or header["fT10Mhz"] > 150.0:
            raw = [header[name] for name in ("fSecStartOffset", "fSecEndOffset", "fTicksPerSecond", "fPPSPhase")]
            if raw == [0, 0, 80_000_000, 0]:
                self.note("WRN", "TStnEventHeader::IsTimeCorrectionSet() - raw time correction parameters are set to "
                          "defaults !")
                return False
            self.convert()
        return header["fT10Mhz"] > 50.0

    def do_correct(self, sec, nsec):
        if not self.do_is_set():
            self.note("WRN", "TStnEventHeader::DoTimeCorrection() - excact time calculation is not possible !")
            return [False, u32(sec - 1) if nsec < 0 else sec, u32(nsec + BILLION if nsec < 0 else nsec)]
        t = nsec * self.header["fT10Mhz"] / 100.0 + self.header["fOffset"]
        if t < 0.0:
            sec, t = u32(sec - 1), t + 1e9
        # What no 64-bit integer holds becomes the smallest of them, whose low half is 0.
        return [True, sec, u32(int(t)) if -2.0**63 <= t < 2.0**63 else 0]

    def do_adjust(self):
        header, earliest, first = self.get_header(), [0x7FFFFFFF, 0], 1
        present = [i for i in range(6) if header["fMirrorDataBits"] >> i & 1]
        for i in present:
            if header["fRawMirrorTime"][i] < earliest:
                earliest, first = header["fRawMirrorTime"][i], i
        header["fTimeStamp"] = stamp_of_gps(*self.do_correct(gps_of(earliest[0]), earliest[1])[1:])
        event_sec, event_nsec = gps_of(header["fTimeStamp"][0]), header["fTimeStamp"][1]
        for i in present:
            if i != first:
                raw_sec, raw_nsec = header["fRawMirrorTime"][i]
                _, sec, nsec = self.do_correct(gps_of(raw_sec), raw_nsec)
                self.put("fMirrorTimeOffset", i + 1, u32(nsec - event_nsec + (0 if event_sec >= sec else BILLION)))

    def do_bin_time(self, word, info, bin):
        sec = self.bin_time("GetFADCBinTime", word, info, bin)[0]
        return [sec, self.bin_time("GetFADCBinNanoTime", word, info, bin)[1]]

    def bin_time(self, call, word, info, bin):
        header, n, mirror = self.get_header(), (1000, 2000, 4000, 0)[info >> 24 & 3], word >> 9 & 7
        if bin >= n:
            self.say("ERR", f"TStnEventHeader::{call}() - the specified bin {bin} is not valid !")
            return 0, 0
        if mirror not in MIRRORS:
            return 0, 0
        sec, nsec = header["fRawMirrorTime"][mirror - 1]
        return self.do_correct(gps_of(sec), i32(nsec - 100 * (n - bin)))[1:]

    # -- records

    def do_read_header(self, bytes, offset):
        header, reader = self.get_header(), Reader(bytearray.fromhex(bytes), offset)
        count, version = reader.frame()
        header["fStreamerVersion"] = version
        if self.level:
            self.debug("StnEventHeader", f"TStnEventHeader::Streamer() - R__v= {version} R__s= {offset} R__c= {count}")
        if version == 5 and count != 239:
            self.say("FAT", f"TStnEventHeader::Streamer() - Error: R__c= {count} doesn't match for V5, reading "
                     "aborted!")
            self.out += dump(reader.data[reader.position:offset + 4 + count])
            return min(4 + count, len(reader.data) - offset)
        if version < 4:
            self.say("ERR", f"TStnEventHeader::Streamer() - version {version} not streamable !")
            self.fill_missing(version)
            return reader.position - offset
        fits = self.fits(version, self.read_object, reader)
        if self.level and version <= 8:
            self.debug("StnEventHeader", f"TStnEventHeader::StreamerV{version}() - ")
        if fits:
            self.fits(version, self.read_fields, reader, version)
        self.fill_missing(version)
        return min(4 + count, len(reader.data) - offset)

    def fits(self, version, read, *arguments):
        """Reads until something does not fit; what was read before that stays."""
        try:
            read(*arguments)
            return True
        except Misfit as misfit:
            self.say("ERR", f"TStnEventHeader::StreamerV{version}() - {misfit} !")
            return False

    def read_object(self, reader):
        reader.expect("TObject", 16)  # the most that it can take
        self.header["fUniqueID"] = reader.take("hII")[1]

    def read_fields(self, reader, version):
        for name, kind, length, _, _ in on_file(version):
            if version == 4 and name in COUNTED:
                reader.expect(name, 4)
                reader.expect(name, count_of(kind, length), reader.take("i"), "elements")
            if kind != "T":
                reader.expect(name, struct.calcsize(">" + kind.replace("W", "Q")) * (length or 1))
            for i in range(length or 1):
                if kind == "T":
                    reader.expect(name, STAMP)
                value = reader.value(kind)
                if length:
                    self.put(name, i + 1, value)
                else:
                    self.header[name] = value

    def fill_missing(self, version):
        if version <= 5:
            self.header["fTimeCorrectionQuality"] = 2 if self.do_is_set() else -1
        for name, kind, length, _, cleared in FIELDS:
            if version <= cleared:
                self.header[name] = empty(kind, length)

    def do_write_header(self):
        return encode_header(CLASS_VERSION, self.get_header()).hex()

    def do_read_list(self, bytes, offset):
        pixels, reader = self.get_list(), Reader(bytearray.fromhex(bytes), offset)
        count, version = reader.frame()
        left = len(reader.data) - offset - 4
        if version < 2:
            pixels.streamer_version, count = version, reader.position - offset - 4
            self.say("ERR", "TStnPixelList::Streamer() - version == 1 not streamable !")
        elif count > left:
            self.say("ERR", f"TStnPixelList::Streamer() - byte count: found {count}, expected at most {left}"
                     ", record skipped")
            count = left
        else:
            self.read_list(pixels, reader, version)
        if self.level > 1:
            self.say("INF", f"TStnPixelList::Streamer() - read fStreamerVersion= {pixels.streamer_version}, "
                     f"fStnNo= {pixels.stn}")
        return 4 + count

    def read_list(self, pixels, reader, version):
        reader.take("hII")
        stn = reader.take("I") if version > 2 else pixels.stn
        number, size = reader.take("II")
        if version > 2:
            reader.take("B")
        most = (len(reader.data) - reader.position) // 4
        if size > most:
            return self.say("ERR", f"TStnPixelList::Streamer() - fPixelVectorSize: found {size}, expected at most "
                            f"{most}, record skipped")
        if version == 2:
            self.note("INF", "TStnPixelList::Streamer() - fix for version= 2 !")
        pixels.streamer_version, pixels.stn, pixels.count, pixels.size = version, stn, number, size
        pixels.bits = sum(reader.take("I") << 32 * i for i in range(size))

    def do_add_pixel(self, pixel):
        self.get_list()
        self.add_pixel(pixel & 0x3FFF)

    def do_test_pixel(self, pixel):
        place = place_of(pixel & 0x3FFF)
        return bool(self.get_list().bits >> place & 1) and 0 < place < 32 * self.list.size

    def do_remove_pixel(self, pixel):
        pixels, pixel = self.get_list(), pixel & 0x3FFF
        place = place_of(pixel)
        if not place:
            return self.say("WRN", f"Tried to remove illegal pixel {pixel}")
        if place % 32 == 0 and pixels.bits >> place & 0xFFFFFFFF == 0:
            return self.say("WRN", f"TStnPixelList::RemovePixel({place}): Tried to remove non-existing pixel from the "
                            "list !")
        pixels.bits &= ~(1 << place)
        pixels.count = u32(pixels.count - 1)

    def do_walk(self):
        pixels = self.get_list()
        if pixels.count and not pixels.expanded:
            self.expand(pixels)
        there = pixels.expanded[:pixels.count]
        return [there[i] if i < len(there) else None for i in range(min(pixels.count, 2880) + 1)]

    def expand(self, pixels):
        for i in range(2880):
            if pixels.bits >> i & 1:
                if self.level > 1:
                    self.say("INF", f"Pixel {i} is set !")
                    self.say("INF", f"TStnPixelList:: adding pixel {i} as no. {len(pixels.expanded)}")
                # There are five stations.
                pixels.expanded.append(pixels.stn * 2880 + i + 1 if pixels.stn < 5 else 0)


def encode_list(version, stn, count, size, words):
    body = root_object() + (struct.pack(">I", stn) if version > 2 else b"") + struct.pack(">II", count, size)
    return framed(version, body + (b"\1" if version > 2 else b"") + struct.pack(f">{len(words)}I", *words))


def dump(data):
    lines = ""
    for start in range(0, len(data), 16):
        line = data[start:start + 16]
        lines += "".join(f" {byte:02x}" for byte in line) + "   " * (16 - len(line)) + "   "
        lines += "".join(chr(byte) if 32 <= byte < 127 else "." for byte in line) + "\n"
    return lines + "\n"
