#ifndef VESK_PLUGIN_FILTERS_H
#define VESK_PLUGIN_FILTERS_H

#include "app/types.h"

VESK_BEGIN_DECLS

/* Registers the built-in surface filters, of which there are none. Once, at start. */
VESK_API void vesk_register_internal_surface_filters(void);

VESK_END_DECLS

#endif
