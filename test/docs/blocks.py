"""The code blocks of the handbook's pages, compiled and run as a reader would.

    blocks.py program PAGE...       prints one C++ program with all cpp blocks, each run by its name
    blocks.py run PROGRAM PAGE...   runs all blocks, each page in a folder of its own with a simulated `run.root`

A cpp block with `main` is taken as it is, another one as the body of a function. The python blocks of a page are one script, which
runs after its other blocks. A block `output` is what the block before it prints, but for blanks at the ends of lines.

Two comments are for blocks only and not seen by readers: `<!-- with ... -->` is code that stands before the next block, and
`<!-- not run: ... -->` tells why the next block can't be run here.
"""

import dataclasses
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap

BLOCK = re.compile(
    r"(?:^[ ]*<!-- (?P<kind>with|not run:)\s(?P<comment>.*?)-->\s*?\n)?"
    r"(?P<fence>[ ]*```)(?P<language>\w*)[^\n]*\n(?P<code>.*?)^(?P=fence)$",
    re.DOTALL | re.MULTILINE,
)
# Pictures made of letters.
NO_CODE = ("", "text")
SEPARATOR = "\x1e"


@dataclasses.dataclass
class Block:
    place: str
    name: str
    language: str
    code: str
    reason: str = ""
    expected: str | None = None


def read_blocks(page):
    """The blocks of a page, those of output with the block before them."""
    text = page.read_text(encoding="utf-8")
    blocks = []
    for number, match in enumerate(BLOCK.finditer(text)):
        place = f"{page.name}:{text.count(chr(10), 0, match.start('fence')) + 1}"
        code = textwrap.dedent(match["code"])
        if match["language"] in NO_CODE:
            continue
        if match["language"] == "output":
            blocks[-1].expected = code
            continue
        comment = textwrap.dedent(match["comment"] or "")
        reason = comment.strip() if match["kind"] == "not run:" else ""
        before = comment if match["kind"] == "with" else ""
        name = re.sub(r"\W", "_", f"{page.stem}_{number}")
        blocks.append(Block(place, name, match["language"], before + code, reason))
    return blocks


def program(pages):
    """All cpp blocks as one source."""
    blocks = [block for page in pages for block in read_blocks(page) if block.language == "cpp" and not block.reason]
    includes, bodies = [], []
    for block in blocks:
        lines = block.code.splitlines()
        own = [line for line in lines if line.startswith("#include")]
        code = "\n".join(line for line in lines if not line.startswith("#include"))
        if "int main()" in code:
            code = code.replace("int main()", f"int {block.name}()")
        else:
            code = f"int {block.name}() {{\n{code}\nreturn 0;\n}}"
        # Not every ROOT has data frames.
        guard = any("<StnFrame/" in line for line in own)
        includes += [line for line in own if not guard and line not in includes]
        head = "\n".join(own) if guard else ""
        row = f'{{"{block.name}", {block.name}}},'
        bodies.append((guard, head, f"namespace {{\n#line 1 \"{block.place}\"\n{code}\n}}", row))
    guarded = lambda guard, text: f"#ifdef STN_HAS_FRAMES\n{text}\n#endif" if guard and text else text
    return "\n".join(
        [*includes, "#include <cstring>", *(guarded(guard, head) for guard, head, _, _ in bodies),
         *(guarded(guard, body) for guard, _, body, _ in bodies),
         "const struct { const char* fName; int (*fRun)(); } kBlocks[] = {",
         *(guarded(guard, row) for guard, _, _, row in bodies), "};",
         "int main(int, char** argv) {",
         "  for (const auto& block : kBlocks)",
         "    if (std::strcmp(block.fName, argv[1]) == 0) return block.fRun();",
         "  return 0;", "}", ""])


def strip(text):
    return "\n".join(line.rstrip() for line in text.strip().splitlines())


class Failed(Exception):
    pass


def run(command, place, folder):
    done = subprocess.run(command, cwd=folder, capture_output=True, text=True, timeout=300)
    if done.returncode != 0:
        raise Failed(f"{place}: exit code {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def compare(block, found):
    if block.expected is not None and strip(found) != strip(block.expected):
        raise Failed(f"{block.place}: expected output\n{strip(block.expected)}\nfound\n{strip(found)}")


def run_scripts(blocks, folder):
    code = f"\nprint({SEPARATOR!r})\n".join(block.code for block in blocks)
    # A script in a file, as workers of other processes import it anew.
    (folder / "script.py").write_text(code, encoding="utf-8")
    outputs = run([sys.executable, "-W", "ignore", "script.py"], f"{blocks[0].place} and after it", folder)
    for block, found in zip(blocks, outputs.split(SEPARATOR + "\n"), strict=True):
        compare(block, found)


def run_page(page, handbook, folder):
    commands = {"sh": lambda block: ["bash", "-euc", block.code], "cpp": lambda block: [handbook, block.name]}
    scripts, count = [], 0
    blocks = read_blocks(page)
    if blocks:
        run(["stn-simulate", "--events", "40", "run.root"], "the simulated run", folder)
    for block in blocks:
        if block.reason:
            print(f"{block.place}: not run: {block.reason}")
            continue
        count += 1
        if block.language == "python":
            scripts.append(block)
        elif block.language in commands:
            compare(block, run(commands[block.language](block), block.place, folder))
        else:
            raise Failed(f"{block.place}: nobody can run {block.language}; say why in a comment before it")
    if scripts:
        run_scripts(scripts, folder)
    return count


def run_pages(handbook, pages):
    failures = 0
    for page in pages:
        with tempfile.TemporaryDirectory() as folder:
            try:
                print(f"{page.name}: {run_page(page, handbook, pathlib.Path(folder))} blocks")
            except Failed as failure:
                print(failure)
                failures += 1
    return failures


def main(command, *arguments):
    if command == "program":
        print(program([pathlib.Path(page) for page in arguments]))
        return 0
    return 1 if run_pages(os.path.abspath(arguments[0]), [pathlib.Path(page) for page in arguments[1:]]) else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
