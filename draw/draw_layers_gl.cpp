#include "draw/draw_layers_gl.h"

void finish_layer(picture_t &picture, draw_layer layer)
{
    if (!picture.measure)
        return;
    const double now = seconds_until_drawn();
    picture.budget->note(layer, now - picture.started);
    picture.started = now;
}
