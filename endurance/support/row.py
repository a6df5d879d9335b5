"""What the rows share: their arguments, the programs they run, and the line each prints."""

import argparse
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PROVES = "KEST_ENDURANCE_BROKEN"  # what a program of a row obeys by doing its work badly on purpose


def arguments(words, runs, runs_are):
    parser = argparse.ArgumentParser(description=words, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--runs", type=int, default=runs, help=runs_are + " (default: %(default)s)")
    parser.add_argument("--preset", default="sanitize", help="the build whose programs run")
    return parser


def build(preset, *targets):
    """The programs of a preset, as new as the sources."""
    folder = ROOT / "build" / preset
    if not (folder / "build.ninja").is_file():
        subprocess.run(["cmake", "--preset", preset], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    command = ["cmake", "--build", folder, "--parallel", str(os.cpu_count()), "--target", *targets]
    done = subprocess.run(command, cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        sys.exit(done.stdout[-4000:])
    return folder


def environment(home, broken=""):
    """As of the tests: no display, no settings of the user, one zone."""
    changed = dict(
        os.environ, QT_QPA_PLATFORM="offscreen", TZ="UTC", LC_ALL="C.UTF-8", HOME=str(home),
        XDG_DATA_HOME=str(home) + "/data", XDG_CONFIG_HOME=str(home) + "/config",
        XDG_RUNTIME_DIR=str(home),
        LSAN_OPTIONS="suppressions=%s:print_suppressions=0" % (ROOT / "tests/support/lsan.supp"),
        UBSAN_OPTIONS="print_stacktrace=1",
    )
    changed[PROVES] = broken
    return changed


def require_failure(row, what, status):
    """The proof that a row can fail: a row that cannot says nothing."""
    if status == 0:
        sys.exit("%s: %s was not noticed: the row proves nothing" % (row, what))


def finish(row, ran, asked, figure, good):
    print("| %s | %s | %s | %s | %s |" % (row, ran, asked, figure, "held" if good else "MISSED"), flush=True)
    return 0 if good else 1
