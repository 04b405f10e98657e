#ifndef VESK_DRAW_DRAW_GRID_GL_H
#define VESK_DRAW_DRAW_GRID_GL_H

#include "base/types.h"

void draw_ground_grid();

VESK_BEGIN_DECLS

/* The grids and axes of an orthographic view; nothing for the 3D view. */
VESK_API void draw_orth_grid(int view);

/* Width in pixels of the lines that follow. */
VESK_API void draw_line_width(float width);

VESK_END_DECLS

#endif
