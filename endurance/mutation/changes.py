"""The changes that make a mutant of a piece of code."""

import re

SWAPS = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=",
    "|": "&", "&": "|",
}
OPERATOR = re.compile(r"(?<=\s)(<=|>=|==|!=|&&|\|\||\+=|-=|\*=|/=|[<>+\-*/%|&])(?=\s)")
STEP = re.compile(r"\+\+|--")
NOT = re.compile(r"(?<![\w)\]!])!(?![=])")
TRUTH = re.compile(r"\b(true|false)\b")
NUMBER = re.compile(r"(?<![\w.\"'])(\d+\.\d+|\d+)(?![\w.\"'])")
STRING = re.compile(r'"[^"]*"')
LOOKS_TRUE_OR_FALSE = re.compile(r"(?<=\s)(<|>|<=|>=|==|!=|&&|\|\|)(?=\s)|^!|\b(true|false)\b|^(is|has|contains)_|\.(contains|isEmpty|startsWith|isNull)\(")
# What only makes room beforehand changes nothing that a test could see.
ONLY_SPEED = re.compile(r"\.reserve\(|__builtin_prefetch|setUpdatesEnabled")


def changed_number(number):
    if "." in number:
        return "1.0" if float(number) == 0.0 else repr(float(number) * 2 + 1)
    return str(int(number) + 1)


def changed_string(string):
    return '"~"' if string == '""' else string[:-1] + '~"'


def in_one_line(text, masked):
    """Without comments and line breaks; literals as they are."""
    kept = "".join(" " if m == " " and t != " " else t for t, m in zip(text, masked))
    return re.sub(r"\s*\n\s*", " ", kept).strip()


def points_of_change(text, masked):
    """(start, end, replacement) of each operator, constant and negation in the code."""
    joins_texts = '"' in masked
    for found in OPERATOR.finditer(masked):
        if joins_texts and found.group() in ("+", "+="):
            continue  # texts cannot be subtracted
        yield found.start(), found.end(), SWAPS[found.group()]
    for found in STEP.finditer(masked):
        yield found.start(), found.end(), "--" if found.group() == "++" else "++"
    for found in NOT.finditer(masked):
        yield found.start(), found.end(), ""
    for found in TRUTH.finditer(masked):
        yield found.start(), found.end(), "false" if found.group() == "true" else "true"
    for found in NUMBER.finditer(masked):
        yield found.start(), found.end(), changed_number(found.group())
    for found in STRING.finditer(masked):
        yield found.start(), found.end(), changed_string(text[found.start() : found.end()])


def changes_of(place, text, masked):
    """The codes that may stand for the place's own, as (name of the operator, code in one line)."""
    code, cover = text[place.start : place.end], masked[place.start : place.end]
    if ONLY_SPEED.search(cover):
        return []
    found = []
    for start, end, new in sorted(points_of_change(code, cover)):
        before, after = (code[:start], cover[:start]), (code[end:], cover[end:])
        changed = in_one_line(before[0] + new + after[0], before[1] + "s" * len(new) + after[1])
        found.append(("%s -> %s" % (code[start:end], new or "nothing"), changed))
    whole = in_one_line(code, cover)
    if place.kind == "condition" and not is_one_comparison(cover):
        found.append(("condition negated", "!(%s)" % whole))
    elif place.kind == "step":
        found.append(("statement deleted", ""))
    elif place.kind == "return":
        value = whole[len("return") : -1].strip()
        if not value:
            found.append(("return deleted", ""))
        elif LOOKS_TRUE_OR_FALSE.search(mask_of_value(cover)):
            if value not in ("true", "false"):
                found.append(("result negated", "return !(%s);" % value))
        elif value not in ("{}", "nullptr", "0") and not re.match(r"[A-Z]\w*\(\)$", value):
            found.append(("result emptied", "return {};"))
    return found


def is_one_comparison(cover):
    """Then its operator, swapped, or its negation, taken away, negates it already."""
    if re.search(r"&&|\|\|", cover):
        return False
    return cover.strip().startswith("!") or re.search(r" [=!]= ", cover) is not None


def mask_of_value(cover):
    return re.sub(r"\s+", " ", cover)[len("return") :].strip(" ;")


def spelled(place, chosen, text, masked):
    """The place's code with all chosen changes in it, each on a line of its own, to be told at run time."""
    own = text[place.start : place.end]
    lines = []
    if place.kind in ("condition", "loop", "value"):
        cast = "" if place.kind == "value" else "static_cast<bool>"
        for number, code in chosen:
            lines.append("kest_mutant(%d) ? %s(%s) : /*M%d*/" % (number, cast, code, number))
        return "\n" + "\n".join(lines) + "\n%s(%s\n)" % (cast, own)
    for number, code in chosen:
        lines.append("if (kest_mutant(%d)) { %s } else /*M%d*/" % (number, code, number))
    return "{\n" + "\n".join(lines) + "\n{ %s }\n}" % own
