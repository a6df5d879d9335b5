"""What docs/faults.md says of a fault beyond what was measured: its name, what is lost, what to do."""

HEAD = """# Faults

What comes of each fault: tried in each of the eleven phases of a test with `endurance/faults --write`,
which wrote this table. "The operator sees" are the panel's warnings and message boxes. A line that
cannot be read has no row; all others that ask for one have it, and every data log loaded again.

| Fault | The operator sees | What is lost | The test | What to do |
|---|---|---|---|---|
"""

WIRING = "look at cable, plug and hub; log all telemetry to see the lines"
NOTHING = "nothing"
OPERATOR = "mend it; Skip, or New Test where Skip is disabled"

# name: (in words, what to do)
FAULTS = {
    "garbage": ("noise for five lines", WIRING),
    "six-fields": ("a field is missing in five lines", WIRING),
    "eight-fields": ("a field too many in five lines", WIRING),
    "empty-fields": ("five lines of empty fields", WIRING),
    "letters": ("letters for numbers in five lines", WIRING),
    "decimal-comma": ("decimal commas in five lines", "use firmware that sends points"),
    "inf": ('"inf" in two lines', "judge the totals of that discharge with care"),
    "nan": ('"nan" in two lines', "judge the totals of that discharge with care"),
    "1e308": ('"1e308" in a line', "judge the totals of that discharge with care"),
    "field 1 -0": ('"-0" volts in two lines', NOTHING),
    "no-id": ("no number in five lines", WIRING),
    "bare-id": ("an empty number in five lines", WIRING),
    "big-id": ("a number beyond 32 bits in five lines", WIRING),
    "field 5 ID=0x7": ("the number in hexadecimal in five lines", NOTHING),
    "wrong-letter": ("an unknown state letter in five lines", WIRING),
    "doubled-letter": ("two state letters in five lines", WIRING),
    "lone-cr": ("a line that ends in CR alone", WIRING),
    "lone-lf": ("a line that ends in LF alone", WIRING),
    "lost-line-end": ("a line without its end", WIRING),
    "nul": ("a NUL byte in five lines", WIRING),
    "invalid-utf8": ("bytes that are no UTF-8 in five lines", NOTHING),
    "split-bytes": ("five lines that come byte by byte", NOTHING),
    "merge": ("five lines at once", NOTHING),
    "babble": ("100,000 bytes without a line end", WIRING),
    "echo": ("commands come back", NOTHING),
    "silence": ("no lines for %s s", WIRING),
    "burst": ("the lines of 5 s at once", NOTHING),
    "slow": ("a line every 5 s", NOTHING),
    "fast": ("24 lines a second", NOTHING),
    "clock": ("the computer's clock jumps by %s s", "compare the times of that section with another clock"),
    "local": ("the computer's clock jumps to %s", "compare the times of that section with another clock"),
    "ignore-next": ("a command is ignored", NOTHING),
    "ignore-commands": ("all commands are ignored", OPERATOR),
    "late-commands": ("commands are obeyed three lines late", NOTHING),
    "stuck-state": ("the state letter sticks at O", OPERATOR),
    "id": ("another number", "see that no two instruments have the same one"),
    "restart": ("the instrument restarts", "look at its supply"),
    "bootloader": ("the instrument is in its bootloader", "wait: it is reset after some 5 s"),
    "no-load": ("the load is missing", "connect it; or Skip"),
    "trip-protection": ("the pack's protection opens", "look at the pack; the charge closes it again"),
    "current-after-off": ("0.3 A while off, for five lines", NOTHING),
    "voltage-after-off": ("off, the voltage changes by %s V", "judge that resistance with care"),
    "vanish": ("the port is unplugged", "plug it in, close the panel, add a station and load the log: it goes on"),
}


def entry(fault):
    for name in sorted(FAULTS, key=len, reverse=True):
        if fault == name or fault.startswith(name + " "):
            return FAULTS[name]
    return fault, "?"


def named(fault):
    words = entry(fault)[0]
    return words % fault.split()[1] if "%s" in words else words


def to_do(fault):
    return entry(fault)[1]


def lost(fault, unread):
    if fault.startswith(("silence", "restart", "bootloader", "vanish")):
        return "the readings of the silence"
    return "nothing" if unread == 0 else "at most %d lines that cannot be read" % unread


def end(ends, count):
    """Where the test stands once the fault is over."""
    if ends.get("Done", 0) == count:
        return "goes on to its end"
    waits = ", ".join('"%s"' % name for name in sorted(ends) if name != "Done")
    return ("goes on, or " if "Done" in ends else "") + "waits in " + waits
