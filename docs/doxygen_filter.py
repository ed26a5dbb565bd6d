"""Prints a header as Doxygen shall see it: argument, the header.

In our headers a `///` block speaks of every declaration down to the next blank line, a comment behind a member describes it,
and destructors have nothing to tell.
"""

import pathlib
import re
import sys

DECLARATION_AHEAD = re.compile(r"\s+(?!(?:public|protected|private|friend|using|#|//|\}|class \w+;|enum|struct|union))\S")


def with_trailing_text(line):
    """The same line, with what stands behind a member as Doxygen's description of it."""
    line = re.sub(r"^(\s*\} \w+;)$", r"\1  ///< The fields by name.", line)
    return re.sub(r"(\S.*[;,])(\s+)//(?!/)!? ", r"\1\2///< ", line)


def name_for_users(path):
    """How a header is included: without the folder of the sources."""
    library = {"root": "VdRoot"}.get(path.parent.name, path.parent.parent.name)
    return f"{library}/{path.name}"


def filtered(lines, path):
    block, depth, is_shared = [], 0, False
    for line in lines:
        code = re.sub(r'"[^"]*"|//.*', "", line)
        if depth == 0 and line.strip().startswith("///"):
            if is_shared:
                block, is_shared = [], False
            block.append(line)
        elif not line.strip() or line.startswith("#") or line.strip() in ("public:", "protected:", "private:"):
            block, is_shared = [], False
        elif depth == 0 and not line.strip().startswith("//"):
            is_destructor = re.match(r"\s+(virtual )?~", line)
            if is_destructor and (is_shared or not block):
                yield "/// Destructor.\n"
            elif is_shared and block and DECLARATION_AHEAD.match(line):
                yield from block
            elif re.match(r"class \w+[^;]*$", line):
                yield f"/// @headerfile {path.name} <{name_for_users(path)}>\n"
            is_shared = not re.match(r"\s*(class|struct|enum|union|namespace)\b", line)
            if not is_shared:
                block = []
        # Inside a function, or in a declaration of several lines, nothing new is declared.
        if is_shared:
            depth = max(0, depth + code.count("{") + code.count("(") - code.count("}") - code.count(")"))
        yield with_trailing_text(line)


path = pathlib.Path(sys.argv[1])
with open(path, encoding="utf-8") as header:
    sys.stdout.writelines(filtered(header, path))
