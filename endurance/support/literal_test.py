"""The rules of a test, written down literally, and played over what befell it.

From the course of a case (what came on the wire, each second's end, each press of the operator) follow
the event log to the byte, the sections and rows of the data log, and the warnings on the panel.
"""

import datetime
import decimal
import math
import re
import zoneinfo

from . import killed_logs

PHASES = ("Configure Test", "Charging", "Charging", "Full Charge Test", "", "Discharging", "IR Test",
          "Recovering from IR Test", "Charging (final)", "Final Charge Test", "Done")
IDLE, CHARGING, LEVELED, FULL_TEST, READY, DISCHARGING, IR_TEST, IR_RECOVERY, FINAL, FINAL_TEST, DONE = range(11)
COMMANDS = {IDLE: "O", CHARGING: "C", LEVELED: "C", FULL_TEST: "O", READY: "O", DISCHARGING: "D", IR_TEST: "O",
            IR_RECOVERY: "D", FINAL: "C", FINAL_TEST: None, DONE: "O"}
RESET = "55 55 55 55 55 55 00 00 00 04"
RESETS = "Attempting to reset the Kestrometer as it may be stuck in bootloader mode."
SUFFIX = {1: "st", 2: "nd", 3: "rd"}
DIGITS = decimal.Context(prec=400)
LEVEL_POINTS = [25.2] * 600  # what lies behind the first charge of the tour


def divided(a, b):
    if b != 0.0:
        return a / b
    return math.nan if a == 0.0 or math.isnan(a) else math.copysign(math.inf, a) * math.copysign(1.0, b)


def whole_seconds(milliseconds):
    return int(milliseconds / 1000)  # towards zero


def number(text):
    return float(text) if killed_logs.NUMBER.fullmatch(text) else None


def fixed(value, decimals):
    if not math.isfinite(value):
        return "%f" % value
    # A zero has no sign in a log, and a half goes up.
    exact = decimal.Decimal(value + 0.0)
    return str(exact.quantize(decimal.Decimal(1).scaleb(-decimals), decimal.ROUND_HALF_UP, DIGITS))


def general(value):
    return "%g" % (value + 0.0)


class LiteralTest:
    """A test of one cycle with the parameters of the tour."""
    max_charge_time, interval_ah, charge_test_interval = 60, 0.01, 3
    low_voltage_cutoff, final_voltage, number_of_cycles = 19.0, 0.0, 1

    def __init__(self, zone):
        self.zone = zoneinfo.ZoneInfo(zone)
        self.buffer, self.now, self.events, self.sections = "", 0, [], []
        self.phase, self.logging = IDLE, False
        self.voltage = self.current = 0.0
        self.state, self.requested, self.stuck_count, self.device_id = "O", "O", 0, 7
        self.last_time = self.previous_time = None
        self.charge_points, self.cycles = [], []
        self.ir_voltage = self.ir_current = self.next_ir = self.charge_test_voltage = 0.0
        self.leg_start = self.timeout = 0

    # ---- the course -------------------------------------------------------
    def play(self, course):
        """What is wrong with the panel, or None."""
        digits = 0
        for line in course:
            time, what, *rest = line.split(" ")
            self.now = int(time)
            if what == "begin":
                self.last_time = self.now
            elif what == "digits":
                digits = int(rest[0])
            elif what == "chunk":
                babble = ("0123456789" * (digits // 10 + 1))[:digits]
                digits = 0
                self.take_chunk(babble, bytes.fromhex(rest[0]))
            elif what == "tick":
                trouble = self.tick(rest[0])
                if trouble:
                    return trouble
            else:
                self.press(what)
        return None

    def stamp(self, milliseconds=None):
        moment = self.now if milliseconds is None else milliseconds
        return datetime.datetime.fromtimestamp(moment // 1000, self.zone).strftime("%Y-%m-%d %H:%M:%S")

    def log(self, text):
        if self.logging:
            self.events.append("%s %s\n" % (self.stamp(), text))

    def take_chunk(self, babble, data):
        # Bytes of a character that comes in two chunks are no character.
        self.buffer += babble + data.split(b"\0")[0].decode("utf-8", "replace")
        while "\r\n" in self.buffer:
            line, self.buffer = self.buffer.split("\r\n", 1)
            self.take_line(line)

    def tick(self, shown):
        age = whole_seconds(self.now - self.last_time)
        if age > 2 and age % 5 == 0:
            self.log(RESETS)
            self.log(RESET)
        wanted = "%d%d%d" % (age > 2, self.stuck_count > 4, self.phase == DISCHARGING and self.current < 0.1)
        return None if shown == wanted else "at %s the panel warns %s instead of %s" % (self.stamp(), shown, wanted)

    def press(self, button):
        if button == "start":
            self.logging = True
            self.set_phase(CHARGING, "User clicked 'Start'.")
            self.charge_points = list(LEVEL_POINTS)
        elif self.phase in (CHARGING, LEVELED, READY):
            self.set_phase(DISCHARGING, "User clicked 'Skip'")

    # ---- the instrument ---------------------------------------------------
    def take_line(self, line):
        self.log(line)
        self.previous_time, self.last_time = self.last_time, self.now
        fields = line.split("\t")
        if len(fields) != 7:
            return
        self.voltage = number(fields[1]) or 0.0
        if number(fields[1]) is None:
            return
        self.current = number(fields[2]) or 0.0
        if number(fields[2]) is None or not self.take_id(fields[5]) or len(fields[6]) != 1:
            return
        # Without "or", which would take the sign of a zero away.
        self.voltage, self.current = number(fields[1]), number(fields[2])
        self.state = fields[6] if fields[6] in "OCD" else "?"
        if self.logging:
            self.measure()
        self.check_stuck()

    def take_id(self, field):
        text = field.replace("ID=", "")
        if not killed_logs.WHOLE.fullmatch(text):
            return False
        value = int(text, 16 if "x" in text.lower() else 10)
        return -(2**31) <= value < 2**31

    def command(self, letter):
        if letter is None or (self.state == letter and self.requested == letter):
            return
        self.requested = letter
        self.log("%02X" % ord(letter))

    def check_stuck(self):
        if self.state == self.requested:
            self.stuck_count = 0
            return
        self.stuck_count += 1
        if self.stuck_count % 2 == 0:
            self.command(self.requested)

    # ---- the phases -------------------------------------------------------
    def phase_name(self, phase):
        if phase != READY:
            return PHASES[phase]
        n = len(self.cycles)
        return "Ready for %d%s Discharge" % (n, "th" if n % 100 in (11, 12, 13) else SUFFIX.get(n % 10, "th"))

    def set_phase(self, phase, reason):
        self.log("Switching to phase %s because %s" % (self.phase_name(phase), reason))
        if phase == CHARGING or (phase == FINAL and self.phase != FINAL_TEST):
            self.charge_points, self.leg_start = [], self.now
            self.sections.append(["Charge Number: %d" % (len(self.cycles) + 1), self.stamp()])
        if phase in (LEVELED, FINAL):
            self.timeout = self.now + self.charge_test_interval * 1000
        if phase == DISCHARGING and self.phase != IR_RECOVERY:
            self.charge_points, self.leg_start = [], self.now
            self.cycles.append(0.0)
            self.sections.append(["Discharge Number: %d" % len(self.cycles), self.stamp()])
            self.next_ir = self.interval_ah
        self.phase = phase
        self.command(COMMANDS[phase])

    def charge_time_is_over(self):
        return self.leg_start + self.max_charge_time * 1000 < self.now

    def measure(self):
        dt = (self.last_time - self.previous_time) / 1000.0
        t = (self.last_time - self.leg_start) / 1000.0
        resistance = 0.0
        if self.phase in (CHARGING, LEVELED, FULL_TEST, FINAL, FINAL_TEST):
            self.charge_points.append(self.voltage)
            self.sections[-1].append("%s,%s" % (fixed(t, 1), fixed(self.voltage, 2)))
        elif self.phase in (DISCHARGING, IR_TEST, IR_RECOVERY):
            if self.phase == IR_TEST:
                resistance = self.finish_resistance_test()
            if self.phase == IR_RECOVERY and self.state == "D" and not self.ir_voltage < self.voltage:
                self.set_phase(DISCHARGING, "Finished recovering from IR test")
            self.integrate(t, dt, resistance)
        self.move_on()

    def finish_resistance_test(self):
        if self.state != "O" or not self.current < 0.01:
            return 0.0
        ohms = divided(self.voltage - self.ir_voltage, self.ir_current)
        if ohms < 0.0:
            numbers = map(general, (self.voltage, self.ir_voltage, self.ir_current, ohms * 1000.0))
            self.log("botched IR test, open circuit voltage = %s V, closed circuit voltage = %s V, I = %s A, ir = %s mOhm"
                     % tuple(numbers))
        else:
            self.next_ir += self.interval_ah
        self.set_phase(IR_RECOVERY, "Completed IR Test, IR = " + fixed(ohms * 1000.0, 3))
        return ohms

    def integrate(self, t, dt, resistance):
        if self.phase in (IR_TEST, IR_RECOVERY):
            self.voltage, self.current = self.ir_voltage, self.ir_current
        self.cycles[-1] += (self.current + self.current) * 0.5 * (dt / 3600.0)
        if self.current > killed_logs.LEAST_CURRENT:
            row = [fixed(t, 1), fixed(self.cycles[-1], 3), fixed(self.voltage, 2), fixed(self.current, 2)]
            self.sections[-1].append(",".join(row + ([fixed(resistance, 3)] if resistance != 0.0 else [])))

    def move_on(self):
        steps = {CHARGING: self.check_charge, LEVELED: self.check_charge, FULL_TEST: self.check_full,
                 DISCHARGING: self.check_discharge, FINAL: self.check_final, FINAL_TEST: self.check_final_voltage}
        steps.get(self.phase, lambda: None)()

    def end_charge(self, words):
        """After a charge: the first cycle is not asked for, its recharge neither."""
        if len(self.cycles) == 1:
            self.set_phase(DISCHARGING, words + ", first cycle")
        else:
            self.set_phase(READY, words + ", prompt_to_discharge = true")

    def check_charge(self):
        was_leveled = self.phase == LEVELED
        if self.charge_time_is_over():
            self.end_charge("max charge time reached")
        if was_leveled:
            if self.timeout < self.now:
                self.charge_test_voltage = self.voltage
                self.set_phase(FULL_TEST, "next_charge_test_timeout reached")
        elif len(self.charge_points) >= 600 and 0.0 <= self.charge_points[-1] - self.charge_points[-600] <= 0.1:
            self.set_phase(LEVELED, "voltage has leveled off")

    def check_full(self):
        if self.state != "O":
            return
        if not self.voltage - self.charge_test_voltage < 0.1:
            self.set_phase(LEVELED, "charging voltage drop >= 0.1v")
        else:
            self.end_charge("charging voltage drop < 0.1v")

    def check_discharge(self):
        if not self.cycles[-1] < self.next_ir:
            self.ir_voltage, self.ir_current = self.voltage, self.current
            self.set_phase(IR_TEST, "amp_hours (%s) >= next_ir_check_ah (%3s)"
                           % (fixed(self.cycles[-1], 3), general(self.next_ir)))
        if self.voltage < self.low_voltage_cutoff:
            self.set_phase(FINAL if len(self.cycles) >= self.number_of_cycles else CHARGING,
                           "voltage (%3s) < low_voltage_cutoff (%s)"
                           % (general(self.voltage), general(self.low_voltage_cutoff)))

    def check_final(self):
        if self.charge_time_is_over():
            self.set_phase(DONE, "max charge time reached")
        if self.timeout < self.now:
            self.set_phase(FINAL_TEST, "next_charge_test_timeout reached")

    def check_final_voltage(self):
        numbers = "(%s) %%s final_voltage (%s)" % (fixed(self.voltage, 3), fixed(self.final_voltage, 3))
        if self.voltage > self.final_voltage:
            self.set_phase(DONE, "voltage " + numbers % ">=")
        else:
            self.set_phase(FINAL, "voltage " + numbers % "<")


def sections_of(data_log):
    """Of each section its number, its start and its rows."""
    sections, titles = [], False
    for line in data_log.split("\n"):
        if line.startswith(("Charge Number:", "Discharge Number:")):
            sections.append([re.sub(r":\s+", ": ", line)])
        elif line.startswith("Timestamp:") and sections:
            sections[-1].append(line.split(":", 1)[1].strip())
        titles = not line.startswith(("Charge", "Discharge")) and (titles or line.startswith("Time (s)"))
        if titles and sections and line and not line.startswith("Time (s)"):
            sections[-1].append(line)
    return sections


def first_difference(got, wanted, what):
    for number_of, (a, b) in enumerate(zip(got, wanted)):
        if a != b:
            return "%s %d is %.200r instead of %.200r" % (what, number_of + 1, a, b)
    return "%d %ss instead of %d" % (len(got), what, len(wanted))


def one_mark(text):
    """Two decoders put different numbers of marks for bytes that are no character."""
    return re.sub("\ufffd+", "\ufffd", text)


def difference(course, event_log, data_log, end, zone):
    """What the logs and the panel show that does not follow from the course, or None."""
    test = LiteralTest(zone)
    trouble = test.play(course)
    if trouble:
        return trouble
    got, wanted = one_mark(event_log), one_mark("".join(test.events))
    if got != wanted:
        return first_difference(got.split("\n"), wanted.split("\n"), "event")
    for got, wanted in zip(sections_of(data_log), test.sections):
        if got != wanted:
            return first_difference(got, wanted, "line of a section")
    if len(sections_of(data_log)) != len(test.sections):
        return first_difference(sections_of(data_log), test.sections, "section")
    return None if end == test.phase_name(test.phase) else "the test stands in " + end
