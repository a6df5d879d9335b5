"""What docs/faults.md says of a fault beyond what was measured: its name, what is lost, what to do."""

import re

HEAD = """# Faults

What comes of each fault: tried in each of the eleven phases of a test with `endurance/faults --write`,
which wrote this table. "The operator sees" are the panel's warnings and message boxes. A line that
cannot be read has no row; all others that ask for one have it, and every data log loaded again. Event
log, rows and warnings were held against the rules of a test, written down a second time.

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
    "field 1 -0": ('"-0" volts and amps in two lines', NOTHING),
    "field 0": ("a character that is cut by the edge of a chunk, in five lines", NOTHING),
    "field 1 99.99": ("the voltage jumps to 99.99 V for three lines", "look at the plugs; judge that leg with care"),
    "field 1 0.00": ("the voltage jumps to 0 V for three lines", "look at the plugs; a discharge ends by it"),
    "field 1 -5.00": ("the voltage jumps to -5 V for three lines", "look at the plugs; a discharge ends by it"),
    "field 1 inf": ('"inf" volts in three lines, as at an infinite resistance', "judge that resistance with care"),
    "field 2 0.0": ("no current in three lines, as when a resistance test is due", "judge that resistance with care"),
    "same-number": ("two instruments with one number", "give one of them another number, or go by the port"),
    "no-id": ("no number in five lines", WIRING),
    "bare-id": ("an empty number in five lines", WIRING),
    "big-id": ("a number beyond 32 bits in five lines", WIRING),
    "field 5 ID=0x7": ("the number in hexadecimal in five lines", NOTHING),
    "wrong-letter": ("an unknown state letter in five lines", WIRING),
    "doubled-letter": ("two state letters in five lines", WIRING),
    "lone-cr": ("a line that ends in CR alone", WIRING),
    "lone-lf": ("a line that ends in LF alone", WIRING),
    "lost-line-end": ("a line without its end", WIRING),
    "nul-line-end": ("a NUL byte before the end of five lines", WIRING),
    "nul": ("a NUL byte in five lines", WIRING),
    "invalid-utf8": ("bytes that are no UTF-8 in five lines", NOTHING),
    "split-bytes": ("five lines that come byte by byte", NOTHING),
    "merge": ("five lines at once", NOTHING),
    "babble": ("64 MB without a line end", WIRING),
    "echo": ("commands come back", NOTHING),
    "silence": ("no lines for %s s", WIRING),
    "burst": ("the lines of 5 s at once", NOTHING),
    "slow": ("a line every 5 s", NOTHING),
    "rate": ("24 lines a second", NOTHING),
    "fast": ("24 lines at once in each second", NOTHING),
    "suspend": ("the computer sleeps for %s s", "keep it awake; judge the totals of that leg with care"),
    "clock -3600": ("the computer's clock jumps by -3600 s", "wait: what is timed takes so much longer"),
    "clock": ("the computer's clock jumps by %s s", "compare the times of that section with another clock"),
    "utc 2021-03-28": ("summer time begins", NOTHING),
    "utc 2021-10-31": ("summer time ends", "an hour has its times twice: go by the seconds of the rows"),
    "utc 2021-12-31": ("midnight, and a new year", NOTHING),
    "utc 2024-02-28": ("the 29th of February begins", NOTHING),
    "utc 2038": ("2038-01-19, where 32 bits of seconds end", NOTHING),
    "ignore-next": ("a command is ignored", NOTHING),
    "ignore-commands": ("all commands are ignored", OPERATOR),
    "late-commands": ("commands are obeyed three lines late", NOTHING),
    "stuck-state": ("the state letter sticks at O", OPERATOR),
    "id": ("another number", "see that no two instruments have the same one"),
    "restart": ("the instrument restarts", "look at its supply"),
    "bootloader-noise": ("the instrument is in its bootloader, which sends noise", "wait: it is reset after some 5 s"),
    "bootloader": ("the instrument is in its bootloader", "wait: it is reset after some 5 s"),
    "no-load": ("the load is missing", "connect it; or Skip"),
    "trip-protection": ("the pack's protection opens", "look at the pack; the charge closes it again"),
    "current-after-off": ("0.3 A while off, for five lines", NOTHING),
    "voltage-after-off": ("off, the voltage changes by %s V", "judge that resistance with care"),
    "port same": ("the port is unplugged, and back under the same name",
                  "close the panel, add a station and load the log: it goes on"),
    "port another": ("the port is unplugged, and back under another name",
                     "close the panel, add a station and load the log: it goes on"),
    "port permission": ("a station is added on a port without permission", "join the group of the port: kest-doctor"),
    "port busy": ("a station is added on a port that is in use", "choose the other port, or end the program that has it"),
    "port gone": ("a station is added on a port that has gone since it was listed", "plug it in, and refresh the list"),
    "vanish": ("the port is unplugged", "plug it in, close the panel, add a station and load the log: it goes on"),
}


def entry(fault):
    for name in sorted(FAULTS, key=len, reverse=True):
        if fault.startswith((name + " ", name + "T")) or fault == name or (name == "utc 2038" and fault.startswith(name)):
            return FAULTS[name]
    return fault, "?"


def named(fault):
    words = entry(fault)[0]
    return words % fault.split()[1] if "%s" in words else words


def to_do(fault):
    return entry(fault)[1]


def lost(fault, unread):
    if fault.startswith(("silence", "restart", "bootloader", "vanish", "suspend")):
        return "the readings of the silence"
    if fault in ("port same", "port another"):
        return "the readings until it goes on"
    if fault.startswith(("nul-line-end", "lone-", "lost-line-end")):
        return "the lines concerned, and the one behind them"
    return "the lines concerned" if unread or fault.startswith(("nul", "garbage")) else "nothing"


def end(ends, count):
    """Where the test stands once the fault is over."""
    if ends.get("Done", 0) == count:
        return "goes on to its end"
    waits = ", ".join('"%s"' % name for name in sorted(ends) if name != "Done")
    return ("goes on, or " if "Done" in ends else "") + "waits in " + waits


def states(end_words):
    """The phases that such words name."""
    return re.findall('"[^"]*"', end_words)
