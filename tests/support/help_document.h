#pragma once

/** Loads the tooltips, as the window does at the start; later calls do nothing. */
void load_help_document();

/** Before a window, which loads them itself: ids that are there already would be shown as an error. */
void forget_help_document();
