"""Runs the tests of a folder against one mutant."""

import json
import os
import pathlib
import re
import resource
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass

MEMORY_LIMIT = 4 << 30
FILE_LIMIT = 256 << 20


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
            return False, "no end"
        if process.returncode == 0:
            return True, ""
        failed = re.search(r"^(?:FAIL!|XPASS|QFATAL)\s*:\s*(.*)", output, re.M)
        return False, failed.group(1) if failed else "status %d" % process.returncode


def measure(classes, report):
    """The classes that pass without a mutant, each with its time."""
    good = []
    for test in classes:
        begin = time.monotonic()
        passed, why = run_class(test, 0, 600)
        test.seconds = time.monotonic() - begin
        if passed:
            good.append(test)
        else:
            report("left out, as it fails without a mutant: %s (%s)" % (test.name, why))
    return good


def in_order(classes, mutant):
    """Those first whose name is near the mutant's file, then the quick ones."""
    words = set(re.split(r"[_.]", pathlib.Path(mutant.file).name)) - {"cpp", "test"}

    def rank(test):
        return (-len(words & set(test.name.split("_"))), test.seconds)

    return sorted(classes, key=rank)


def try_mutant(classes, number, mutant):
    """Which class noticed the mutant and how, or None."""
    for test in in_order(classes, mutant):
        passed, why = run_class(test, number, 20 + 10 * test.seconds)
        if not passed:
            return "%s: %s" % (test.name, why)
    return None
