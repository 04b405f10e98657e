#ifndef VESK_VIEW_DRAG_RESIZE_H
#define VESK_VIEW_DRAG_RESIZE_H

#include "view/handles.h"
#include "view/interaction.h"

// The box of the selection while one of its handles is dragged by `by` (world units): snapped,
// locked to an axis (-1: none), Shift and Control as the event has them, and with the sizes that
// are typed.
world_box_t drag_resized_box(const pointer_event_t &event, const world_box_t &old, int handle,
                             int axis, const point3_t &by);

#endif
