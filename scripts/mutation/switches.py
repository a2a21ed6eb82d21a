"""Writes a source that has each change next to the original code; switch.h selects one at run time.

A statement, and an expression of a condition or an initializer, become

    if (mutation::on(7)) {            if (mutation::on(8) ?
    count -= 1;                       (count <= limit) :
    } else {                          (count < limit)) {
    count += 1;
    }

A constant that gets a switch is no longer `constexpr`. Other code, such as function headers, has no
switch; see `place`.
"""

import collections
import re

from changes import masked

# Offsets in the text of a segment of lines. Kind: "statement", "value", or "step" of a for loop.
Region = collections.namedtuple("Region", "start end kind")

PREFIX = re.compile(r"\s*(?:(?:case\b.*?[^:]|default):(?!:)\s*|else\s+(?!if\b))?")
TYPED = r"(?!(?:return|delete|throw|new|goto|else)\b)[\w:<>,*&\[\] ]+[ *&]+\[?\w[\w\[\], ]*"
INITIALIZED = re.compile(r"(?:%s) =\s+(?!\{)" % TYPED)
DECLARED = re.compile(r"(?:%s)(?:[({;]|=\s)" % TYPED)
NO_CODE = re.compile(r"\s*(?:using|typedef|template|friend|extern|static_assert|namespace|class|struct|enum)\b")
CONTROL = re.compile(r"\s*(?:\} else |else )?(if|while|switch|for) \(")
TOKEN = re.compile(r"[\w:.']+")
# Example: size_t size() const { return mSize; }
FUNCTION_OF_A_LINE = re.compile(r"[^{}]*\)[^(){}]*\{ ([^{}]*;) \}$")


def segments(code):
    """Yields the first and last line of each statement, header of a block, or function of a line."""
    first = 0
    for last, line in enumerate(code):
        end = line.rstrip()[-1:]
        if end in (";", "{", "}") and not line.startswith("#"):
            yield first, last
        if end in ("", ";", "{", "}", ":") or line.startswith("#"):
            first = last + 1


def parts_of_header(text, start):
    """Returns the offsets of the parts between the parentheses, and of the closing one."""
    depth, parts = 0, []
    for position in range(start, len(text)):
        if text[position] in "([{":
            depth += 1
        elif text[position] in ")]}":
            if depth == 0:
                return parts + [(start, position)], position
            depth -= 1
        elif text[position] == ";" and depth == 0:
            parts.append((start, position))
            start = position + 1
    return [], 0


def regions_of_header(text, control):
    parts, close = parts_of_header(text, control.end())
    if text[close + 1:].strip() != "{":
        return
    is_loop = control[1] == "for"
    for index, (start, end) in enumerate(parts):
        start += len(text[start:end]) - len(text[start:end].lstrip())
        declaration = INITIALIZED.match(text, start, end)
        in_range = re.compile(r"[^?:]* : ").match(text, start, end) if is_loop else None
        if declaration or (in_range and len(parts) == 1):
            yield Region((declaration or in_range).end(), end, "value")
        elif start < end:
            yield Region(start, end, "step" if is_loop and index == 2 else "value")


def regions(text):
    """Yields the regions of a segment that can have switches; `text` is masked."""
    text = text.rstrip()
    if "thread_local" in text or NO_CODE.match(text):
        return
    balanced = text.count("(") == text.count(")") and text.count("{") == text.count("}")
    control = CONTROL.match(text)
    if text.endswith("{") and control:
        yield from regions_of_header(text, control)
    elif text.endswith("}") and balanced and "constexpr" not in text:
        body = FUNCTION_OF_A_LINE.match(text)
        if body:
            yield Region(body.start(1), body.end(1), "statement")
    elif text.endswith(";") and balanced:
        start = PREFIX.match(text).end()
        declaration = INITIALIZED.match(text, start)
        if declaration:
            yield Region(declaration.end(), len(text) - 1, "value")
        elif not DECLARED.match(text, start):
            yield Region(start, len(text), "statement")


def constexpr_lines(code):
    """Returns the lines of functions that must be constant expressions."""
    found, depth, until = set(), 0, None
    for number, line in enumerate(code):
        if until is None and re.search(r"\bconstexpr\b.*\)[^;]*\{$", line):
            until = depth
        depth += line.count("{") - line.count("}")
        if until is not None:
            found.add(number)
            if depth <= until:
                until = None
    return found


def token_region(old, new):
    """Returns the region of the only token that differs between two lines, and its new text."""
    before, after = list(TOKEN.finditer(old)), list(TOKEN.finditer(new))
    if TOKEN.sub("", old) == TOKEN.sub("", new) and len(before) == len(after):
        differing = [(a, b) for a, b in zip(before, after) if a.group() != b.group()]
        if len(differing) == 1:
            token, other = differing[0]
            return Region(token.start(), token.end(), "value"), other.group()
    return None, None


def declaring_line(code, line):
    """Returns the first line of the declaration that contains a line."""
    while line > 0 and code[line - 1].rstrip()[-1:] not in ("", ";", "}"):
        line -= 1
    return line


def place(lines, changes):
    """Returns {(first, last): {region: [(number, new text)]}}, and the numbers without a place.

    `changes` maps numbers to changes of this file."""
    code = masked(lines)
    constant = constexpr_lines(code)
    placed, left = {}, set(changes)
    for first, last in segments(code):
        here = [number for number in sorted(left)
                if first <= changes[number].first and changes[number].last <= last]
        if not here or first in constant:
            continue
        raw = "\n".join(lines[first:last + 1])
        for region in regions("\n".join(code[first:last + 1])):
            head, tail = raw[:region.start], raw[region.end:]
            for number in here:
                change = changes[number]
                new = "\n".join(lines[first:change.first] + [change.new] + lines[change.last + 1:last + 1])
                if not change.new and region.kind == "statement":
                    new = head + tail
                if (number in left and len(new) >= len(head) + len(tail)
                        and new.startswith(head) and new.endswith(tail)):
                    variant = new[len(head):len(new) - len(tail)]
                    placed.setdefault((first, last), {}).setdefault(region, []).append((number, variant))
                    left.discard(number)
    taken = {line for first, last in placed for line in range(first, last + 1)}
    for number in sorted(left):
        line = changes[number].first
        region, variant = token_region(lines[line], changes[number].new)
        if region and line == changes[number].last and line not in taken | constant:
            placed.setdefault((line, line), {}).setdefault(region, []).append((number, variant))
            left.discard(number)
    return placed, left


def alternatives(region, original, variants):
    """Yields a text for each variant of a region and its number, then the original code and None."""
    for number, variant in variants:
        if region.kind == "statement":
            yield "if (mutation::on(%d)) {%s\n} else" % (number, variant), number
        else:
            cast = "void" if region.kind == "step" else ""
            yield "mutation::on(%d) ? %s(%s) :" % (number, cast, variant), number
    yield {"statement": "{%s}", "step": "void(%s)", "value": "(%s)"}[region.kind] % original, None


def switched(lines, placed):
    """Returns the lines with switches, and for each the numbers of the changes that it belongs to."""
    output, owners, next_line, code = [], [], 0, masked(lines)
    lines = list(lines)
    for first, last in placed:
        for line in range(declaring_line(code, first), last + 1):
            lines[line] = re.sub(r"\bconstexpr (?!\()", "const     ", lines[line])
    for (first, last), by_region in sorted(placed.items()):
        unchanged = lines[next_line:first]
        output += unchanged
        owners += [()] * len(unchanged)
        raw, position = "\n".join(lines[first:last + 1]), 0
        everyone = tuple(number for variants in by_region.values() for number, _ in variants)
        for region, variants in sorted(by_region.items()):
            pieces = [(raw[position:region.start], None)]
            pieces += alternatives(region, raw[region.start:region.end], variants)
            for text, number in pieces:
                for line in text.split("\n"):
                    output.append(line)
                    owners.append(everyone if number is None else (number,))
            position = region.end
        for line in raw[position:].split("\n"):
            output.append(line)
            owners.append(everyone)
        next_line = last + 1
    return output + lines[next_line:], owners + [()] * len(lines[next_line:])
