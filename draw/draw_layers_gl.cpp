#include "draw/draw_layers_gl.h"

#include "base/prefs.h"
#include "edit/document/selection_internal.h"

void finish_layer(picture_t &picture, draw_layer layer)
{
    if (picture.costs == nullptr)
        return;
    const double now = seconds_until_drawn();
    (*picture.costs)[static_cast<std::size_t>(layer)] += now - picture.started;
    picture.started = now;
}

void draw_vertex_layer(const picture_t &picture, bool unselected, bool selected)
{
    const bool vertex_mode = select_mode() == SELECT_VERTEX;
    if (!picture.layers.vertices && !(vertex_mode && selected))
        return;
    draw_vertices(picture.scene,
                  vertex_options_t{picture.layers.vertices && unselected, selected, vertex_mode,
                                   static_cast<float>(prefs.vert_size * picture.scale),
                                   prefs.draw_moving_vertices != 0});
}
