#ifndef VESK_MODEL_MATERIAL_H
#define VESK_MODEL_MATERIAL_H

#include "base/types.h"
#include "model/list.h"

VESK_BEGIN_DECLS

/* Colours are r, g, b, a from 0 to 1. */
typedef struct material {
    float diffuse[4];
    float ambient[4];
    float specular[4];
    float emissive[4];
    float shininess;
    float transparency; /* 0 opaque */
    char *name;
    int extra_word; /* without a meaning */
    listitem *properties;
} material;

/* A record with the defaults (white, opaque, shininess 10), or null (reported on the console). */
VESK_API material *new_material(void);
/* Sets the defaults; a former name or property list is not freed. */
VESK_API void material_init(material *mat);
/* Defaults, then the diffuse colour from 0xRRGGBB. */
VESK_API material *new_material_rgb(long packed);
VESK_API void material_init_rgb(material *mat, long packed);
/* A copy with its own name; the property list is shared. */
VESK_API material *new_material_copy(const material *mat);
/* 1 when the colours agree to the hundredth and shininess and transparency exactly; name and alpha
   do not count. */
VESK_API int material_compare(const material *a, const material *b);
/* Replaces the name by a copy. */
VESK_API void vesk_material_set_name(material *mat, const char *text);
/* Adds b's values to a's. Deliberate: a's green gets b's blue. */
VESK_API void material_add(material *a, const material *b);
/* Divides the twelve colour values, shininess and transparency. */
VESK_API void material_divide(material *a, float n);
/* Debug output in the form of a file's MATERIAL line. */
VESK_API void print_material(const material *mat);

/* Packed colours 0xRRGGBB; _sgi: 0xBBGGRR. Components are truncated, not clamped; 255v: components
   from 0 to 255. */
VESK_API void long_rgb_to_floats(long packed, float *r, float *g, float *b);
VESK_API void long_rgb_to_floatv(long packed, float *rgb);
VESK_API long rgb_floats_to_long(float r, float g, float b);
VESK_API long rgb_floatv_to_long(const float *rgb);
VESK_API long rgb_float255v_to_long(const float *rgb);
VESK_API long rgb_floatv_to_long_sgi(const float *rgb);

VESK_END_DECLS

#endif
