#ifndef VESK_EDIT_DOCUMENT_UNDO_H
#define VESK_EDIT_DOCUMENT_UNDO_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* An edit opens a record (new_undo), fills it with the data of its reversal (the set_undo_ call of
   that kind), then makes its change. "undo" reverses the newest record and drops it. At most
   undo_levels records are kept; with undo_levels 0 nothing is recorded. A record never touches
   freed elements: they leave its lists. */

/* Kinds of records and their reversals. */
enum {
    UNDO_SELECTION = 4,             /* set_undo_selection: the saved selection is restored */
    UNDO_MOVE = 8,                  /* set_undo_vert: moved back by the vector */
    UNDO_SURFACE = 0x10,            /* set_undo_surface: the created surface is deleted */
    UNDO_DELETE = 0x40,             /* set_undo_delete_selection: the objects are put back */
    UNDO_WORLD_1 = 0x80,            /* set_undo_all: the saved model is restored, as for ... */
    UNDO_OBJECT = 0x100,            /* set_undo_object: the created object is deleted */
    UNDO_WORLD_2 = 0x200,           /* ... */
    UNDO_WORLD_3 = 0x400,           /* ... */
    UNDO_WORLD_4 = 0x800,           /* ... */
    UNDO_RESIZE = 0x1000,           /* set_undo_resize: resized from the new box to the old one */
    UNDO_ROTATE = 0x2000,           /* set_undo_rotate: turned back */
    UNDO_POSITIONS = 0x4000,        /* set_undo_vertex_positions: written back */
    UNDO_VERTICES = 0x8000,         /* set_undo_vertices: the created vertices are deleted */
    UNDO_WORLD = 0x10000,           /* ... any change of the model */
    UNDO_OBJECTS = 0x20000,         /* set_undo_objectlist: the created objects are deleted */
    UNDO_SCALE = 0x40000,           /* set_undo_vert: scaled by the factors */
    UNDO_ROTATE_AXIS = 0x80000,     /* set_undo_rotate_axis_angle: turned back */
    UNDO_TEXTURE_COORDS = 0x100000, /* set_undo_texture_coords: written back */
    UNDO_SURFACES = 0x200000,       /* set_undo_object_surfacelist: the surfaces are deleted */
    UNDO_EXTERNAL = 0x400000        /* add_undoable */
};

/* Opens a record with a copy of the description; the oldest is dropped when there are too many. The
   kinds 8, 0x1000, 0x2000, 0x40000 and 0x80000 note the selection, on which their reversal works.
   */
VESK_API void new_undo(int kind, const char *description);

/* ---- filling the newest record; nothing when undo is off. Without a record a console line where
        the call names one. Lists are copied, elements stay the model's. ---- */

/* The translation (kind 8), or the factors that reverse the scaling (kind 0x40000). */
VESK_API void set_undo_vert(float x, float y, float z);
/* Vertices that the change created. */
VESK_API void set_undo_vertices(const listitem *vertices);
/* The positions of these vertices, and of all vertices of these objects and their descendants. */
VESK_API void set_undo_vertex_positions(const listitem *vertices, const listitem *objects);
/* A created object, or objects, with the selection as it is now. */
VESK_API void set_undo_object(object_t *object);
VESK_API void set_undo_objectlist(const listitem *objects);
/* A corner; no kind's reversal needs it. */
VESK_API void set_undo_vertref(svertex *reference);
/* The selection and the select mode. With `take` the lists are moved into the record and the live
   selection is empty afterwards (also when undo is off), else they are copied. */
VESK_API void set_undo_selection(listitem *vertices, listitem *surfaces, listitem *objects,
                                 int take);
/* A created surface; surfaces that were added to an object. */
VESK_API void set_undo_surface(surface_t *surface);
VESK_API void set_undo_object_surfacelist(object_t *object, const listitem *surfaces);
/* The whole model. Its cost is that of the changes since the last capture. */
VESK_API void set_undo_all(void);
/* In tree mode takes the selected objects out of the world into the record and returns 1: they are
   deleted. In other modes makes the record a whole-model one (0x10000) and returns 0: the caller
   deletes. Also 0 without a record. */
VESK_API int set_undo_delete_selection(void);
/* The corners (minimum, maximum) of the selection's box before and after. */
VESK_API void set_undo_resize(const point3_t *old_a, const point3_t *old_b, const point3_t *new_a,
                              const point3_t *new_b);
/* A rotation drawn in a view (as rotate_selected; a null centre is the middle of the box). */
VESK_API void set_undo_rotate(float degrees, int view, const point3_t *centre);
/* A rotation about an axis through the middle of the box. */
VESK_API void set_undo_rotate_axis_angle(const point3_t *axis, float degrees);
/* The texture coordinates of all corners of these surfaces. */
VESK_API void set_undo_texture_coords(const listitem *surfaces);
/* Does nothing. */
VESK_API void set_undo_surface_colour(surface_t *surface, int colour);

/* ---- operations of plug-ins ---- */

/* An operation of a plug-in. `destroy` is called once, with 1 when it is to free
   user_data. */
typedef struct vesk_undoable {
    void (*destroy)(void *user_data, int free_it);
    void (*perform)(void *user_data);
    void (*undo)(void *user_data);
    void *user_data;
} vesk_undoable_t;

/* Opens a record that holds a copy of `undoable`, and performs it. With undo off it is performed
   and destroyed at once. */
VESK_API void add_undoable(const char *description, const vesk_undoable_t *undoable);

/* ---- undoing ---- */

/* Reverses the newest record and drops it. Command "undo". */
VESK_API void UNDO(void);

/* Drops every record. */
VESK_API void clear_all_undos(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Linked as the script variable undo_count.
int *undo_count_address();
// Label of the newest record, null for none.
const char *undo_label();
#endif

#ifdef __cplusplus
// For objects with perform() and undo(), made with `new`: they are deleted with their record.
template <class Operation>
void add_undoable_object(const char *description, Operation *operation)
{
    const vesk_undoable_t undoable = {
        [](void *user_data, int free_it) {
            if (free_it != 0)
                delete static_cast<Operation *>(user_data);
        },
        [](void *user_data) { static_cast<Operation *>(user_data)->perform(); },
        [](void *user_data) { static_cast<Operation *>(user_data)->undo(); }, operation};
    add_undoable(description, &undoable);
}
#endif

#endif
