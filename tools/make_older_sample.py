#!/usr/bin/env python3
"""Writes a log of the older generation to standard output: two cycles of a pack that never was.

tools/demo/samples/Older Pack_0815.csv is what this writes; a test compares. The curves are lithium cells: volts by what is in the pack, less what its resistance takes of the current.
"""
CELLS = 10
CAPACITY_AH = 10.4
RESISTANCE_OHMS = 0.085
CHARGE_AMPS = 5.0
CHARGE_VOLTS = 41.5
LOAD_AMPS = 5.0
CUTOFF_VOLTS = 31.0
CHARGE_SECONDS = 9000
FINAL_VOLTS = 38.0
STEP_SECONDS = 10
RESISTANCE_TEST_AH = 0.5

# Open volts of a cell by what is left of its charge, from empty to full.
OPEN_VOLTS = [(0.00, 3.00), (0.03, 3.28), (0.10, 3.45), (0.20, 3.55), (0.40, 3.64), (0.60, 3.76), (0.80, 3.93),
              (0.95, 4.08), (1.00, 4.17)]


class Pack:
    def __init__(self):
        self.left = 0.35

    def open_volts(self):
        for (low, volts), (high, more) in zip(OPEN_VOLTS, OPEN_VOLTS[1:]):
            if self.left <= high:
                return CELLS * (volts + (more - volts) * max(self.left - low, 0.0) / (high - low))
        return CELLS * OPEN_VOLTS[-1][1]

    def resistance(self, cycle):
        """Grows a little with each cycle, and towards the empty end."""
        return RESISTANCE_OHMS * (1.0 + 0.02 * cycle + 0.5 * max(0.15 - self.left, 0.0))

    def move(self, amps, seconds):
        self.left = min(max(self.left + amps * seconds / 3600.0 / CAPACITY_AH, 0.0), 1.0)


def row(seconds, amp_hours, volts, amps, ohms=None):
    resistance = "" if ohms is None else f"\t{ohms:.3f}"
    print(f"{seconds:.1f}\t{amp_hours:.3f}\t{volts:.2f}\t{amps:.2f}{resistance}")


def head():
    print("Test Parameters:")
    print(f"Charge Time (s):\t{CHARGE_SECONDS}\tLV Cutoff\t{CUTOFF_VOLTS:g}\t# Cycles:\t2"
          f"\tFinal Voltage:\t{FINAL_VOLTS:g}\tAutocycle\tTrue")
    print("Battery Details:")
    print("Battery Name:\tOlder Pack\tSerial #:\t0815\tNominal V:\t37\tNominal Ah:\t10.4")
    print("month/day/year/hour/minute/second:")
    print("6_14_2014_8_30_5")
    print("Time (s)\tAmp-Hours (Ah)\tVoltage (V)\tCurrent (A)\tInternal Resistance (Ohms)")


def charge(pack, cycle, enough):
    """The instrument measures no current that goes into the pack."""
    for seconds in range(STEP_SECONDS, CHARGE_SECONDS + 1, STEP_SECONDS):
        room = (CHARGE_VOLTS - pack.open_volts()) / pack.resistance(cycle)
        amps = min(CHARGE_AMPS, max(room, 0.0))
        pack.move(amps, STEP_SECONDS)
        volts = pack.open_volts() + amps * pack.resistance(cycle)
        row(seconds, 0.0, volts, 0.0)
        if enough(volts):
            return


def discharge(pack, cycle):
    """A row each step, with the resistance each time that half an amp-hour more has been taken."""
    delivered = 0.0
    next_test = RESISTANCE_TEST_AH
    seconds = 0
    volts = pack.open_volts()
    while volts >= CUTOFF_VOLTS:
        seconds += STEP_SECONDS
        amps = LOAD_AMPS - 0.02 * (CELLS * 4.17 - volts)
        pack.move(-amps, STEP_SECONDS)
        delivered += amps * STEP_SECONDS / 3600.0
        volts = pack.open_volts() - amps * pack.resistance(cycle)
        tested = delivered >= next_test
        row(seconds, delivered, volts, amps, pack.resistance(cycle) if tested else None)
        next_test += RESISTANCE_TEST_AH if tested else 0.0


def main():
    pack = Pack()
    head()
    for cycle in (1, 2):
        print(f"Charge cycle:\t{cycle}")
        charge(pack, cycle, lambda volts: False)
        print(f"Discharge cycle:\t{cycle}")
        discharge(pack, cycle)
    print("Final Charge")
    charge(pack, 2, lambda volts: volts >= FINAL_VOLTS)
    print("Test Complete")


if __name__ == "__main__":
    main()
