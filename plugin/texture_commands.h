#ifndef VESK_PLUGIN_TEXTURE_COMMANDS_H
#define VESK_PLUGIN_TEXTURE_COMMANDS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Textures of the selected objects and of their descendants. Each is one whole-model undo ("set
   texture", "clear texture"). Nothing selected, or an id that is none: a status line, no undo. */

/* Commands "set_texture" and "texture_set". */
VESK_API void selected_texture_set(int id);
/* Commands "set_no_texture" and "selected_texture_off". */
VESK_API void selected_texture_off(void);

/* Asks for a texture file of any loader; null or "" when the user cancelled. */
VESK_API const char *file_select_texture_name(void);
/* Asks for a file, loads it and gives it to the selected objects. Command "file_select_texture". */
VESK_API void file_select_texture(void);

/* The image behind orthographic view 0 to 2; another view gives a status line. A file that
   cannot be read leaves the former image. Records no undo. Commands of the same names. */
VESK_API void load_background_image(const char *filename, int view);
VESK_API void file_select_background_image(int view);

VESK_END_DECLS

#ifdef VESK_INTERNAL
void command_set_texture_repeats(float x, float y);
void command_set_texture_offsets(float x, float y);
void command_clear_background_image(int view);
#endif

#endif
