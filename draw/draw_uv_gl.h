#ifndef VESK_DRAW_DRAW_UV_GL_H
#define VESK_DRAW_DRAW_UV_GL_H

// One finished picture of the window of texture coordinates in the back buffer.
void draw_uv_view(int width, int height);

// Its window is closed.
void draw_uv_forget();

#endif
