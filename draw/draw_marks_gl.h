#ifndef VESK_DRAW_DRAW_MARKS_GL_H
#define VESK_DRAW_DRAW_MARKS_GL_H

// What the measure tool and the tool that inserts vertices show over the model, in any view: the
// ruler with its texts on plates, the edge under the pointer and the place on it.
void draw_tool_marks(int view, int width, int height);

#endif
