#pragma once

#include "doctor/doctor_options.h"

/** Looks, judges and tells; or listens to one port. The exit status: 0 well, 1 trouble. */
int run_doctor(const DoctorOptions& options);
