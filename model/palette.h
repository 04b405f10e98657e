#ifndef VESK_MODEL_PALETTE_H
#define VESK_MODEL_PALETTE_H

/* The one palette of the process: grows by appending and is never compacted, so that indices stay
   valid for the whole run. It owns its entries. Every append is told to the scripts
   ("add_palette_button"). */

#include "model/material.h"

VESK_BEGIN_DECLS

VESK_API int vesk_get_num_palette(void);
/* The entry, or null; an index above the count is reported on the console. */
VESK_API material *vesk_palette_get_material(int i);
/* Appends; the palette owns the record from now on. Returns the new index. */
VESK_API int vesk_palette_append_material(material *mat);
/* Index of an equal entry, else of an appended copy; the caller keeps its record. */
VESK_API int vesk_palette_get_new_material_index(const material *mat);
/* Index of the first equal entry, or -1. */
VESK_API int find_material(const material *mat);
/* Appends a copy of entry i; returns the new index, or -1 for a bad index. */
VESK_API int new_palette_entry(int i);
/* Entry i's name; null for a bad index. */
VESK_API const char *vesk_material_get_name_index(int i);
/* 1 when entry i is transparent, else 0. */
VESK_API int vesk_material_has_transparency(int i);
/* Index of the first entry with exactly this diffuse colour, else of a new one. */
VESK_API int rgb_to_index(long packed);
/* Entry i's diffuse colour, packed; 0 for a bad index. */
VESK_API long index_to_rgb(int i);
VESK_API long vesk_material_index_to_rgb(int i);
VESK_API void index_to_3f(int i, float *r, float *g, float *b);
/* "#rrggbb" of entry i, in one buffer that each call overwrites. */
VESK_API const char *index_to_string(int i);
/* Opens the material editor of the scripts on entry i ("edit_colour_ui"). */
VESK_API void edit_palette_entry(int i);
/* Writes the diffuse, ambient, emissive and specular colour, shininess and transparency of entry i;
   a bad index is ignored. Redraws nothing. */
VESK_API void set_palette_entry(int i, float r, float g, float b, float ambient_r, float ambient_g,
                                float ambient_b, float emissive_r, float emissive_g,
                                float emissive_b, float specular_r, float specular_g,
                                float specular_b, float shininess, float transparency);
/* Debug output of all entries. */
VESK_API void print_palette(void);
/* Empties the palette and appends the 15 standard materials. */
VESK_API void create_palette(void);

VESK_END_DECLS

#endif
