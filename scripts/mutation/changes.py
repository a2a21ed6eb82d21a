"""The small changes that scripts/mutate makes to the lines of a file."""

import collections
import pathlib
import re

EQUIVALENT = "scripts/mutation/equivalent"

# One change: lines first..last (from 0) of a file become one line.
Change = collections.namedtuple("Change", "file first last old new")

# Replacements of one token. Binary operators have blanks on both sides, template brackets do not.
SWAPS = [
    (" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > "),
    (" == ", " != "), (" != ", " == "), (" + ", " - "), (" - ", " + "),
    (" * ", " / "), (" / ", " * "), (" % ", " / "), (" += ", " -= "), (" -= ", " += "),
    (" && ", " || "), (" || ", " && "), (" & ", " | "), (" | ", " & "),
    (" << ", " >> "), (" >> ", " << "), ("++", "--"), ("--", "++"),
    ("true", "false"), ("false", "true"),
]
NUMBER = re.compile(r"(?<![\w.])(?:0x([0-9a-f]+)|(\d+))(\.\d+)?(?=[uf]?\b)(?![\w.]*\()")
CONSTANT = re.compile(r"\bk[A-Z]\w+(?!\[?\]? = )\b")
ARGUMENTS = re.compile(r"(?<=[(, ])([\w.]+), ([\w.]+)(?=[,)])")
BRANCHES = re.compile(r" \? ([\w.:]+) : ([\w.:]+)")
# Statements that are not dropped: the code would not build, or have no defined behaviour. The last
# two are declarations of variables and of functions.
KEPT = re.compile(r"\s*(?=\S)(?:(?:return|using|static_assert|extern|constexpr|const|class|struct|enum)\b|[}]|"
                  r"[^;]* = (?:delete|default);|"
                  r"(?!delete|throw)[\w:<>,*& ]+[ *&]\w+(?:\[\w*\])?(?: = .*)?;|"
                  r"(?!delete|throw)[\w:<>,*& ]+[ *&]\w+\((?:\)|[^()]*\w[*&]* [*&]*\w[^()]*\))[^=]*;|"
                  r"\w+\([^()]*\w[*&]* [*&]*\w[^()]*\);)", re.DOTALL)


def masked(lines):
    """Returns the lines with comments, strings and characters blanked, of the same lengths."""
    blank = lambda match: re.sub(r"[^\n]", " ", match.group())
    text = re.sub(r'/\*.*?\*/|//[^\n]*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', blank,
                  "\n".join(lines), flags=re.DOTALL)
    return text.split("\n")


def statements(code):
    """Yields the first and last line of each statement that ends with a semicolon."""
    first = 0
    for last, line in enumerate(code):
        end = line.rstrip()[-1:]
        if end == ";":
            span = "\n".join(code[first:last + 1])
            if span.count("(") == span.count(")") and span.count("{") == span.count("}"):
                yield first, last
        if end in ("", ";", "{", "}", ":") or line.startswith("#"):
            first = last + 1


def serializing_lines(code):
    """Returns the lines whose order of members does not matter: they are written and read in it."""
    found, previous = set(), range(0)
    for first, last in statements(code):
        if code[first].lstrip().startswith("archive("):
            found.update(previous, range(first, last + 1))
        previous = range(first, last + 1)
    return found


def edits(line, code, constants, swaps_arguments):
    """Yields the changes within one line; `code` is the masked line."""
    for old, new in SWAPS:
        for match in re.finditer(r"(?<!\w)%s(?!\w)" % old if old.isalpha() else re.escape(old), code):
            yield line[:match.start()] + new + line[match.end():]
    for match in NUMBER.finditer(code):
        digits = match.group(1) or match.group(2)
        number = int(digits, 16 if match.group(1) else 10)
        changed = 0 if number == 1 else number + 1
        text = ("0x%x" if match.group(1) else "%d") % changed + (match.group(3) or "")
        yield line[:match.start()] + text + line[match.end():]
    for match in CONSTANT.finditer(code):
        family = re.match(r"k[A-Z][a-z]*", match.group()).group()
        others = [name for name in constants if name != match.group()]
        others = [name for name in others if name.startswith(family)] or others
        if others:
            other = min(others, key=lambda name: (name < match.group(), name))
            yield line[:match.start()] + other + line[match.end():]
    for match in ARGUMENTS.finditer(code) if swaps_arguments else ():
        if re.search(r"(min|max|checkedAdd)(<\w+>)?\($", code[:match.start()]):
            continue
        swapped = line[match.start(2):match.end(2)] + ", " + line[match.start(1):match.end(1)]
        yield line[:match.start()] + swapped + line[match.end():]
    for match in BRANCHES.finditer(code):
        yield "%s ? %s : %s%s" % (line[:match.start()], match[2], match[1], line[match.end():])
    for match in re.finditer(r"!(?=[\w(*:])", code):
        yield line[:match.start()] + line[match.end():]
    for match in re.finditer(r"\b(?:if|while) \(", code):
        depth, end = 1, match.end()
        while end < len(code) and depth:
            depth += {"(": 1, ")": -1}.get(code[end], 0)
            end += 1
        if depth == 0:
            condition = line[match.end():end - 1]
            if " == " in condition or " != " in condition or condition.startswith("!"):
                if "||" not in condition and "&&" not in condition:
                    continue  # the same as another change
            yield line[:match.end()] + "!(" + condition + ")" + line[end - 1:]


def ends_switch(code, first, last):
    """Returns true for the last statement of a switch if it is only a break, which does nothing."""
    return (code[first].strip() == "break;" and code[first - 1].rstrip().endswith(":")
            and code[last + 1].strip() == "}")


def changes_of(file):
    lines = pathlib.Path(file).read_text().split("\n")
    code = masked(lines)
    constants = sorted(set(CONSTANT.findall("\n".join(code))))
    serializing = serializing_lines(code)
    found = {}
    for first, last in statements(code):
        if not KEPT.match(code[first]) and not ends_switch(code, first, last):
            found[first, last, ""] = None
    for number, line in enumerate(lines):
        if re.match(r"\s*(#|static_assert|namespace|using|template)", code[number]):
            continue
        for new in edits(line, code[number], constants, number not in serializing):
            if new != line:
                found[number, number, new] = None
    return [Change(file, first, last, "\n".join(lines[first:last + 1]), new)
            for first, last, new in sorted(found)]


def read_equivalent():
    """Returns the listed changes as (file, old, new), without indentation."""
    listed, file = set(), None
    old = []
    for line in pathlib.Path(EQUIVALENT).read_text().split("\n"):
        if line.startswith("- "):
            old.append(line[2:])
        elif line.startswith("+"):
            listed.add((file, " ".join(old), line[2:].strip()))
            old = []
        elif line and not line.startswith("#"):
            file = line
    return listed


def key_of(change):
    squeeze = lambda text: " ".join(text.split())
    return change.file, squeeze(change.old), squeeze(change.new)
