#pragma once

/** The texts of the help document that widgets bear, each by the id of its entry there. */
enum HelpId
{
    // the window
    HELP_ADD_STATION = 62,
    HELP_COLOR = 5,

    // the settings dialog
    HELP_DEFAULT_LOG_DIR = 16,
    HELP_CHANGE_DEFAULT_LOG_DIR = 17,
    HELP_PDF_DIR = 18,
    HELP_CHANGE_PDF_DIR = 19,
    HELP_COPY_LOGS = 65,
    HELP_HEADER_IMAGE = 20,
    HELP_CHANGE_HEADER_IMAGE = 21,
    HELP_CHART_REFRESH_RATE = 22,
    HELP_SHOW_DEBUG_INFO = 23,
    HELP_LOG_ALL_TELEMETRY = 64,

    // the about dialog
    HELP_SETTINGS_DIR = 24,
    HELP_COPY_SETTINGS_DIR = 25,
    HELP_OPEN_SETTINGS_DIR = 26,
    HELP_LOG_DIR = 63,
    HELP_COPY_LOG_DIR = 60,
    HELP_OPEN_LOG_DIR = 61,
    HELP_WEBPAGE = 27,

    // a station's summary
    HELP_STATION_ID = 28,
    HELP_PHASE = 29,
    HELP_START_SKIP = 30,
    HELP_NEW_TEST = 31,
    HELP_LOAD_LOG = 32,
    HELP_GENERATE_PDF = 33,
    HELP_CLOSE = 34,
    HELP_EXPAND_COLLAPSE = 35,
    HELP_SERIAL_NUMBER = 36,
    HELP_VOLTAGE = 37,
    HELP_CURRENT = 57,
    HELP_CHARGE_TIME = 58,  ///< stands in the place of the current
    HELP_CYCLE_NUMBER = 39,

    // a station's parameters
    HELP_PROFILE_NAME = 40,
    HELP_NUMBER_OF_CYCLES = 41,
    HELP_MAX_CHARGE_TIME = 42,
    HELP_LOW_VOLTAGE_CUTOFF = 43,
    HELP_FINAL_CHARGE = 44,
    HELP_PROFILE = 45,
    HELP_SAVE_PROFILE = 46,
    HELP_DELETE_PROFILE = 59,
    HELP_STATION_LOG_DIR = 47,
    HELP_CHANGE_STATION_LOG_DIR = 48,
    HELP_PROMPT_TO_DISCHARGE = 49,
    HELP_DETECT_FULL_CHARGE = 50,
    HELP_MEASURE_RESISTANCE = 51,
    HELP_RESISTANCE_INTERVAL = 52,

    // a station's results
    HELP_AMP_HOURS = 53,
    HELP_WATT_HOURS = 54,
    HELP_RESISTANCE = 55,
    HELP_ELAPSED_TIME = 56
};
