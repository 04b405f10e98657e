#include "plugin/filters.h"

void vesk_register_internal_surface_filters(void) {}
