"""Finds the functions of a C++ source in the house's form, and the statements in them."""

import re
from dataclasses import dataclass, field

NO_MUTANTS = re.compile(r"\b(static_assert|static|constexpr|using|typedef|struct|class|enum|goto)\b")


@dataclass
class Place:
    """A piece of code that is replaced as one: [start, end) in the text of its file."""

    kind: str  # "condition", "loop", "return", "value", "step"
    start: int
    end: int


@dataclass
class Function:
    name: str
    start: int
    end: int
    places: list = field(default_factory=list)


def blanked(match):
    return re.sub(r"[^\n]", " ", match.group())


def mask(text):
    """The text with comments and directives blank and literals without their words, as long as before."""
    pattern = re.compile(
        r'(?P<comment>//[^\n]*|/\*.*?\*/)'
        r'|(?P<raw>R"(?P<mark>[^()\\ ]*)\(.*?\)(?P=mark)")'
        r"|(?P<string>\"(?:[^\"\\\n]|\\.)*\")"
        r"|(?P<char>(?<![0-9a-fA-F])'(?:[^'\\\n]|\\.)+')",
        re.S,
    )

    def cover(match):
        if match.group("comment"):
            return blanked(match)
        inner = match.group()
        return inner[0] + "s" * (len(inner) - 2) + inner[-1]

    masked = pattern.sub(cover, text)
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", blanked, masked, flags=re.M)


def match_bracket(masked, at):
    """The place of the bracket that closes the one at `at`."""
    closing = {"(": ")", "{": "}", "[": "]"}
    stack = []
    for i in range(at, len(masked)):
        c = masked[i]
        if c in closing:
            stack.append(closing[c])
        elif stack and c == stack[-1]:
            stack.pop()
            if not stack:
                return i
    raise ValueError("bracket without an end")


def function_name(head):
    head = re.sub(r"template\s*<[^\n]*>", "", head)
    found = re.search(r"(operator\s*[^\s(]+|[A-Za-z_~][\w:~]*)\s*\(", head)
    return found.group(1) if found else None


def functions_of(text):
    """Functions open with a brace on a line of its own: the form that clang-format keeps."""
    masked = mask(text)
    found = []
    at = 0
    for brace in re.finditer(r"^[ \t]*\{[ \t]*$", masked, re.M):
        start = brace.group().index("{") + brace.start()
        if start < at:
            continue
        # A head goes back to what ended before it; an initialiser of a member may hold braces.
        before = masked[:start].rstrip()
        head_start = max(before.rfind(";"), before.rfind("\n\n"), before.rfind("\n{\n"), before.rfind("\n}"))
        head = before[head_start + 1 :]
        if re.search(r"\b(namespace|class|struct|union|enum)\b", head) or "(" not in head:
            continue
        name = function_name(head)
        end = match_bracket(masked, start)
        at = end
        if name is None or re.search(r"\bconstexpr\b", head):
            continue
        function = Function(name, start, end)
        read_block(masked, start + 1, end, function.places)
        found.append(function)
    return found, masked


def skip_space(masked, at, end):
    while at < end and masked[at].isspace():
        at += 1
    return at


def statement_end(masked, at, end):
    """The semicolon that ends the statement, past brackets of all kinds."""
    while at < end:
        if masked[at] in "({[":
            at = match_bracket(masked, at)
        elif masked[at] == ";":
            return at
        at += 1
    return end


def read_block(masked, at, end, places):
    at = skip_space(masked, at, end)
    while at < end:
        at = skip_space(masked, read_statement(masked, at, end, places), end)


def read_statement(masked, at, end, places):
    """Notes the places of one statement; where the next one begins."""
    at = skip_space(masked, at, end)
    if at >= end:
        return end
    if masked[at] == "{":
        close = match_bracket(masked, at)
        read_block(masked, at + 1, close, places)
        return close + 1
    word = re.match(r"\w+", masked[at:end])
    word = word.group() if word else ""
    if word in ("if", "while", "for", "switch", "catch"):
        return read_control(masked, at, end, word, places)
    if word in ("else", "do", "try"):
        return read_statement(masked, at + len(word), end, places)
    if word in ("case", "default"):
        label = re.compile(r"(?<!:):(?!:)").search(masked, at)
        return label.end()
    return read_plain(masked, at, end, places)


def read_control(masked, at, end, word, places):
    opening = masked.index("(", at)
    closing = match_bracket(masked, opening)
    is_constexpr = "constexpr" in masked[at:opening]
    if word == "for":
        first = statement_end(masked, opening + 1, closing)
        if first < closing:
            second = statement_end(masked, first + 1, closing)
            if masked[first + 1 : second].strip():
                places.append(Place("loop", first + 1, second))
    elif word in ("if", "while") and not is_constexpr and not declares(masked[opening + 1 : closing]):
        places.append(Place("condition" if word == "if" else "loop", opening + 1, closing))
    return read_statement(masked, closing + 1, end, places)


def declares(code):
    """Whether the code begins with a type and a name."""
    code = code.strip()
    if re.match(r"(delete|emit|return|throw|new|break|continue)\b", code):
        return False
    if re.match(r"(const|auto|unsigned|volatile)\b", code):
        return True
    return bool(re.match(r"[A-Za-z_][\w:]*(<.*?>)?(::\w+)?[*&]*( const)?[*&]*\s+[*&]*[A-Za-z_]\w*\s*([=({;\[]|$)", code))


def read_plain(masked, at, end, places):
    semicolon = statement_end(masked, at, end)
    code = masked[at:semicolon]
    if NO_MUTANTS.match(code):
        pass
    elif re.match(r"return\b", code):
        places.append(Place("return", at, semicolon + 1))
    elif not declares(code):
        if code.strip():
            places.append(Place("step", at, semicolon + 1))
    else:
        note_value(code, at, semicolon, places)
    return semicolon + 1


def note_value(code, at, semicolon, places):
    """The value in "const int sum = a + b;": a reference keeps the one object it names."""
    found = re.match(r"[^=(\[{]*?[^=!<>(\[{&]\s(\w+)\s=\s+(?=[^=\[{])", code)
    if found and "&" not in found.group():
        places.append(Place("value", at + found.end(), semicolon))
