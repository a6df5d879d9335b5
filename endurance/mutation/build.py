"""One build of a copy of the tree that holds all mutants, each asleep until it is chosen."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
from collections import defaultdict

from . import selection

RUNTIME = pathlib.Path(__file__).with_name("kest_mutant.h")
ERROR = re.compile(r"^(?P<file>[^\s:]+\.cpp):(?P<line>\d+):\d+:.*?(error:|required from)", re.M)
MARK = re.compile(r"/\*M(\d+)\*/")


class BuildFailed(Exception):
    pass


def write_if_other(path, content):
    """What is the same keeps its time, so that it is not compiled again."""
    if path.is_file() and path.read_bytes() == content:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


class MutantBuild:
    def __init__(self, root, work, sources, jobs):
        self.root, self.jobs = pathlib.Path(root), jobs
        self.source_dir, self.build_dir = pathlib.Path(work, "source"), pathlib.Path(work, "build")
        self.sources = {source.path: source for source in sources}

    def copy_tree(self):
        names = subprocess.run(
            ["git", "-c", "safe.directory=%s" % self.root, "ls-files", "-z"],
            cwd=self.root, check=True, stdout=subprocess.PIPE,
        ).stdout.decode().split("\0")
        wanted = {name for name in names if name and (self.root / name).is_file()}
        for path in [p for p in self.source_dir.rglob("*") if p.is_file()]:
            if str(path.relative_to(self.source_dir)) not in wanted:
                path.unlink()
        for name in wanted:
            if name not in self.sources:
                write_if_other(self.source_dir / name, (self.root / name).read_bytes())
                shutil.copymode(self.root / name, self.source_dir / name)
        write_if_other(self.source_dir / RUNTIME.name, RUNTIME.read_bytes())

    def write_mutants(self, numbered):
        by_file = defaultdict(list)
        for number, mutant in numbered.items():
            by_file[mutant.file].append((number, mutant))
        for path, source in self.sources.items():
            here = by_file.get(path)
            text = selection.mutated_text(source, here) if here else source.text
            write_if_other(self.source_dir / path, text.encode())

    def configure(self):
        subprocess.run(
            ["cmake", "-S", self.source_dir, "-B", self.build_dir, "-G", "Ninja",
             "-DCMAKE_BUILD_TYPE=RelWithDebInfo", "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1",
             "-DKEST_PRECOMPILE=ON", "-DKEST_BENCH=OFF",
             "-DCMAKE_CXX_COMPILER_LAUNCHER=" + (shutil.which("ccache") or "")],
            check=True, stdout=subprocess.DEVNULL,
        )

    def ninja(self, *targets):
        environment = dict(os.environ, LC_ALL="C.UTF-8")
        done = subprocess.run(
            ["cmake", "--build", self.build_dir, "--parallel", str(self.jobs), "--target", *targets,
             "--", "-k", "0"],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=environment, text=True,
        )
        return done.returncode == 0, done.stdout

    def named_by(self, output, numbered):
        """The numbers of the mutants that stand in the lines which the compiler complains of."""
        named = set()
        for error in ERROR.finditer(output):
            path = pathlib.Path(self.build_dir, error.group("file")).resolve()
            try:
                name = str(path.relative_to(self.source_dir.resolve()))
                lines = path.read_text(encoding="utf-8").split("\n")
            except (ValueError, OSError):
                continue
            at = min(int(error.group("line")) - 1, len(lines) - 1)
            marks = MARK.findall(lines[at])
            # Code that does not fit in with its changes: the last changes before it go.
            while not marks and at > 0:
                at -= 1
                marks = MARK.findall(lines[at])
            named.update(int(mark) for mark in marks if int(mark) in numbered)
            if not marks and name in self.sources:
                named.update(n for n, m in numbered.items() if m.file == name)
        return named

    def compile(self, numbered):
        """Builds the library, and drops what does not compile; the numbers that are left."""
        left = dict(numbered)
        while True:
            self.write_mutants(left)
            built, output = self.ninja("kest")
            if built:
                return left
            bad = self.named_by(output, left)
            if not bad:
                raise BuildFailed(output[-4000:])
            print("mutants: %d do not compile and are dropped" % len(bad), file=sys.stderr)
            for number in bad:
                del left[number]
