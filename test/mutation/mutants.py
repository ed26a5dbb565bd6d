"""Small faults for C++ sources: each is one change of one token, as a careless edit would make it."""
import dataclasses
import re

TOKEN = re.compile(r"""
    (?P<skip>    //[^\n]* | /\*.*?\*/ | ^[ \t]*\#(?:[^\n]*\\\n)*[^\n]* | \b(?:ClassDef\w*|ClassImp|static_assert)\([^;]*)
  | (?P<text>    "(?:\\.|[^"\\])*")
  | (?P<char>    '(?:\\.|[^'\\])+')
  | (?P<number>  \b(?:0[xX][0-9a-fA-F]+|\d+\.?\d*(?:[eE][-+]?\d+)?)(?P<suffix>[uUlLfF]*)\b)
  | (?P<word>    [A-Za-z_]\w*)
  | (?P<operator>(?<=\ )(?:<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|<|>|[-+*/%&|^?])(?=\s)
                | \+\+ | -- | !(?!=) | (?<=[ (])~(?=[\w(]) | [;{}])
""", re.VERBOSE | re.MULTILINE | re.DOTALL)

OPERATORS = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"], "!": [""], "?": ["== 0 ?"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "&": ["|"], "|": ["&"], "^": ["|"], "~": [""],
    "<<": [">>"], ">>": ["<<"], "++": ["--"], "--": ["++"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["*="], "&=": ["|="], "|=": ["&="], "^=": ["|="]}
KINDS = ("comparison", "constant", "text", "operator", "statement")
COMPARISONS = {"<", "<=", ">", ">=", "==", "!=", "&&", "||", "!", "?"}
# A statement with one of these sends text or bytes to a stream, so its arrows shift no bits.
STREAMS = re.compile(r"VD_[A-Z]+ <<|\b(?:ostr|text|out|std::cout|b|buffer) (?:<<|>>)|<< \"")


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str
    start: int
    end: int
    line: int
    kind: str
    old: str
    new: str

    @property
    def name(self):
        return f"{self.file}:{self.line}:{self.start}: {self.old} -> {self.new}"

    def apply(self, source):
        return source[:self.start] + self.new + source[self.end:]


def other_text(text):
    """The same length, another letter in the middle."""
    letters = re.findall(r"\\(?:[0-7]{1,3}|x[0-9a-fA-F]+|.)|[^\\]", text[1:-1])
    if not letters:
        return text[0] + "x" + text[-1]
    middle = len(letters) // 2
    letters[middle] = "y" if letters[middle] == "x" else "x"
    return text[0] + "".join(letters) + text[-1]


def other_numbers(number, suffix):
    digits = number[:len(number) - len(suffix)] if suffix else number
    if re.match(r"0[xX]", number):
        digits = number.rstrip("uUlL")
        return [hex(int(digits, 16) + 1) + number[len(digits):]] + ["0"] * (int(digits, 16) != 0)
    if re.search(r"[.eE]", digits):
        return [repr(float(digits) + 1) + suffix] + ["0." + suffix] * (float(digits) != 0)
    return [str(int(digits) + 1) + suffix] + ["0" + suffix] * (int(digits) != 0)


def make(file, source):
    """All mutants of one file, in order."""
    tokens = list(TOKEN.finditer(source))
    for match in tokens:
        kind, old = match.lastgroup, match.group()
        if kind == "suffix":
            kind = "number"
        start, end = match.span()

        def mutant(kind, new, start=start, end=end, old=old):
            return Mutant(file, start, end, source.count("\n", 0, start) + 1, kind, old, new)

        if kind in ("text", "char"):
            yield mutant("text", other_text(old))
        elif kind == "number":
            yield from (mutant("constant", new) for new in other_numbers(old, match.group("suffix")))
        elif old in ("true", "false"):
            yield mutant("constant", "false" if old == "true" else "true")
        elif kind == "operator" and old in OPERATORS:
            if old in ("<<", ">>") and STREAMS.search(statement_around(source, start)):
                continue
            yield from (mutant("comparison" if old in COMPARISONS else "operator", new) for new in OPERATORS[old])
    yield from conditions(file, source)
    yield from deletions(file, source)


def statement_around(source, place):
    start = max(source.rfind(mark, 0, place) for mark in ";{}") + 1
    return source[start:source.find(";", place)]


def conditions(file, source):
    """Conditions without an operator of their own, turned round."""
    for match in re.finditer(r"\b(?:if|while) \(((?:[^()\n]|\([^()\n]*\)|\((?:[^()\n]|\([^()\n]*\))*\))*)\)", source):
        if re.search(r" (<|<=|>|>=|==|!=|&&|\|\|) |^!|=", match[1]):
            continue
        yield Mutant(file, match.start(1), match.end(1), source.count("\n", 0, match.start()) + 1, "comparison", match[1],
                     f"!({match[1]})")


def deletions(file, source):
    """Assignments and calls of one line, left out."""
    for match in re.finditer(r"^ +(?:\w+\) )?((?!return|const|auto|static|using|delete|VD_)[\w:.>*\[\]()-]+(?: [-+*/%&|^]?= [^;\n]+|\([^;\n]*\)|\+\+)?;)$",
                             source, re.MULTILINE):
        if not re.search(r"[=(]|\+\+|--", match[1]):
            continue
        yield Mutant(file, match.start(1), match.end(1), source.count("\n", 0, match.start(1)) + 1, "statement", match[1], ";")
