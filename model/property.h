#ifndef VESK_MODEL_PROPERTY_H
#define VESK_MODEL_PROPERTY_H

/* Named texts that objects and materials carry and the core does not interpret. */

#include "model/material.h"
#include "model/object.h"

VESK_BEGIN_DECLS

typedef struct vesk_prop {
    char *name; /* compared exactly */
    char *kind;
    char *value;
} vesk_prop_t;

/* A record with copies of the three texts. */
VESK_API vesk_prop_t *vesk_new_prop(const char *name, const char *kind, const char *value);
/* Frees the record's texts (not the record). */
VESK_API void vesk_prop_free(vesk_prop_t *prop);
/* The first property of that name, or null. */
VESK_API vesk_prop_t *vesk_proplist_get_prop(const listitem *list, const char *name);
/* Its value (not a copy), or null. */
VESK_API const char *vesk_proplist_get_value(const listitem *list, const char *name);
/* Sets the value; a new property is appended with `kind`, an existing one keeps its kind. Returns
   1 when the property existed, else 0. */
VESK_API int vesk_proplist_set_value(listitem **list, const char *name, const char *kind,
                                     const char *value);
/* A new list of copies of all records. */
VESK_API listitem *vesk_proplist_duplicate(const listitem *list);

/* The same on the list of a material. */
VESK_API int vesk_material_set_prop_value(material *mat, const char *name, const char *kind,
                                          const char *value);
VESK_API const char *vesk_material_get_prop_value(const material *mat, const char *name);
VESK_API int vesk_material_get_num_prop(const material *mat);
/* The i-th record, or null past the end. */
VESK_API vesk_prop_t *vesk_material_get_prop_at(const material *mat, int i);

/* The same on the list of an object. */
VESK_API int vesk_object_set_prop_value(object_t *object, const char *name, const char *kind,
                                        const char *value);
VESK_API const char *vesk_object_get_prop_value(const object_t *object, const char *name);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Frees all records and nodes.
void proplist_free(listitem **list);
// Takes the first property of that name out; returns 1, or 0 when there is none.
int proplist_remove(listitem **list, const char *name);
#endif

#endif
