#!/usr/bin/env python3
"""Ends with 1, naming the places, if a source names a class of the toolkit or of the standard library and
includes its header nowhere, neither by itself nor through what it includes.

The builds with precompiled headers do not notice. The text is read, nothing is compiled, so that this takes
seconds; what a header brings only under some condition counts as brought.
"""
import functools
import os
import re
import subprocess
import sys

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"]+)[>"]', re.MULTILINE)
NO_CODE = re.compile(r'"(?:\\.|[^"\\\n])*"|//[^\n]*|/\*.*?\*/|^[ \t]*#[ \t]*include[^\n]*',
                     re.DOTALL | re.MULTILINE)
OWN_FOLDERS = ("", "programs", "tests", "tools")

# Names of the standard library that are used here, by the header that has them.
STANDARD = {
    "algorithm": r"std::(all_of|any_of|clamp|count_if|fill|find_if|max_element|none_of|reverse"
                 r"|sort|stable_sort|transform|unique|upper_bound|lower_bound)\b",
    "array": r"std::array\b",
    "chrono": r"std::chrono\b",
    "cmath": r"std::(ceil|fabs|floor|fmod|isfinite|isnan|isinf|lround|pow|round|sqrt)\b",
    "deque": r"std::deque\b",
    "functional": r"std::function\b",
    "limits": r"std::numeric_limits\b",
    "map": r"std::map\b",
    "memory": r"std::(unique_ptr|shared_ptr|make_unique|make_shared)\b",
    "optional": r"std::(optional|nullopt)\b",
    "set": r"std::set\b",
    "string": r"std::(string|to_string)\b",
    "thread": r"std::thread\b",
    "vector": r"std::vector\b",
}
# Headers that promise another's names.
PROMISED = {"cmath": {"math.h"}}


def listed(*patterns):
    """The files of this checkout, new ones before they are tracked, too; the folder may be another user's."""
    words = ["git", "-c", f"safe.directory={os.getcwd()}", "ls-files", "--cached", "--others",
             "--exclude-standard", *patterns]
    paths = subprocess.run(words, capture_output=True, text=True, check=True).stdout.split()
    return [path for path in paths if os.path.isfile(path)]


def text_of(path):
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()


def toolkit_folder():
    machine = subprocess.run(["g++", "-print-multiarch"], capture_output=True, text=True, check=True)
    return f"/usr/include/{machine.stdout.strip()}/qt5"


os.chdir(os.path.join(os.path.dirname(os.path.realpath(__file__)), ".."))
FORMS = {f"ui_{os.path.basename(path)[:-3]}.h": path for path in listed("*.ui")}
TOOLKIT = toolkit_folder()
MODULES = sorted(entry.name for entry in os.scandir(TOOLKIT) if entry.is_dir())


@functools.lru_cache(None)
def toolkit_header(name):
    """The path of <QLabel> or <QtWidgets/qlabel.h>; None if the toolkit has no such header."""
    for path in [f"{TOOLKIT}/{name}"] + [f"{TOOLKIT}/{module}/{name}" for module in MODULES]:
        if os.path.isfile(path):
            return path
    return None


@functools.lru_cache(None)
def form_classes(path):
    """What the header made of a form brings: the headers of its widgets and layouts."""
    return sorted(set(re.findall(r'class="(Q\w+)"', text_of(path)))) + ["QApplication", "QVariant"]


@functools.lru_cache(None)
def included_by(path):
    """The paths of the headers that a file names; of those of neither us nor the toolkit, the names."""
    if path.endswith(".ui"):
        return [toolkit_header(name) or name for name in form_classes(path)]
    found = []
    for name in INCLUDE.findall(text_of(path)):
        beside = os.path.normpath(os.path.join(os.path.dirname(path), name))
        own = [] if path.startswith("/") else [os.path.join(folder, name) for folder in OWN_FOLDERS]
        here = next(filter(os.path.isfile, [beside, *own]), None)
        found.append(here or FORMS.get(name) or toolkit_header(name) or name)
    return found


def reached_from(path):
    reached = set()
    waiting = [path]
    while waiting:
        header = waiting.pop()
        if header not in reached:
            reached.add(header)
            if os.path.isfile(header):
                waiting.extend(included_by(header))
    return reached


@functools.lru_cache(None)
def defining_header(name):
    """<QLabel> includes qlabel.h and nothing else; None for what is no such class."""
    path = toolkit_header(name)
    headers = included_by(path) if path else []
    return headers[0] if len(headers) == 1 else None


def missing_in(path):
    code = NO_CODE.sub("", text_of(path))
    reached = reached_from(path)
    announced = set(re.findall(r"\bclass (Q\w+);", code))
    # For a pointer in a declaration, a header of the toolkit announces the class.
    used = r"\bQ[A-Z]\w*\b(?![*&])" if path.endswith(".h") else r"\bQ[A-Z]\w*"
    for name in sorted(set(re.findall(used, code)) - announced):
        header = defining_header(name)
        if header and header not in reached:
            yield name
    for header, names in STANDARD.items():
        if re.search(names, code) and not reached & ({header} | PROMISED.get(header, set())):
            yield header


def main():
    sources = listed("*.cpp", "*.h")
    missing = [f"{path}: nothing includes <{name}> for it" for path in sources for name in missing_in(path)]
    print("\n".join(missing) if missing else f"{len(sources)} sources include what they name.")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
