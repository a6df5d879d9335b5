#pragma once

/** What a test is to do: typed on the panel, kept in profiles, written at the head of a log's sections. */
struct TestParameters
{
    int number_of_cycles = 1;     ///< in no current log
    int max_charge_time = 21600;  ///< seconds; shown and written in whole hours, truncated
    bool detect_full_charge = false;
    double low_voltage_cutoff = 19.0;  ///< volts
    bool prompt_to_discharge = false;
    double final_voltage = 0.0;  ///< volts at which the last charge may stop
    bool measure_internal_resistance = true;
    double internal_resistance_test_interval_ah = 0.5;
};
