#ifndef VESK_PLUGIN_EXPORTERS_H
#define VESK_PLUGIN_EXPORTERS_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Writes the whole scene to a file; returns 1, or 0 after telling the user why not. Elements that the format
   cannot hold are counted by vesk_report_loss. */
typedef int (*vesk_export_func_t)(const char *filename);

/* One row of the exporter table; never freed. */
typedef struct vesk_exporter {
    char *suffix; /* with its dot */
    char *description;
    char *info;
    vesk_export_func_t write;
} vesk_exporter_t;

/* Appends an exporter; the texts are copied, a null description or info becomes "-". Of several for
   one suffix the last counts. Returns the record. */
VESK_API vesk_exporter_t *vesk_register_file_exporter(const char *suffix, const char *description,
                                                      vesk_export_func_t write, const char *info);

/* The exporter of a suffix (".obj", in any case), or null. */
VESK_API vesk_exporter_t *vesk_get_file_exporter_by_suffix(const char *suffix);

/* Writes the scene by the exporter of the file's suffix. Returns 1, or 0 after a message box (no
   suffix, no exporter, a fault in it) or the exporter's own message. Command "export_model". */
VESK_API int vesk_export_file(const char *filename);

/* Cuts a polygon into triangles that keep its orientation: `out` takes three corner numbers for
   each of its `count` - 2 triangles. Outlines that cross themselves are cut as well as they can be.
   Returns how many triangles there are; below 3 corners none. */
VESK_API int vesk_cut_polygon(const point3_t *corners, int count, int *out);

/* Registers the built-in exporters. Once, at start. */
VESK_API void vesk_register_internal_file_exporters(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
const listitem *file_exporters(); // of vesk_exporter_t
void exporters_reset_for_test();
#endif

#endif
