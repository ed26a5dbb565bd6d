"""What the handbook says, compared with the sources and with files."""

import pathlib
import re
import unittest

import uproot

SOURCE = pathlib.Path(__file__).resolve().parents[2]
HEADER = "StnEvent/src/StnEventHeader.h"
MIRROR_HEADER = "MrEvent/src/MrEventHeader.h"
# Each page of the handbook tells of these enumerations under this heading.
ENUMERATIONS = {
    "Event classes": (HEADER, "EEventClass"),
    "Event types": (HEADER, "EEventType"),
    "Status bits": (HEADER, "EHeaderStatusBits"),
    "Time correction quality": (HEADER, "ETimeCorrectionQuality"),
    "Mirror labels": (MIRROR_HEADER, "EMrEventLabel"),
    "Trigger sources": (MIRROR_HEADER, "EMiTriggerSource"),
}
TYPES = {
    "UInt_t": "unsigned int",
    "UChar_t": "unsigned char",
    "UShort_t": "unsigned short",
    "Int_t": "int",
    "Float_t": "float",
    "ULong64_t": "unsigned long long",
    "TTimeStamp": "VdRoot::TTimeStamp",
}
# Counters that stand on file as pairs of 32-bit words.
WORD_PAIRS = ("fDeadTimeCounter", "fVetoTimeCounter")
SOURCES_OF_MESSAGES = ("*.cc", "*.h", "*.py", "*.sh")


def read(path):
    return (SOURCE / path).read_text(encoding="utf-8")


def page(name):
    return read(f"docs/{name}.md")


def section(text, heading):
    return text.split(f"\n## {heading}\n")[1].split("\n## ")[0]


def rows(text):
    """Cells of the rows of all tables in a text, without their heads."""
    lines = [line for line in text.splitlines() if line.startswith("|")]
    rules = [i for i, line in enumerate(lines) if set(line) <= set("|- ")]
    return [[cell.strip() for cell in line.strip("|").split(" | ")] for i, line in enumerate(lines)
            if i not in rules and i + 1 not in rules]


def code(cell):
    return re.findall(r"`([^`]+)`", cell)


def fields():
    """The table of header fields: name, since, type, getters, Python."""
    for name, _, _, _, since, kind, getters, column in rows(page("header-fields").split("## Event classes")[0]):
        yield code(name)[0], int(since), code(kind)[0], code(getters), code(column)[0]


def members_on_file(path):
    """Names and types of the members of the event header, by the description in a file."""
    with uproot.open(SOURCE / path) as file:
        (description,) = file.file.streamers["TStnEventHeader"].values()
        return {element.name: element for element in description.elements if element.name != "TObject"}


class HeaderFieldsTest(unittest.TestCase):
    def test_all_fields_on_file_are_in_the_table_in_their_order(self):
        self.assertEqual([field[0] for field in fields()], list(members_on_file("test/golden/run.root")))

    def test_the_types_are_those_on_file(self):
        on_file = members_on_file("test/golden/run.root")
        for name, _, kind, _, _ in fields():
            base, length = re.fullmatch(r"(\w+)(?:\[(\d)\])?", kind).groups()
            element = on_file[name]
            n_values = max(element.member("fArrayLength", none_if_missing=True) or 0, 1)
            found = re.sub(r"\[.*", "", element.typename)
            with self.subTest(name):
                self.assertEqual(found, "unsigned int" if name in WORD_PAIRS else TYPES[base])
                self.assertEqual(n_values, int(length or 1) * (2 if name in WORD_PAIRS else 1))

    def test_each_version_has_the_fields_that_came_until_then(self):
        for version in range(4, 10):
            with self.subTest(version):
                on_file = members_on_file(f"test/old/golden/header-{version}.root")
                self.assertEqual([name for name, since, *_ in fields() if since <= version], list(on_file))

    def test_the_getters_exist(self):
        header = read(HEADER)
        for name, _, _, getters, _ in fields():
            for getter in getters:
                with self.subTest(name):
                    self.assertRegex(header, rf"\b{getter.split('(')[0]}\(")

    def test_the_python_columns_are_those_of_the_python_page(self):
        columns = [code(row[0])[0] for row in rows(section(page("python"), "Columns of the headers"))]
        self.assertEqual([field[-1] for field in fields()], columns)

    def test_the_names_of_values_are_those_of_the_headers(self):
        for heading, (header, enumeration) in ENUMERATIONS.items():
            body = re.search(rf"enum {enumeration}\b[^{{]*{{(.*?)}}", read(header), re.DOTALL)[1]
            with self.subTest(heading):
                told = [(code(row[1])[0], row[0]) for row in rows(section(page("header-fields"), heading))]
                self.assertEqual(told, re.findall(r"(k\w+) = (-?\d+)", body))


class HistoryTest(unittest.TestCase):
    def test_the_newest_version_of_each_class_is_told(self):
        versions = {}
        for header in [*SOURCE.glob("StnEvent/src/*.h"), *SOURCE.glob("MrEvent/src/*.h")]:
            versions |= dict(re.findall(r"ClassDefOverride\((\w+), (\d+)\)", header.read_text(encoding="utf-8")))
        text = page("history")
        told = {}
        for heading in re.findall(r"^## .*`(\w+)`$", text, re.MULTILINE):
            part = re.search(rf"^## .*`{heading}`$(.*?)(?=^## |\Z)", text, re.DOTALL | re.MULTILINE)[1]
            told[heading] = rows(part)[-1][0]
        told |= {code(name)[0]: version for name, version in rows(section(text, "Unchanged so far"))}
        self.assertEqual(told, {name: versions[name] for name in told})
        self.assertEqual(set(told), {name for name in versions if name.startswith("TStn") and versions[name] != "0"}
                         | {"TFADCData", "TMirrorPixelData"})


class TroubleshootingTest(unittest.TestCase):
    @staticmethod
    def sources():
        folders = ("StnEvent/src", "MrEvent/src", "VdUtil/src", "VdUtil/root", "tools/src", "python/src", "python/lib")
        paths = [path for folder in folders for kind in SOURCES_OF_MESSAGES for path in (SOURCE / folder).rglob(kind)]
        text = "\n".join(path.read_text(encoding="utf-8") for path in paths) + read("bootstrap.sh")
        # Texts that go on in the next line of a source.
        return re.sub(r'"\s*(?:<<\s*)?"', "", text)

    def test_every_message_is_one_of_the_sources(self):
        sources = self.sources()
        messages = [code(row[0])[0] for row in rows(page("troubleshooting")) if row[0].startswith("`")]
        self.assertGreater(len(messages), 40)
        for message in messages:
            # What is told and what to do about it can come from two places.
            for text in re.split(r"…|[;:] ", message):
                with self.subTest(message):
                    self.assertTrue(text in sources, f"no source says '{text}'")


class ToolsTest(unittest.TestCase):
    def test_every_program_has_a_section(self):
        programs = re.search(r"foreach\(program ([^)]+)\)", read("tools/CMakeLists.txt"))[1].split()
        programs += re.findall(r"^(stn-\w+) =", read("python/pyproject.toml"), re.MULTILINE)
        self.assertEqual(sorted(re.findall(r"^## (stn-\w+)$", page("tools"), re.MULTILINE)), sorted(programs))


if __name__ == "__main__":
    unittest.main()
