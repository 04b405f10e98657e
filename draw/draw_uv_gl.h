#ifndef VESK_DRAW_DRAW_UV_GL_H
#define VESK_DRAW_DRAW_UV_GL_H

// A picture of the window of texture coordinates in the back buffer. Of many edges a quick one, unless it
// is wanted `in_full` at once. False: it left something out.
bool draw_uv_view(int width, int height, bool in_full);

// A part of the whole picture, about 18 milliseconds of it. True: it is finished and in the back buffer.
// draw_uv_view gives it up, as do changes of the model, the choice and the size; a change of the view
// calls for draw_uv_view. Nothing is drawn while a worker is at the colours of the surfaces.
bool draw_uv_slice(int width, int height);

// Its window is closed; its context is current.
void draw_uv_forget();

#endif
