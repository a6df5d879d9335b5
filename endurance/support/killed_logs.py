"""What the event log of a killed program says of the rows that its data log must have."""

import re
from dataclasses import dataclass

CHARGING = ("Charging", "Charging (final)", "Full Charge Test", "Final Charge Test")
HELD = ("IR Test", "Recovering from IR Test")  # the readings from before the test are logged
LEAST_CURRENT = 0.01
STAMP = r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d "
EVENT = re.compile("^" + STAMP + "(.*)$", re.S)
NUMBER = re.compile(r"\s*([+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?|[+-]?inf|nan)\s*")
WHOLE = re.compile(r"\s*([+-]?\d+|0[xX][0-9a-fA-F]+)\s*")


@dataclass
class Row:
    is_charge: bool
    voltage: str  # as the row has it; None where it is one that was held


def qualifies(fields):
    """By the rules for a line of telemetry: seven fields, numbers, an id, one letter."""
    if len(fields) != 7 or not all(NUMBER.fullmatch(field) for field in fields[1:3]):
        return False
    number = fields[5].replace("ID=", "")
    if not WHOLE.fullmatch(number) or len(fields[6]) != 1:
        return False
    return -(2**31) <= int(number, 16 if "x" in number.lower() else 10) < 2**31


def texts_of(event_log):
    """Without their times. A line of telemetry may hold a line break of its own."""
    records = re.split(r"\n(?=" + STAMP + ")", event_log.removesuffix("\n"))
    return [match.group(1) for match in map(EVENT.match, records) if match]


def lines_of_telemetry(event_log):
    return [text.split("\t") for text in texts_of(event_log) if "\t" in text]


def expected_rows(event_log):
    """One entry for each line of telemetry that was logged: its row, or None."""
    phase, current, rows = "", 0.0, []
    texts = texts_of(event_log)
    for at, text in enumerate(texts):
        switched = re.match(r"Switching to phase (.*?) because ", text)
        if switched:
            phase = switched.group(1)
            continue
        fields = text.split("\t")
        if len(fields) < 2:
            continue
        if not qualifies(fields):
            rows.append(None)
            continue
        recovers = at + 1 < len(texts) and texts[at + 1].startswith("Switching to phase Discharging because Finished")
        held = phase in HELD and not recovers
        if not held:
            current = float(fields[2])
        if phase in CHARGING:
            rows.append(Row(True, "%.2f" % float(fields[1])))
        elif phase in HELD or phase == "Discharging":
            rows.append(Row(False, None if held else "%.2f" % float(fields[1])) if current > LEAST_CURRENT else None)
        else:
            rows.append(None)
    return rows


def rows_of(data_log):
    rows, is_charge = [], False
    for line in data_log.split("\n"):
        if line.startswith(("Charge Number:", "Discharge Number:")):
            is_charge = line.startswith("Charge")
        elif line[:1].isdigit() or line[:1] == "-":
            fields = line.split(",")
            rows.append(Row(is_charge, fields[1 if is_charge else 2] if len(fields) > 1 else "?"))
    return rows


def missing_rows(event_log, data_log, may_lack_last=True):
    """(rows there must be, what is wrong or None): every line has its row, in order; not yet the last."""
    lines = expected_rows(event_log)
    wanted = [row for row in lines if row is not None]
    got = rows_of(data_log)
    least = len(wanted) - (1 if may_lack_last and lines and lines[-1] is not None else 0)
    if not least <= len(got) <= len(wanted):
        return least, "%d rows for %d lines" % (len(got), len(wanted))
    for number, (row, line) in enumerate(zip(got, wanted)):
        if row.is_charge != line.is_charge or line.voltage not in (None, row.voltage):
            return least, "row %d is not that of its line" % (number + 1)
    return least, None
