#ifndef VESK_DRAW_SCENE_GATHER_GL_H
#define VESK_DRAW_SCENE_GATHER_GL_H

// The scene that all views draw. Looking at a hundred thousand objects takes a while: it is done once for
// all views, again when something has changed, and in parts between which events are taken.

#include "draw/draw_scene_gl.h"

#include <memory>

constexpr double no_limit = 1e9;

// The world's objects with their buffers brought up to date; null when that takes longer than so many
// seconds: the next call goes on. What was gathered stays as it is until another is.
std::shared_ptr<scene_t> gather_scene(draw_pace pace, double seconds);

#endif
