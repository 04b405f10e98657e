#ifndef VESK_DRAW_SCENE_DOTS_GL_H
#define VESK_DRAW_SCENE_DOTS_GL_H

// A quick picture of many objects: dots for all of them, and in full those that are largest on the screen.
// Objects with coarse versions are not thinned out. By the matrices that are current.

#include "draw/draw_layers_gl.h"

void draw_dots(const scene_t &scene);

// The items that are drawn in full where only this share of all elements is.
scene_t largest_items(const scene_t &scene, double share);

// Calls draw(picture) with what is drawn in full, after dots for the rest.
template <class Draw>
void draw_thinned(picture_t &picture, Draw &&draw)
{
    if (picture.layers.share >= 1) {
        draw(picture);
        return;
    }
    draw_dots(picture.scene);
    scene_t largest = largest_items(picture.scene, picture.layers.share);
    picture_t rest = {picture.view,   picture.width,  picture.height, picture.scale,  largest,
                      picture.layers, picture.budget, picture.costs,  picture.started};
    draw(rest);
    picture.started = rest.started;
}

#endif
