#ifndef VESK_VIEW_BACKGROUND_H
#define VESK_VIEW_BACKGROUND_H

#include "model/textures/textures.h"

// The image behind an orthographic view. It belongs to the place in the world where it was put: it
// pans and zooms with the view.
struct background_t {
    int x = 0, y = 0;           // offset to the left and downwards in pixels of the scale 100
    double zoom = 1.0;          // of the image's pixels against those of the scale 100
    VESKImage *image = nullptr; // owned
};

background_t &view_background(int view);

// Puts an image behind a view and frees the former one; null takes it away. Offset and zoom stay.
void view_background_set(int view, VESKImage *image);

// Where the image lies in the window: left, top, right, bottom in pixels from the top left corner.
// False when there is none.
bool view_background_rectangle(int view, double out[4]);

void backgrounds_reset_for_test();

#endif
