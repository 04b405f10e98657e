#ifndef VESK_DRAW_DRAW_MARKS_GL_H
#define VESK_DRAW_DRAW_MARKS_GL_H

// The marks of the measure tool and of the tool that inserts vertices, in any view: the
// ruler with its texts on plates, the edge under the pointer and the place on it.
void draw_tool_marks(int view, int width, int height);

#endif
