#ifndef VESK_VIEW_BACKGROUND_H
#define VESK_VIEW_BACKGROUND_H

// Where the background image of an orthographic view lies: pixels from the view's origin, and its
// zoom.
struct background_t {
    int x = 0, y = 0;
    double zoom = 1.0;
};

background_t &view_background(int view);
void backgrounds_reset_for_test();

#endif
