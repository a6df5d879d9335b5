#pragma once

#include <QStringView>

/** Whether a row has exactly the form in which the application writes it: "0.9,41.52". */
bool is_exact_charge_row(QStringView row);

/** The same of a discharge: "181.2,0.502,40.11,9.97" and perhaps ",0.014". */
bool is_exact_discharge_row(QStringView row);
