#ifndef VESK_EDIT_REVOLVE_H
#define VESK_EDIT_REVOLVE_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Sweeps the object's surfaces about the x, y or z axis (0, 1, 2; another: they stay in place)
   through `degrees`, in n steps joined by link surfaces, and so are its descendants. Lines are
   removed; polygons stay as the start and get a reversed copy at the end, also after a whole turn,
   which otherwise closes on the object's own vertices. n below 1: nothing. Computes no normals,
   records no undo. */
VESK_API void object_revolve(object_t *object, int axis, float degrees, int n);

/* The selected objects, with normals and centres; undo "revolve". Degrees outside 0..360 (0
   excluded): a message box and nothing else. Command "revolve" takes degrees and steps from
   revolve_degs and revolve_segments. */
VESK_API void rotate_form_selected_objects_param(int axis, float degrees, int n);
VESK_API void rotate_form_selected_objects(int axis);

VESK_END_DECLS

#endif
