"""Runs the tests of a folder against one mutant."""

import json
import os
import pathlib
import re
import resource
import signal
import subprocess
import tempfile
import threading
import time
from dataclasses import dataclass

MEMORY_LIMIT = 4 << 30
FILE_LIMIT = 256 << 20
LONGEST_CLASS_S = 900
FIRST_LIMIT_S = 120
NO_END = "no end"


@dataclass
class TestClass:
    name: str
    folder: str
    command: list
    environment: dict
    seconds: float = 0.0


def test_classes(build_dir):
    listing = subprocess.run(
        ["ctest", "--test-dir", build_dir, "--show-only=json-v1"], check=True, stdout=subprocess.PIPE
    ).stdout
    found = []
    for test in json.loads(listing)["tests"]:
        command = test.get("command", [])
        program = re.search(r"/tests_(\w+)$", command[0]) if command else None
        if not program:
            continue
        properties = {p["name"]: p["value"] for p in test["properties"]}
        environment = dict(entry.split("=", 1) for entry in properties.get("ENVIRONMENT", []))
        found.append(TestClass(test["name"], program.group(1), command, environment))
    return found


def set_limits():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_LIMIT, FILE_LIMIT))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run_class(test, number, limit):
    """(passed, why not) of one class with one mutant awake, in a home of its own."""
    with tempfile.TemporaryDirectory(prefix="kest-mutant-") as home:
        os.chmod(home, 0o1777)  # some tests go on as a user who is not root
        environment = dict(os.environ, **test.environment)
        old_home = test.environment.get("HOME", home)
        for name, value in test.environment.items():
            environment[name] = value.replace(old_home, home)
        environment.update(KEST_MUTANT=str(number), TMPDIR=home)
        process = subprocess.Popen(
            test.command, cwd=home, env=environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True,
            preexec_fn=set_limits, text=True, errors="replace",
        )
        try:
            output, _ = process.communicate(timeout=limit)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            return False, NO_END
        if process.returncode == 0:
            return True, ""
        failed = re.search(r"^(?:FAIL!|XPASS|QFATAL)\s*:\s*(.*)", output, re.M)
        return False, failed.group(1) if failed else "status %d" % process.returncode


class Classes:
    """The classes of tests, each tried without a mutant before its word against one counts."""

    def __init__(self, all_of_them, report):
        self.all, self.report = all_of_them, report
        self.lock, self.checked = threading.Lock(), {}

    def is_sound(self, test):
        """Whether the class passes without a mutant, and how long that takes."""
        with self.lock:
            if test.name not in self.checked:
                begin = time.monotonic()
                passed, why = run_class(test, 0, LONGEST_CLASS_S)
                test.seconds = time.monotonic() - begin
                self.checked[test.name] = passed
                if not passed:
                    self.report("left out, as it fails without a mutant: %s (%s)" % (test.name, why))
            return self.checked[test.name]

    def limit(self, test):
        """Nobody else's load may pass for a test that has no end."""
        return FIRST_LIMIT_S if test.name not in self.checked else 20 + 10 * test.seconds

    def notices(self, test, number):
        """How the class fails with the mutant, or None."""
        if self.checked.get(test.name) is False:
            return None
        was_checked = test.name in self.checked
        passed, why = run_class(test, number, self.limit(test))
        if passed or not self.is_sound(test):
            return None
        if why == NO_END and not was_checked:
            passed, why = run_class(test, number, self.limit(test))
        return None if passed else why


def in_order(classes, mutant):
    """Those first whose name is near the mutant's file, then the quick ones."""
    words = set(re.split(r"[_.]", pathlib.Path(mutant.file).name)) - {"cpp", "test"}

    def rank(test):
        return (-len(words & set(test.name.split("_"))), test.seconds)

    return sorted(classes, key=rank)


def try_mutant(classes, folders, number, mutant):
    """Which class of these folders noticed the mutant and how, or None."""
    for test in in_order([t for t in classes.all if t.folder in folders], mutant):
        why = classes.notices(test, number)
        if why is not None:
            return "%s: %s" % (test.name, why)
    return None
