#ifndef VESK_PLUGIN_FILTERS_H
#define VESK_PLUGIN_FILTERS_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Works on one surface of an object; may add and remove surfaces and vertices of the object. */
typedef void (*vesk_surface_filter_func_t)(object_t *object, surface_t *surface);

/* Flag of a filter: it records no undo. */
enum { VESK_FILTER_NO_UNDO = 1 };

/* One row of the filter table; never freed. */
typedef struct vesk_surface_filter {
    char *name; /* label of its entry in the Surface menu, and of its undo */
    char *help;
    vesk_surface_filter_func_t filter;
    uint32_t flags;
    char *identifier; /* "surface_filter_1", ... */
} vesk_surface_filter_t;

/* Adds a filter and its entry in the Surface menu; the texts are copied. Returns the record. */
VESK_API vesk_surface_filter_t *vesk_register_surface_filter(const char *name, const char *help,
                                                             vesk_surface_filter_func_t filter,
                                                             int flags);

/* Runs the filter of that identifier on the selection; an unknown one gives a message box.
   Command "execute_surface_filter". */
VESK_API void execute_surface_filter(const char *identifier);

/* Calls the filter for every selected whole surface, then for every surface of each selected
   object and of those below it. One whole-model undo of the filter's name, unless its flags say none. A surface that the
   filter removed meanwhile is left out. */
VESK_API void selected_surfaces_do_filter(const vesk_surface_filter_t *filter);

/* Registers the built-in surface filters, of which there are none. Once, at start. */
VESK_API void vesk_register_internal_surface_filters(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
void filters_reset_for_test();
#endif

#endif
