#ifndef VESK_PROGRAM_COMMAND_HANDLERS_H
#define VESK_PROGRAM_COMMAND_HANDLERS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Handlers that plug-ins may look up by name. Objects are named by their identities; an unknown one
   gives a console line and an empty result. Lists are blank-separated words. */

VESK_API void command_clear_all(void);
VESK_API void command_get_platform(void);
VESK_API void command_save_vesk(const char *filename);
VESK_API void command_save_selection_vesk(const char *filename);
/* 0-based places in the object's lists. */
VESK_API void command_object_get_vertices(int id);
VESK_API void tcl_object_move_to_head(int id);

VESK_END_DECLS

#ifdef __cplusplus

// selection and application
void command_clear_selection();
void command_get_app_mode();
void command_get_selected_objects();
void command_get_selection_size();
void command_get_selection_centre();
void command_selection_get_num_vertices();
void command_selection_get_num_surfaces();
void command_selection_get_num_objects();
void command_get_texture_repoff();
void command_get_info();
void command_get_version_string();
void command_get_version_number();
void command_get_importer_info();
void command_get_plugin_info_all();
void command_get_plugin_info(const char *path);
void command_get_plugin_about(const char *path);
void command_get_plugin_list();
void command_prefs_set_defaults();
void command_recalc_normals_all();
void command_add_new_texture(const char *filename);
void command_search_and_set_new_texture(const char *model_filename, const char *texture_name);
void command_new_palette_entry(int entry);
void command_set_palette_entry(int i, float r, float g, float b, float ambient_r, float ambient_g,
                               float ambient_b, float emissive_r, float emissive_g,
                               float emissive_b, float specular_r, float specular_g,
                               float specular_b, float shininess, float transparency);

// objects
void command_get_world();
void command_get_lights();
void command_object_get_children(int id);
void command_object_get_name(int id);
void command_object_get_surfaces(int id);
void command_object_get_centre(int id);
void command_object_get_url(int id);
void command_object_get_data(int id);
void command_object_set_data(int id, const char *data);
void command_object_is_selected(int id);
void command_object_is_hidden(int id);
void command_object_select(int id);
void command_object_deselect(int id);

#endif

#endif
