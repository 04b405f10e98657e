#ifndef VESK_EDIT_DOCUMENT_CURRENT_OBJECT_H
#define VESK_EDIT_DOCUMENT_CURRENT_OBJECT_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Texts of the current object (the one that is selected alone); nothing without one. */
VESK_API void set_current_object_name(const char *name);
VESK_API void set_current_object_url(const char *url);
VESK_API void set_current_object_data(const char *data);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include "model/object.h"
// Of any object (null: nothing). Undo "set name", "set url", "set data"; none when the text is the
// same.
void set_object_name(object_t *object, const char *name);
void set_object_url(object_t *object, const char *url);
void set_object_data(object_t *object, const char *data);
#endif

#endif
