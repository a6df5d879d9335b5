#pragma once

#include "simulator/fault_state.h"

/** What the faults of the text group do to a line; each fits LineFault::apply. */
namespace LineFaults
{
/** Noise of a length of its own, without CR, LF and NUL, in place of the line. */
void garbage(TelemetryLine& line, const LineFault& fault);
void six_fields(TelemetryLine& line, const LineFault& fault);
void eight_fields(TelemetryLine& line, const LineFault& fault);
void empty_fields(TelemetryLine& line, const LineFault& fault);
/** The fault's text in place of both numbers. */
void numbers(TelemetryLine& line, const LineFault& fault);
void decimal_comma(TelemetryLine& line, const LineFault& fault);
/** The fault's text in the fault's field. */
void field(TelemetryLine& line, const LineFault& fault);
void doubled_letter(TelemetryLine& line, const LineFault& fault);
/** The fault's text in place of the line end. */
void line_end(TelemetryLine& line, const LineFault& fault);
/** The fault's text between the first field and the voltage, outside of both values. */
void stray_bytes(TelemetryLine& line, const LineFault& fault);
}  // namespace LineFaults
