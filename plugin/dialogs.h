#ifndef VESK_PLUGIN_DIALOGS_H
#define VESK_PLUGIN_DIALOGS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* File dialogs of the scripts. `filters` holds pairs of texts, a description and file patterns
   parted by blanks, and ends with a null. The answers stay valid until the next script call; ""
   when the user cancelled, always "" in batch mode. */

/* The pairs as a Tcl list of {description patterns} pairs; valid until the next call. */
VESK_API const char *vesk_filter_array_to_string(const char *const *filters);

VESK_API const char *vesk_get_open_texturefilename(const char *title, const char *const *filters);
VESK_API const char *vesk_get_load_filename(const char *title, const char *const *filters);
VESK_API const char *vesk_get_import_filename(const char *title, const char *const *filters);
VESK_API const char *vesk_get_save_filename(const char *title, const char *const *filters);
VESK_API const char *vesk_get_export_filename(const char *title, const char *const *filters);
VESK_API const char *vesk_get_export_folder(const char *title);

VESK_END_DECLS

#endif
