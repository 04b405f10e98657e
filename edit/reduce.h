#ifndef VESK_EDIT_REDUCE_H
#define VESK_EDIT_REDUCE_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Command "reduce": takes about `percent` (1 to 99) of the vertices out of the polygons of each
   selected object, those first whose loss changes the shape least (quadric error; M. Garland, P.
   Heckbert, Surface Simplification Using Quadric Error Metrics, 1997). The polygons become
   triangles; lines stay. Borders between materials, seams of texture coordinates and open borders
   keep their lines: vertices go along them, never off them, and corners where more than two meet
   stay. With the preference reduce_keep_original the results stand beside the originals. Undo
   "reduce". */
VESK_API void selected_objects_reduce(int percent);

VESK_END_DECLS

#endif
