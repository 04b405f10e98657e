#ifndef VESK_EDIT_EXTRUDE_PATH_H
#define VESK_EDIT_EXTRUDE_PATH_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Command "define_extrude_path": remembers the selected object, which must have one surface, an
   open line; else a message box. */
VESK_API void vesk_define_path_object(void);

/* Command "extrude_along_path": carries the outline of the selected whole surfaces along the
   remembered object's line: at each of its points a copy, moved with the point and turned about it
   by the smallest rotation from the direction of the first segment to the bisector of the two at
   the point (at the end the last one's), joined by link surfaces. Cap, facing and deletion of the
   original as the extrude preferences say. Undo "extrude along path". */
VESK_API void vesk_extrude_along_path(void);

VESK_END_DECLS

#endif
