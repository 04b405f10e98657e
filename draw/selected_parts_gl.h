#ifndef VESK_DRAW_SELECTED_PARTS_GL_H
#define VESK_DRAW_SELECTED_PARTS_GL_H

// Selected elements of objects that are not selected as a whole, as slots of their page.

#include "draw/draw_scene_gl.h"

#include <functional>
#include <memory>

struct part_job_t;

struct part_slots_t {
    unsigned generation = ~0u;
    flat_ptr flat;
    std::uint32_t first_slot = 0;
    std::shared_ptr<part_job_t> job;      // is at them
    std::vector<std::uint32_t> edges;     // lines
    std::vector<std::uint32_t> triangles; // of the selected surfaces
    std::vector<std::uint32_t> vertices;
};

bool has_selected_part(const scene_item_t &item);
// Of one that is not selected as a whole.
std::size_t num_selected_elements(const scene_item_t &item);

// False: many elements of it are selected, and a worker is at their slots: a quick picture shows some of them,
// and the picture is to be drawn again.
bool selected_part_is_ready(const scene_item_t &item, draw_pace pace);

// Of every object that is selected in part one list of slots, where `wanted` says so. Where there are many, a
// coarse or quick picture has only some of them, and no triangles. Parts of a slice by themselves.
void draw_selected_parts(
    const scene_t &scene, GLenum mode, std::vector<std::uint32_t> part_slots_t::*list,
    const std::function<bool(const scene_item_t &)> &wanted = [](const scene_item_t &) {
        return true;
    });

#endif
