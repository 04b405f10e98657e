#include "draw/draw_layers_gl.h"

void finish_layer(picture_t &picture, draw_layer layer)
{
    if (picture.costs == nullptr)
        return;
    const double now = seconds_until_drawn();
    (*picture.costs)[static_cast<std::size_t>(layer)] += now - picture.started;
    picture.started = now;
}
