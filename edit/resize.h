#ifndef VESK_EDIT_RESIZE_H
#define VESK_EDIT_RESIZE_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Maps every selected point linearly from one box (minimum and maximum corner) to another; along an
   axis on which the old box has no extent points are only moved. Normals and the selection's box
   are computed anew. No undo, no redraw. */
VESK_API void resize_selection(const point3_t *old_min, const point3_t *old_max,
                               const point3_t *new_min, const point3_t *new_max);

VESK_END_DECLS

#endif
