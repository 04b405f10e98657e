#ifndef VESK_EDIT_DOCUMENT_SELECTION_H
#define VESK_EDIT_DOCUMENT_SELECTION_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* The target of the next operation: three lists without repetitions, and a select mode that says
   which of them is in use. Only visible, unlocked objects are taken; never the world. Every change
   is announced to the callbacks. */

/* In edge mode the vertex list holds the ends of the selected edges, each once. */
enum { SELECT_TREE = 0, SELECT_OBJECT, SELECT_SURFACE, SELECT_VERTEX, SELECT_LIGHT, SELECT_EDGE };

typedef struct selection_record {
    listitem *vertices; /* of vertex */
    listitem *surfaces; /* of surface_t */
    listitem *objects;  /* of object_t */
    int num_vertices;
    int num_surfaces;
    int num_objects;
    point3_t box_min;
    point3_t box_max;
    int box_valid;
    point3_t box_size;
    point3_t box_centre;
} selection_t;

/* The live lists (null addresses are left out). Returns the select mode. */
VESK_API int vesk_get_current_selection(listitem **vertices, listitem **surfaces,
                                        listitem **objects);

/* The old form of vesk_get_current_selection; a console line says that. */
VESK_API int vesk_get_selection(listitem **vertices, listitem **surfaces, listitem **objects);

/* Installs `selection`, a record from myalloc, and frees the former record and its lists. */
VESK_API void vesk_current_selection_replace(selection_t *selection);

/* Adds a callback, for the rest of the run: called with a tag for every change of the selection.
   It must not change the selection itself. */
typedef void (*vesk_selection_callback_t)(const char *tag, void *user_data);
VESK_API void vesk_add_selection_changed_callback(vesk_selection_callback_t function,
                                                  void *user_data);

/* Announces a change. */
VESK_API void selection_changed(const char *tag);

/* Empties the selection and announces it. */
VESK_API void clear_selection(void);

/* Vertex and edge mode only (else a console line and no change). */
VESK_API void select_vertices(const listitem *vertices);
VESK_API void unselect_vertices(const listitem *vertices);

/* Vertex and edge mode: the surfaces' vertices; surface mode: the surfaces; object modes: their owners by
   the object rule. */
VESK_API void select_surface(surface_t *surface);
VESK_API void select_surfacelist(const listitem *surfaces);

/* Surface mode only (else a console line and no change). */
VESK_API void unselect_surface(surface_t *surface);
VESK_API void unselect_surfacelist(const listitem *surfaces);

/* The object rule. Vertex and surface mode: all vertices (surfaces) of the object, when it is
   visible and unlocked, and of its descendants. Object mode: the object, a group's members
   instead of a group; nothing below a hidden or locked one. Tree mode: the ancestor below the
   world. Light mode: the lights in it. */
VESK_API void select_object(object_t *object);
VESK_API void select_objectlist(const listitem *objects);
VESK_API void unselect_object(object_t *object);
VESK_API void unselect_objectlist(const listitem *objects);

/* 1 when all three lists are empty. */
VESK_API int nothing_is_selected(void);

/* Selects, or unselects, every object below `top` (included) of exactly that name. The commands
   take the whole world. */
VESK_API void select_named(const char *name, object_t *top);
VESK_API void unselect_named(const char *name, object_t *top);
VESK_API void select_by_name(const char *name);
VESK_API void unselect_by_name(const char *name);

/* Selects everything by the present mode. Command. */
VESK_API void select_all(void);

/* Selects every vertex of every surface that has a selected vertex. Command. */
VESK_API void select_part_selected_surfaces(void);

/* Vertex and surface mode: a new list of the selected vertices (those of the selected surfaces),
   each once; the caller frees it. Other modes: a console line and null. */
VESK_API listitem *selection_get_selected_vertices(void);

/* The counts. Commands of the same names append them to the result. */
VESK_API int selection_get_num_vertices(void);
VESK_API int selection_get_num_surfaces(void);
VESK_API int selection_get_num_objects(void);

/* New lists of the objects (their ancestors below the world) that own selected vertices or
   surfaces; the caller frees them. */
VESK_API listitem *selection_get_part_selected_objects(void);
VESK_API listitem *selection_get_part_selected_toplevel_objects(void);

/* Surface mode: the selected surfaces; vertex mode: the surfaces whose vertices are all selected;
   else null. A new list; the caller frees it. */
VESK_API listitem *find_selected_whole_surfaces(void);

/* Switched off: only a console line. */
VESK_API void select_whole_surfaces(void);

/* The one selected object when exactly one is, else null. */
VESK_API object_t *get_current_object(void);

/* Computes the box round everything selected, descendants, hidden and locked ones included. It is
   valid when at least one vertex was visited. */
VESK_API void find_bounding_box(void);

/* Size and middle from the box's corners, and their display. */
VESK_API void recalc_bb_info(void);

VESK_END_DECLS

#endif
