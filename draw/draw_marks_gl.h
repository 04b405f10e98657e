#ifndef VESK_DRAW_DRAW_MARKS_GL_H
#define VESK_DRAW_DRAW_MARKS_GL_H

// The marks under the pointer and of the tools, in any view: what a click would take, the edge and
// the place on it where a vertex would be inserted, the ruler with its texts on plates.
void draw_tool_marks(int view, int width, int height);

#endif
