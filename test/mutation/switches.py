"""Puts many mutants of one source into one text, from which the environment variable MUTANT chooses at run time.

Compiling takes longer than most tests. What can't stand in one text with the others, such as a constant that the
compiler has to know, is left out and has to be compiled by itself.
"""
import re

# Each operator becomes two with a switch between them: a < b, for instance, a <Less{1, 2}> b. Operators of the same
# precedence on both sides leave the order of evaluation as it was, but for && and ||, which therefore are not here.
OPERATORS = {"<": ("Less", ["<=", ">="]), "<=": ("LessEqual", ["<", ">"]), ">": ("Greater", [">=", "<="]),
             ">=": ("GreaterEqual", [">", "<"]), "==": ("Equal", ["!="]), "!=": ("NotEqual", ["=="]),
             "+": ("Plus", ["-"]), "-": ("Minus", ["+"]), "*": ("Times", ["/"]), "/": ("Over", ["*"]),
             "%": ("Modulo", ["*"]), "&": ("And", ["|"]), "|": ("Or", ["&"]), "^": ("Xor", ["|"]),
             "<<": ("Left", [">>"]), ">>": ("Right", ["<<"])}
CLOSING = {"<": ">", ">": "<", "<=": ">=", ">=": "<="}  # a < b < c would draw a warning, and < can open a template

# Lines on which the compiler or the preprocessor needs the text as it is.
FIXED = re.compile(r"\bconstexpr\b|\bcase\b|\bassert\(|\benum\b|\btemplate\b|^\s*(static )?const [\w:]+ k[A-Z]|^const |"
                   r"^\s*k[A-Z]\w* = -?\w+(,|$)|^\s*(alignas\(\d+\) )?[\w:]+ \w+\[.*\]( = {})?;|^\s*\w+ \w* ?: \w+;|\busing\b")

PRELUDE = """
#include <cstdlib>
namespace switches {
inline bool IsOn(int id) {
  static const char* mutant = std::getenv("MUTANT");
  static const int active = mutant ? std::atoi(mutant) : 0;
  return active == id;
}
template <class A, class Switch> struct Left_ { A a; Switch s; };
"""


def operator_class(operator):
    name, others = OPERATORS[operator]
    closing = CLOSING.get(operator, operator)
    ids = ", ".join(f"id{i}" for i in range(len(others)))
    branches = "".join(f"  if (IsOn(left.s.id{i})) return decltype(left.a {operator} b)(left.a {other} b);\n"
                       for i, other in enumerate(others))
    return (f"struct {name} {{ int {ids}; }};\n"
            f"template <class A> Left_<A, {name}> operator{operator}(A a, {name} s) {{ return {{a, s}}; }}\n"
            f"template <class A, class B> auto operator{closing}(Left_<A, {name}> left, B b) "
            f"-> decltype(left.a {operator} b) {{\n{branches}  return left.a {operator} b;\n}}\n")


def prelude():
    return PRELUDE + "".join(map(operator_class, OPERATORS)) + "}\n"


def is_switchable(mutant, lines):
    if FIXED.search(lines[mutant.line - 1]):
        return False
    return mutant.kind in ("text", "constant", "statement") or mutant.old in OPERATORS or \
        mutant.old == "!" or mutant.new.startswith("!(")


def insertions(group):
    """Text for the mutants of one place, as (position, length of what is replaced, text)."""
    (_, first), *_ = group
    start, end = first.start, first.end
    on = [f"::switches::IsOn({number})" for number, _ in group]
    if first.kind == "statement":
        return [(start, 0, f"if ({on[0]}) {{}} else ")]
    if first.new.startswith("!("):
        return [(start, 0, f"{on[0]} != bool("), (end, 0, ")")]
    if first.old == "!":
        return [(start, 0, f"{on[0]} != ")]
    if first.kind in ("text", "constant"):
        choice = "".join(f"{is_on} ? {mutant.new} : " for is_on, (_, mutant) in zip(on, group))
        return [(start, end - start, f"({choice}{first.old})")]
    name, others = OPERATORS[first.old]
    numbers = {mutant.new: number for number, mutant in group}
    ids = ", ".join(str(numbers.get(other, -1)) for other in others)
    return [(start, end - start, f"{first.old} ::switches::{name}{{{ids}}} {CLOSING.get(first.old, first.old)}")]


def join(source, numbered):
    """The source with all of these mutants, given as (number, mutant); numbers begin at 1."""
    places = {}
    for number, mutant in numbered:
        places.setdefault((mutant.start, mutant.end, mutant.kind), []).append((number, mutant))
    changes = [change for group in places.values() for change in insertions(group)]
    for position, length, text in sorted(changes, key=lambda c: (c[0], c[1]), reverse=True):
        source = source[:position] + text + source[position + length:]
    return source


def lines_of_errors(messages, path):
    return {int(line) for line in re.findall(rf"{re.escape(str(path))}:(\d+)", messages)}
