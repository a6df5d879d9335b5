"""Which mutants there can be in a tree, which of them are taken, and how a list finds its places again."""

import pathlib
import random
from collections import defaultdict
from dataclasses import dataclass

from . import changes, statements

FOLDERS = ("app", "charts", "common", "config", "device", "dialogs", "report", "station")


@dataclass
class Mutant:
    folder: str
    file: str
    line: int
    function: str
    kind: str
    code: str  # what stands there, in one line
    nth: int  # which of the places of this function with the same code
    change: str  # in words: "< -> <="
    new: str  # what stands there instead

    def words(self):
        code = self.code if len(self.code) < 140 else self.code[:137] + "..."
        return "%s:%d %s(): %s: %s" % (self.file, self.line, self.function, self.change, code)


@dataclass
class Source:
    path: str
    text: str
    masked: str
    functions: list

    def line_of(self, at):
        return self.text.count("\n", 0, at) + 1


def read_sources(root, folders):
    sources = []
    for folder in folders:
        for path in sorted(pathlib.Path(root, folder).rglob("*.cpp")):
            text = path.read_text(encoding="utf-8")
            functions, masked = statements.functions_of(text)
            sources.append(Source(str(path.relative_to(root)), text, masked, functions))
    return sources


def places_of(source):
    """(function, place, its code, which of the same ones it is) in the order of the file."""
    seen = defaultdict(int)
    for function in source.functions:
        for place in function.places:
            code = changes.in_one_line(
                source.text[place.start : place.end], source.masked[place.start : place.end]
            )
            key = (function.name, place.kind, code)
            yield function, place, code, seen[key]
            seen[key] += 1


def candidates(source):
    for function, place, code, nth in places_of(source):
        for change, new in changes.changes_of(place, source.text, source.masked):
            yield Mutant(
                source.path.split("/")[0], source.path, source.line_of(place.start), function.name,
                place.kind, code, nth, change, new,
            )


def select(sources, count, seed):
    """`count` mutants, each folder in proportion to what it has but five at the least, and some to spare."""
    by_folder = defaultdict(list)
    for source in sources:
        for mutant in candidates(source):
            by_folder[mutant.folder].append(mutant)
    total = sum(len(all_of_it) for all_of_it in by_folder.values())
    chosen = []
    for folder, all_of_it in sorted(by_folder.items()):
        random.Random("%s/%s" % (seed, folder)).shuffle(all_of_it)
        quota = max(5, round(count * len(all_of_it) / total))
        chosen.append((all_of_it[: quota + quota // 4 + 2], quota))
    return chosen, total


def find_again(sources, wanted):
    """The places of a list in a tree whose files may have moved: (found, gone)."""
    exact, by_tail, by_code = defaultdict(list), defaultdict(list), defaultdict(list)
    for source in sources:
        for function, place, code, _ in places_of(source):
            entry = (source, function, place)
            exact[function.name, place.kind, code].append(entry)
            by_tail[function.name.split("::")[-1], place.kind, code].append(entry)
            by_code[place.kind, code].append(entry)
    found, gone = [], []
    for old in wanted:
        tail = old.function.split("::")[-1]
        entry = (
            pick(exact[old.function, old.kind, old.code], old)
            or pick(by_tail[tail, old.kind, old.code], old)
            or only(by_code[old.kind, old.code])
        )
        if entry is None:
            gone.append(old)
            continue
        source, function, place = entry
        nth = same_before(source, function, place, old.code)
        found.append(
            Mutant(
                source.path.split("/")[0], source.path, source.line_of(place.start), function.name,
                old.kind, old.code, nth, old.change, old.new,
            )
        )
    return found, gone


def same_before(source, function, place, code):
    for other_function, other, other_code, nth in places_of(source):
        if other is place and other_function is function and other_code == code:
            return nth
    raise LookupError(code)


def pick(entries, old):
    """The nth of those in the file's own folder, or anywhere."""
    near = [entry for entry in entries if entry[0].path.split("/")[0] == old.folder] or entries
    same_file = [entry for entry in near if entry[0].path.split("/")[-1] == old.file.split("/")[-1]]
    near = same_file or near
    return near[min(old.nth, len(near) - 1)] if near else None


def only(entries):
    return entries[0] if len(entries) == 1 else None


def mutated_text(source, numbered):
    """The file with the mutants, given as (number, mutant), in it."""
    chosen = defaultdict(list)
    for number, mutant in numbered:
        chosen[mutant.function, mutant.kind, mutant.code, mutant.nth].append((number, mutant.new))
    pieces, at = ['#include "kest_mutant.h"\n'], 0
    for function, place, code, nth in places_of(source):
        here = chosen.get((function.name, place.kind, code, nth))
        if here:
            pieces.append(source.text[at : place.start])
            pieces.append(changes.spelled(place, here, source.text, source.masked))
            at = place.end
    pieces.append(source.text[at:])
    return "".join(pieces)
