#ifndef VESK_MODEL_OBJECT_TREE_H
#define VESK_MODEL_OBJECT_TREE_H

/* Links between objects, and their end. Relinking moves nothing: world coordinates, matrix and
   centre stay. Nothing here recurses: any depth of nesting is legal. */

#include "model/object.h"

VESK_BEGIN_DECLS

/* Takes `child` out of its parent's list (its parent becomes null; the caller owns it) and tells
   the holders of references (selection, views, ...) that the child and its descendants have left
   the scene. Returns 1, or 0 when it is no child of `parent`. */
VESK_API int object_remove_child(object_t *parent, object_t *child);
/* The same without telling: for an object that is linked again at once. */
VESK_API int object_remove_child_nocleanup(object_t *parent, object_t *child);

/* Makes `object` the last child of `parent`; it stays selected. Returns 1, or 0 when `parent` is
   the object itself or lies below it (nothing changed). */
VESK_API int object_reparent(object_t *object, object_t *parent);
/* The same, in front of the child `before` (null: at the end). */
VESK_API int object_reparent_before(object_t *object, object_t *parent, object_t *before);

/* Makes the object the first child of its parent. */
VESK_API void object_move_to_head(object_t *object);

/* Unlinks and frees the object with all it owns, descendants included; every holder of a
   reference is notified first. */
VESK_API void object_delete(object_t *object);
/* The same; inside a batch of changes the telling waits for the batch's end. */
VESK_API void object_delete_nocleanup(object_t *object);
/* Frees an object that is in no child list, with all it owns; holders are notified first. */
VESK_API void object_free(object_t *object);

/* The ancestor directly below the world (or without a parent): the object itself when it is one. */
VESK_API object_t *object_top_ancestor(object_t *object);
/* The object below `top` (included; null: the world) that owns the vertex or surface, or null.
   Walks: for many of them see owners.h. */
VESK_API object_t *object_of_vertex(object_t *top, const vertex *point);
VESK_API object_t *object_of_surface(object_t *top, const surface_t *surface);
/* 1 when the pointer is a live object of the world's tree (the world included), else 0. Any
   pointer may be asked for. */
VESK_API int object_exists(const object_t *object);

/* A deep copy: vertices, surfaces, children, texts, properties, texture, frame. Its parent is
   null; the caller owns it. */
VESK_API object_t *object_clone(object_t *object);

/* Dissolves a group: its children take its place in its parent, in order, and the group is freed.
   Returns 1, or 0 (nothing changed) when the object has no parent or no children, or has geometry
   of its own. */
VESK_API int object_ungroup(object_t *object);

VESK_END_DECLS

#endif
