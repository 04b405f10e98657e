#include "base/version.h"

double vesk_get_version_number(void) { return 3.6; }

const char *vesk_get_version_string(void) { return "VESK v3.6"; }

// Deliberate: scripts test for this value, whatever the machine.
const char *vesk_get_platform(void) { return "Windows"; }
