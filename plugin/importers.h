#ifndef VESK_PLUGIN_IMPORTERS_H
#define VESK_PLUGIN_IMPORTERS_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Reads a file and returns its new, free-standing tree, or null after telling the user why not. */
typedef object_t *(*vesk_import_func_t)(const char *filename);

/* One row of the importer table; never freed.
   suffix  with its dot (".3ds"); several are parted by blanks (".vec .r2v").
   info    names the importer and its version. */
typedef struct vesk_importer {
    char *suffix;
    char *description;
    char *info;
    vesk_import_func_t load;
} vesk_importer_t;

/* Appends an importer; the texts are copied, a null description or info becomes "-". An importer
   whose suffix is already there is never reached: use vesk_replace_importer_function for that.
   Returns the record. */
VESK_API vesk_importer_t *vesk_register_file_importer(const char *suffix, const char *description,
                                                      vesk_import_func_t load, const char *info);

/* Replaces the load function of the first importer with exactly that suffix, in any case. Returns
   its record, or null when there is none. */
VESK_API vesk_importer_t *vesk_replace_importer_function(const char *suffix,
                                                         vesk_import_func_t load);

/* The importer of a suffix: the first whose suffix text equals it in any case, else the first whose
   suffix text contains it. Null when there is none. */
VESK_API vesk_importer_t *vesk_get_file_importer_by_suffix(const char *suffix);

/* A new text that lists every importer, a line each; the caller frees it with myfree. */
VESK_API char *vesk_get_all_importer_info(void);

/* Reads a file by the importer of its suffix. Returns the new tree, which the caller owns, or null
   after a message box (no suffix, no importer) or the importer's own message. */
VESK_API object_t *vesk_import_file(const char *filename);

/* Reads a file into the scene: the new tree is linked under the world (a world gives its children;
   what the importer linked itself stays where it is), selected, and fitted into the views when fit_view_after_load is on. Records no undo. A failed
   load touches neither the scene nor the selection; palette entries that it added stay. Returns 1 or 0. Command "load_file". */
VESK_API int vesk_world_import_file(const char *filename);

/* Asks for the name of a file of any importer; null or "" when the user cancelled. */
VESK_API const char *vesk_file_select_import_name(const char *title);

/* Asks for a file and reads it into the scene. Returns the name. Command "load_file_select". */
VESK_API const char *vesk_file_select_import(const char *title);

/* Registers the built-in importers, in their order, and the 3D Studio exporter's commands and menu
   entry. Once, at start. */
VESK_API void vesk_register_internal_file_importers(void);

/* Handler of "load_vesk": the native reader whatever the suffix, then as vesk_world_import_file. */
VESK_API void command_load_vesk(const char *filename);

/* Handler of "export_3ds": asks for a name and writes the world. */
VESK_API void command_export_3ds(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <string>
// Links a tree that was read from a file; 0 for null. A model file read into an empty world is the
// one that is edited from now on.
int world_adopt_import(object_t *object, const std::string &filename, bool model_file);
void importers_reset_for_test();
#endif

#endif
